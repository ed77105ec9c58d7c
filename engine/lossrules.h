#pragma once

#include "check/rule.h"

#include <string>

// Differences between a task and what fio can do for it, in the form of the rules of a check. An
// error: fio can't do the task, and nothing runs. A warning: the measured work is another one,
// which a user must allow by the name of the rule. A note: the measured work is the same.

extern const Rule fioNotRead;
extern const Rule fioNotRun;
extern const Rule fioMarker;
extern const Rule fioTwoFiles;
extern const Rule fioNoFile;
extern const Rule fioNoSendfile;
extern const Rule fioName;
extern const Rule fioSpecialFile;
extern const Rule fioSize;
extern const Rule fioWait;
extern const Rule fioTooManyChunks;
extern const Rule fioTooManyJobs;
extern const Rule fioBufferSizes;
extern const Rule fioPreallocate;
extern const Rule fioFlush;
extern const Rule fioCacheMode;
extern const Rule fioSystemBuffer;
extern const Rule fioLastChunk;
extern const Rule fioOverwrite;
extern const Rule fioFolder;
extern const Rule fioLog;

/// All of them, in this order.
const RuleList& lossRules();

/// Null if no rule of the list has this name.
const Rule* lossRuleNamed(const std::string& name);

/// The name of a rule of the list that is close to a wrong one, or null.
const char* closestLossRuleName(const std::string& name);
