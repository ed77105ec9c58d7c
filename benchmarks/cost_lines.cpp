#include "benchmarks/costs.h"
#include "benchmarks/counting.h"
#include "benchmarks/plaintask.h"
#include "benchmarks/samples.h"
#include "model/pathvariables.h"
#include "model/tasklinereader.h"
#include "shared/kvtext.h"

#include <QByteArray>

using counting::count;
using counting::require;

namespace {

void countWriters(const QByteArray& expected, const PlainTask& plain)
{
    TestTask task = samples::defaultTask();
    _kvString<maxLine> line;
    count("write line", [&] { writeTaskLine(line, task); });
    require(kvToQString(line).toLatin1() == expected, "writeTaskLine");

    char buffer[plainLineSize];
    count("write line snprintf", [&] { writeBySnprintf(buffer, plain); });
    require(expected == buffer, "snprintf");
    count("write line to_chars", [&] { writeByToChars(buffer, plain); });
    require(expected == buffer, "to_chars");
}

void countReaders(const QByteArray& text)
{
    const _kvString<maxLine> line(text.constData());
    const _kvString8_allSize<maxPath> file("/share/test/mytest.dpc");
    TestTask task;
    bool done = false;
    count("read line", [&] { done = readTaskLine(task, line, file); });
    require(done && samples::lineOf(task).isEqual(line), "readTaskLine");

    using Read = bool (*)(PlainTask&, const char*);
    const auto countPlain = [&](const char* name, Read read) {
        PlainTask plain = {};
        count(name, [&] { done = read(plain, text.constData()); });
        char buffer[plainLineSize];
        writeBySnprintf(buffer, plain);
        require(done && text == buffer, name);
    };
    countPlain("read line sscanf", readBySscanf);
    countPlain("read line from_chars", readByFromChars);
    countPlain("read line split", readBySplit);
}

/// A name of about this many characters that holds every variable, or one of them again and again.
_kvString<maxPath> nameWith(const char* variables, int characters)
{
    _kvString<maxPath> name("/share/");
    name.add(variables);
    while (name.length < characters)
        name.add("folder/");
    return name;
}

/// The cost of one task's names must not depend on the number of tasks.
void countOtherTasks()
{
    const TaskList tasks = samples::distinctTasks(1000, 1);
    const auto expand = [](const char* name, const TestTask& task) {
        count(name, [&] {
            _kvString<maxPath> text("[cfgPath]/[cfgName]/[host]-[iter].dat");
            replaceFileVariables(task, text, 7, 3, false);
        });
    };
    expand("expand first", tasks.first());
    expand("expand last", tasks.last());
}

void countExpansion()
{
    TestTask task = samples::defaultTask();
    task.configPath = _kvString8_allSize<maxPath>("/share/test/mytest.dpc");
    const auto expand = [&](const char* name, const _kvString<maxPath>& text) {
        count(name, [&] {
            _kvString<maxPath> copy = text;
            replaceFileVariables(task, copy, 7, 3, false);
        });
    };
    const char* const all = "[host][date][iter][cfgline][cfgTaskID][cfgID][cfgLogName][cfgNameID]"
                            "[cfgName][cfgPath][temp]/";
    expand("expand all 100", nameWith(all, 100));
    expand("expand all 400", nameWith(all, 400));
    expand("expand none 100", nameWith("", 100));
    expand("expand none 400", nameWith("", 400));
    expand("expand numbers", nameWith("[iter][cfgline][cfgTaskID][cfgID]/", 100));
    count("host name", [] { getComputerName(); });
    countOtherTasks();
}

void countLineLengths()
{
    const _kvString8_allSize<maxPath> file("/share/test/mytest.dpc");
    for (const int characters : {100, 1000}) {
        TestTask task = samples::taskWithLine(characters);
        const _kvString<maxLine> line = samples::lineOf(task);
        const QByteArray suffix = ' ' + QByteArray::number(characters);
        _kvString<maxLine> written;
        count("write length" + suffix, [&] { writeTaskLine(written, task); });
        count("read length" + suffix, [&] { readTaskLine(task, line, file); });
    }
}

} // namespace

void countLines()
{
    const QByteArray text = kvToQString(samples::lineOf(samples::defaultTask())).toLatin1();
    PlainTask plain = {};
    require(readByFromChars(plain, text.constData()), "from_chars");
    countWriters(text, plain);
    countReaders(text);
    countExpansion();
    countLineLengths();
}
