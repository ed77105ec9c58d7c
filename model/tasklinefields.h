#pragma once

#include <array>
#include <iterator>

/// The fields of a task line, numbered from 1 in the order of the line.
enum TaskLineFieldNumber
{
    MethodField = 1,
    FlushField,
    PreallocateField,
    ChunkWaitField,
    ChunkSizeField,
    SysBufferField,
    FileSizeField,
    IterationsField,
    CacheModeField,
    SourceField,
    DestField,
    LogField,
    CsvField,
    DoneField
};

/// The names of the fields for people, in the order of the line.
constexpr const char* taskLineFieldNames[] = {
    "method",        "flush",     "pre-allocate", "chunk wait", "chunk size",
    "system buffer", "file size", "iterations",   "cache mode", "source",
    "destination",   "log file",  ".csv file",    "done file"};

constexpr int taskLineFieldCount = int(std::size(taskLineFieldNames));
static_assert(taskLineFieldCount == DoneField, "each field has its name");

/// The name of a field, from 1; "text" for a number that is not a field.
constexpr const char* fieldName(int field)
{
    return field >= 1 && field <= taskLineFieldCount ? taskLineFieldNames[field - 1] : "text";
}

/// Where a trimmed field stands in its line.
struct TaskLineField
{
    int column = 0; ///< first character, from 0
    int length = 0; ///< in characters
};

/// A line, cut at its semicolons.
struct TaskLineFields
{
    std::array<TaskLineField, taskLineFieldCount> fields;
    int count = 0;        ///< fields that the line holds; those that it lacks are empty
    TaskLineField beyond; ///< what follows the last field
};
