#pragma once

#include "dpc/table.h"
#include "engine/runsummary.h"

// The tables of a report, the same in every format.

/// A run and its figures.
struct ReportedRun
{
    RecordedRun record;
    RunSummary summary;
};

/// A row per task and machine.
Table taskTable(const ReportedRun& run);
/// Headers of the task table that a narrow terminal can do without, the first ones first.
QStringList lessImportantColumns();
/// A row per stage.
Table stageTable(const ReportedRun& run);
/// A row per task and machine of the first run, with the figures of another.
Table comparisonTable(const std::vector<TaskComparison>& comparison);
/// A row per job of all runs, with units in the headers; figures that are not known are empty.
Table jobTable(const std::vector<ReportedRun>& runs);

/// "mytest.dpc:3 write".
QString taskName(const RecordedJob& job);
/// One sentence: the state of the run, and why it is not complete.
QString stateSentence(const RecordedRun& run);
/// Series, time, machines and version of fio, in one line.
QString headline(const RecordedRun& run);
/// Sentences that put the figures right.
QStringList remarks(const RunSummary& summary);
/// One line for each thing that fio could not do as the series says.
QStringList lossLines(const RecordedRun& run);
