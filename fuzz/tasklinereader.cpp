// Input, all of it Latin-1: a line with the path of the config file, then the task line, up to the
// end of the input.

#include "model/tasklinereader.h"
#include "fuzz/check.h"
#include "fuzz/slowtaskline.h"
#include "model/tasklinewriter.h"

namespace {

using Path = _kvString8_allSize<maxPath>;
using Line = _kvString<maxLine>;

/// Bytes from 128 on as the writer makes them: both forms of a line read alike.
Line signExtended(const QString& text)
{
    const QByteArray bytes = text.toLatin1();
    Line line;
    line.addSignExtended(bytes.constData(), bytes.size());
    return line;
}

/// The first field that makes a reader refuse the line, counted from 1.
int refusedField(const QStringList& fields)
{
    if (!QStringList({"Posix", "System", "Stream", "AnsiC"}).contains(fields[0]))
        return 1;
    for (int i = 3; i < 9; ++i) {
        if (!slowreading::number(fields.value(i)))
            return i + 1;
    }
    return 0;
}

void checkProblem(const QString& line, const TaskLineProblem& problem)
{
    QStringList fields = line.split(';');
    for (QString& field : fields)
        field = slowreading::trimmed(field);
    fuzz::same("a rejection names the field", problem.field, refusedField(fields));
    const bool inside = problem.column >= 0 && problem.length >= 0 &&
                        problem.column + problem.length <= line.size();
    fuzz::same("a rejection points into the line", inside, true);
    fuzz::same("a rejection points at the field", line.mid(problem.column, problem.length),
               fields[problem.field - 1]);
}

void checkRecord(const TestTask& task, const Line& line, const Path& configPath)
{
    fuzz::same("a record keeps its line", task.lineText.isEqual(line), true);
    fuzz::same("a record keeps its file", task.configPath.isEqual(configPath), true);
    if (task.waitForNextConfig)
        return;
    const bool asRead = task.sourcePathAsRead.isEqual(task.sourcePath) &&
                        task.destPathAsRead.isEqual(task.destPath) &&
                        task.logPathAsRead.isEqual(task.logPath) &&
                        task.csvPathAsRead.isEqual(task.csvPath);
    fuzz::same("a record keeps its paths as read", asRead, true);
}

/// Blanks at the ends of a path and what passes the capacity of a line do not come back.
bool comesBack(const TestTask& task, const Line& line)
{
    const auto isTrimmed = [](const Path& path) {
        return slowreading::trimmed(kvToQString(path)) == kvToQString(path);
    };
    return line.length < 1000 && isTrimmed(task.sourcePath) && isTrimmed(task.destPath) &&
           isTrimmed(task.logPath) && isTrimmed(task.csvPath);
}

/// Written and read again, a record stays as it is, in a folder that a line can name.
void checkWriting(const QString& text)
{
    const Path configPath("/cfg/set.dpc");
    TestTask first;
    if (!readTaskLine(first, kvToString16<maxLine>(text), configPath) || first.waitForNextConfig)
        return;
    Line once;
    writeTaskLine(once, first);
    if (!comesBack(first, once))
        return;
    TestTask second;
    fuzz::same("the reader takes what the writer wrote", readTaskLine(second, once, configPath),
               true);
    fuzz::same("a record comes back", describe(second), describe(first));
    Line twice;
    fuzz::same("a line comes back", kvToQString(writeTaskLine(twice, second)), kvToQString(once));
}

void checkReading(const QString& text, const Line& line, const Path& configPath)
{
    TestTask task;
    TaskLineProblem problem;
    bool isTaken = false;
    const QString date = slow::withinOneSecond([&] {
        task = TestTask();
        isTaken = readTaskLine(task, line, configPath, &problem);
    });
    const auto expected = slow::describeLine(text, kvToQString(configPath), date);
    fuzz::same("a line is taken by the rules", isTaken, expected.has_value());
    if (isTaken) {
        fuzz::same("a line is read by the rules", describe(task), *expected);
        checkRecord(task, line, configPath);
    } else {
        checkProblem(text, problem);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray input = fuzz::bytesOf(data, size);
    const auto configPath = kvToString8<maxPath>(fuzz::latin1(fuzz::takeLine(input)));
    const QString line = fuzz::latin1(input.left(1000));
    checkReading(line, kvToString16<maxLine>(line), configPath);
    checkReading(line, signExtended(line), configPath);
    checkWriting(line);
    return 0;
}
