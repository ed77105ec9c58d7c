#pragma once

#include <string>
#include <vector>

/// Something that was not looked at, so that silence about it means nothing.
struct NotChecked
{
    std::string what; ///< a name for programs: "windows-paths"
    long long count = 0;
    std::string text; ///< the same for people: "4 Windows paths"
};

/// Remarks on a run of a command, beside its result.
struct Remarks
{
    std::vector<std::string> problems; ///< sentences, each a reason for status 2
    std::vector<NotChecked> notChecked;
};
