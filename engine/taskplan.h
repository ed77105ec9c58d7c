#pragma once

#include "check/rule.h"
#include "check/seriesfacts.h"
#include "engine/plan.h"

#include <functional>
#include <string>

// One task of a series in the words of fio, without its names: what can be said of all iterations
// and machines at once.

/// Receives what is lost: the rule, the field of the line (from 1) and a sentence.
using LossSink = std::function<void(const Rule& rule, int field, std::string text)>;

/// Reports the settings of a task that fio can't apply. Returns false if it can't do the task at
/// all.
bool judgeSettings(const LineFact& line, const LossSink& lose);

/// The settings of a job for a task, all but its names and its size.
PlanJob jobOfTask(const LineFact& line);

/// How a job is written down for fio, once its names and its bytes are known: plain sections, which
/// need no file on the machine that runs and take blanks in names, as long as they make the same
/// calls; else a log of the calls, which states the shorter last chunk and each flush. Says what is
/// lost if a log can't hold the names. Returns false if fio can't do it.
///
/// `logFile` is the name of the log, if there is one; `isBehindServer` is true if the log is
/// written by a command.
bool chooseSections(PlanJob& job, const QByteArray& name, const QByteArray& logFile,
                    bool isBehindServer, const LossSink& lose);
