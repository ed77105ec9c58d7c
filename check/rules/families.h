#pragma once

#include "check/checkoptions.h"
#include "check/fileuses.h"
#include "check/findings.h"
#include "check/seriesfacts.h"

// The families of rules: a file each, with the rules and what checks them.

/// The rules of a family, in the order of the page of rules.
/// @{
RuleList lineRules();
RuleList numberRules();
RuleList pathRules();
RuleList variableRules();
RuleList kindRules();
RuleList folderRules();
RuleList sourceRules();
RuleList sizeRules();
RuleList overwriteRules();
RuleList roleRules();
RuleList fileRules();
RuleList markerRules();
RuleList initRules();
RuleList machineRules();
RuleList spaceRules();
/// @}

/// True if the name has characters outside Latin-1; nothing else can be checked then.
bool checkFolderLetters(const SeriesFacts& facts, Findings& findings);
/// The rules about a line as text and its fields.
void checkLines(const SeriesFacts& facts, Findings& findings);
/// The rule about tasks that are the same, whatever the lines look like.
void checkSameTasks(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about numbers and settings of tasks.
void checkNumbers(const SeriesFacts& facts, Findings& findings);
/// The rules about a path by itself: its form and its length.
void checkPaths(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
/// The rules about variables in paths.
void checkVariables(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
/// The rules about folders and special files in place of files.
void checkKinds(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about files in place of folders, and folders that do not exist.
void checkFolders(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about who makes what a task reads.
void checkSources(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rule about sources of two sizes.
void checkSizes(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about bytes that are lost.
void checkOverwrites(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about files that are several things at once.
void checkRoles(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about which files there are, and which are read.
void checkFiles(const SeriesFacts& facts, Findings& findings);
/// The rules about the markers that lead from file to file.
void checkMarkers(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
/// The rules about the "_init" file.
void checkInit(const SeriesFacts& facts, const FileUses& uses, const Environment& environment,
               Findings& findings);
/// The rules about what goes wrong only because several machines run the series.
void checkMachines(const SeriesFacts& facts, const FileUses& uses, Findings& findings);
/// The rules about space on the disks.
void checkSpace(const SeriesFacts& facts, const FileUses& uses, const Environment& environment,
                Findings& findings);

/// The config files of no series among those of a folder; paths as the user spells them.
std::vector<Finding> checkNotLoaded(const QStringList& files, const CheckOptions& options);
