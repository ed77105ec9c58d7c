#include "check/checker.h"
#include "check/nameexpander.h"
#include "check/text.h"

#include <fmt/format.h>

// The files of a series: which there are, and which are read.

namespace {

QString nameOf(const SeriesFacts& facts, int number)
{
    return seriesFile(QString(), facts.name.baseName, number);
}

void checkFile(const SeriesFacts& facts, const FileFact& file, int index, Findings& findings)
{
    if (file.path.size() > longestFileName)
        findings.add(
            Rule::LongName, index, 1, 1,
            fmt::format(
                "the path has {} characters: a save cuts it at 250, and writes another file",
                file.path.size()));
    if (!file.isRead && index != facts.initFile) {
        findings.add(
            Rule::NumberLimit, index, 1, 1,
            "the editor does not load this file: a series has the numbers 1 to 19, without "
            "leading zeros");
        return;
    }
    if (!file.readable)
        findings.add(Rule::Unreadable, index, 1, 1,
                     "the file can't be read: the editor skips it silently");
    else if (file.wasCut)
        findings.add(Rule::TooMuch, index, file.lineCount, 1,
                     "only the first 64 MiB of the file are read");
    else if (file.isRead && file.tasks == 0 && file.markers == 0)
        findings.add(Rule::EmptyFile, index, 1, 1, "the file holds no task");
}

void checkGap(const SeriesFacts& facts, Findings& findings)
{
    int expected = 0;
    for (size_t i = 0; i < facts.files.size() && facts.files[i].isRead; ++i) {
        const int number = facts.files[i].number;
        if (number > expected)
            findings.add(
                Rule::NumberGap, int(i), 1, 1,
                fmt::format("{} missing before this file",
                            printable(nameOf(facts, expected)) +
                                (number - expected > 1
                                     ? " to " + printable(nameOf(facts, number - 1)) + " are"
                                     : " is")));
        expected = number + 1;
    }
}

void checkBothFolders(const SeriesFacts& facts, Findings& findings)
{
    for (size_t i = 1; i < facts.files.size(); ++i) {
        const FileFact& file = facts.files[i];
        const FileFact& before = facts.files[i - 1];
        if (file.isRead && before.isRead && file.number == before.number)
            findings.add(Rule::BothFolders, int(i), 1, 1,
                         fmt::format("{} is there as well: a load has the tasks of both",
                                     printable(before.shown)));
    }
}

} // namespace

void checkFiles(const SeriesFacts& facts, Findings& findings)
{
    for (size_t i = 0; i < facts.files.size(); ++i)
        checkFile(facts, facts.files[i], int(i), findings);
    checkGap(facts, findings);
    checkBothFolders(facts, findings);
    if (facts.limitReached)
        findings.add(Rule::TooMuch, facts.lines.back().file, facts.lines.back().line, 1,
                     fmt::format("the series has more than {}: what follows is not checked",
                                 counted(static_cast<long long>(facts.lines.size()), "line")));
}
