#pragma once

#include "engine/planfile.h"

#include <optional>
#include <string>

// The folder that an export makes: plan.json, README, a job file for each stage and machine,
// guards, and the logs of this machine's jobs.

/// The file README: what the folder is, and the plain commands of fio that run it.
QByteArray readmeText(const Plan& plan);

/// Fills an empty folder with an export. False, and one sentence, if a file can't be written.
bool fillExport(const QString& folder, const Plan& plan, const QJsonArray& losses,
                std::string& problem);

/// Makes a folder that holds an export: whole, or not at all. False, and one sentence, if something
/// is there already or can't be written.
bool createExport(const QString& folder, const Plan& plan, const QJsonArray& losses,
                  std::string& problem);

/// Reads an export back. Nothing, and one sentence, if the folder does not hold one, or if a file
/// of it is not what this version of dpc writes for its plan.
std::optional<PlanFileContent> readExport(const QString& folder, std::string& problem);
