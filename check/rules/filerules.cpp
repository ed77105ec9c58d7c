#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"
#include "shared/kvtext.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// The files of a series: which there are, and which are read.

namespace {

QString nameOf(const SeriesFacts& facts, int number)
{
    return seriesFile(QString(), facts.name.baseName, number);
}

constexpr Rule longName = {"long-name",
                           Severity::Error,
                           "series",
                           "The path of a config file is cut at 250 characters when it is saved.",
                           "choose a shorter folder or name",
                           series({"x{245}.dpc", plainTask}),
                           oneFile(plainTask)};

constexpr Rule unreadable = {
    "unreadable",
    Severity::Error,
    "series",
    "A file of the series can't be read, or is not a regular file; the editor skips it silently.",
    "put a file that you may read in its place",
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc/", ""}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

constexpr Rule tooMuch = {
    "too-much",
    Severity::Error,
    "series",
    "The files hold more than can be checked: 50,000 lines a series, 64 MiB a file.",
    "divide the series; the editor saves about 20 lines into a file",
    oneFile("x\n", 50001),
    oneFile(plainTask)};

constexpr Rule emptyFile = {
    "empty-file",
    Severity::Warning,
    "series",
    "A file holds neither a task nor a marker.",
    "add a task, or remove the file and the marker that leads to it",
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", "# no tasks yet\n"}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

constexpr Rule numberLimit = {
    "number-limit",
    Severity::Error,
    "series",
    "The editor loads numbers up to 19, without leading zeros.",
    "use at most 20 files, numbered without leading zeros",
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest01.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

constexpr Rule initPlace = {
    "init-place",
    Severity::Warning,
    "series",
    "An _init file lies in _wait. The one of the series lies beside _wait, and is the only one "
    "that "
    "counts.",
    "move the file, or remove it",
    series({"_wait/mytest.dpc", plainTask}, {"_wait/mytest_init.dpc", plainInit.content}),
    series({"_wait/mytest.dpc", plainTask}, plainInit)};

/// Says why a file is not read; true if there is a reason.
bool checkUnread(const FileFact& file, int index, Findings& findings)
{
    if (file.role == FileRole::Beyond) {
        findings.add(numberLimit, index, 1, 1,
                     fmt::format("the editor does not load this file: a series has the numbers 1 "
                                 "to {}, without leading zeros",
                                 seriesFileCount - 1));
    } else if (file.role == FileRole::OtherInit) {
        findings.add(initPlace, index, 1, 1,
                     "this is not the _init file of the series, which lies beside _wait");
    } else if (file.role == FileRole::WaitFolder) {
        findings.add(
            unreadable, index, 1, 1,
            Message(fmt::format("the folder can't be read ({}), so the files in it are not checked",
                                file.whyUnreadable),
                    "put a folder that you may look into in its place"));
    } else if (!file.readable) {
        const char* result = file.isInit() ? "nothing that the series needs is made"
                                           : "the editor skips it without a message";
        findings.add(unreadable, index, 1, 1,
                     fmt::format("the file can't be read ({}): {}", file.whyUnreadable, result));
    } else {
        return false;
    }
    return true;
}

/// True if a line of the file does not load: it may be the task that seems to lack.
bool hasRejectedLine(const SeriesFacts& facts, const FileFact& file)
{
    return std::any_of(facts.lines.begin() + file.firstEntry, facts.lines.begin() + file.endEntry,
                       [](const LineFact& line) { return line.kind == LineFact::Kind::Rejected; });
}

void checkFile(const SeriesFacts& facts, int index, Findings& findings)
{
    const FileFact& file = facts.files[size_t(index)];
    if (file.path.size() > maxFileName)
        findings.add(longName, index, 1, 1,
                     fmt::format("the path has {} characters: a save cuts it at {}, and writes "
                                 "another file",
                                 file.path.size(), maxFileName));
    if (checkUnread(file, index, findings))
        return;
    if (file.wasCut)
        findings.add(tooMuch, index, file.lineCount, 1,
                     fmt::format("only the first {} MiB of the file are read", maxFileRead >> 20));
    else if (file.isRead() && file.tasks == 0 && file.markers == 0 && !file.isCopy &&
             !hasRejectedLine(facts, file))
        findings.add(emptyFile, index, 1, 1,
                     "the file holds neither a task nor a marker: machines that start it do "
                     "nothing");
}

constexpr Rule numberGap = {"number-gap",
                            Severity::Warning,
                            "series",
                            "A number is missing in the series.",
                            "rename the files, so that their numbers follow each other",
                            series({"mytest.dpc", plainTaskAndMarker}, {"mytest2.dpc", plainTask}),
                            series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

void checkGap(const SeriesFacts& facts, Findings& findings)
{
    int expected = 0;
    for (size_t i = 0; i < facts.files.size() && facts.files[i].isRead(); ++i) {
        const int number = facts.files[i].number;
        if (number > expected)
            findings.add(
                numberGap, int(i), 1, 1,
                fmt::format("{} missing before this file",
                            printable(nameOf(facts, expected)) +
                                (number - expected > 1
                                     ? " to " + printable(nameOf(facts, number - 1)) + " are"
                                     : " is")));
        expected = number + 1;
    }
}

constexpr Rule bothFolders = {
    "both-folders",
    Severity::Warning,
    "series",
    "A file of the same number lies in the folder and in _wait: a load has the tasks of both. A "
    "note "
    "if the two have the same content, as after a start.",
    "keep the one that is meant",
    series({"mytest.dpc", plainTask}, {"_wait/mytest.dpc", plainTaskAndMarker}),
    series({"_wait/mytest.dpc", plainTask})};

/// A start copies a file out of "_wait", so two with the same bytes are what a run leaves.
void checkBothFolders(const SeriesFacts& facts, Findings& findings)
{
    for (size_t i = 1; i < facts.files.size(); ++i) {
        const FileFact& file = facts.files[i];
        const FileFact& before = facts.files[i - 1];
        if (!file.isRead() || !before.isRead() || file.number != before.number)
            continue;
        const std::string other = printable(before.shown);
        if (file.isCopy)
            findings.add(bothFolders, int(i), 1, 1,
                         Message(fmt::format("{} has the same content, as after a start; a load "
                                             "in the editor has its tasks twice",
                                             other),
                                 fmt::format("remove {} before you load the series", other))
                             .as(Severity::Note));
        else
            findings.add(bothFolders, int(i), 1, 1,
                         fmt::format("{} has the same number and another content: a load in the "
                                     "editor has the tasks of both",
                                     other));
    }
}

constexpr Rule notLoaded = {
    "not-loaded",
    Severity::Error,
    "series",
    "By its name, a config file of the folder is one that the editor does not look for.",
    "rename the file",
    series({"mytest.dpc", plainTask}, {"old.dpc.dpc", plainTask}),
    series({"mytest.dpc", plainTask}, {"old.dpc", plainTask})};

std::string whyNotLoaded(const QString& file)
{
    const std::string reason =
        file.endsWith(QLatin1String(configFileExtension))
            ? fmt::format("by its name it looks for {}",
                          quoted(seriesNameForLoading(file).baseName + configFileExtension))
            : fmt::format("its name does not end in {}, in small letters", configFileExtension);
    return fmt::format("the editor does not load this file: {}; {}", reason, notLoaded.advice);
}

constexpr Rule folderLetters = {
    "folder-letters",
    Severity::Error,
    "series",
    "The name of the folder or the file has letters outside Latin-1: the editor can't open it.",
    "rename the folder or the file",
    series({"\u03B4\u03BF\u03BA.dpc", plainTask}),
    series({"Pr\u00FCfung.dpc", plainTask})};

/// True if the editor can't open a file of the series, because its path is not Latin-1.
bool hasForeignLetters(const SeriesName& name)
{
    return !kvIsLatin1(name.folder + name.baseName);
}

} // namespace

void checkFiles(const SeriesFacts& facts, Findings& findings)
{
    for (size_t i = 0; i < facts.files.size(); ++i)
        checkFile(facts, int(i), findings);
    if (facts.closedWaitFolder() == nullptr)
        checkGap(facts, findings);
    checkBothFolders(facts, findings);
    if (facts.infoCut.line > 0)
        findings.add(tooMuch, facts.infoCut.file, facts.infoCut.line, 1,
                     fmt::format("the info text has more than {}: what follows is not loaded",
                                 counted(maxSeriesComments, "line")));
    if (facts.limitReached)
        findings.add(tooMuch, facts.lines.back().file, facts.lines.back().line, 1,
                     fmt::format("the series has more than {}: what follows is not checked",
                                 counted(facts.entryCount, "line")));
}

bool checkFolderLetters(const SeriesFacts& facts, Findings& findings)
{
    if (!hasForeignLetters(facts.name))
        return false;
    findings.add(folderLetters, 0, 1, 1,
                 "the folder or the name has letters outside Latin-1: the editor can't open the "
                 "file, and nothing in it is checked");
    return true;
}

std::vector<Finding> checkNotLoaded(const QStringList& files, const CheckOptions& options)
{
    std::vector<Finding> findings;
    if (options.rulesOff.count(&notLoaded) > 0)
        return findings;
    QSet<QString> said;
    for (const QString& file : files) {
        const QString path = QDir::cleanPath(QFileInfo(file).absoluteFilePath());
        const bool isNew = !said.contains(path);
        said.insert(path);
        if (isNew)
            findings.push_back({&notLoaded, 0, file, 1, 1, whyNotLoaded(file)});
    }
    return findings;
}

RuleList fileRules()
{
    return {&folderLetters, &longName,    &unreadable, &tooMuch,     &emptyFile,
            &numberGap,     &numberLimit, &notLoaded,  &bothFolders, &initPlace};
}
