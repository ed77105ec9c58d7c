#include "benchmarks/plaintask.h"
#include "benchmarks/samples.h"
#include "model/pathvariables.h"
#include "model/tasklinereader.h"
#include "shared/kvtext.h"

#include <benchmark/benchmark.h>

// The same small pieces of work as in cost_lines.cpp, by the clock.

namespace {

const QByteArray& lineText()
{
    static const QByteArray text = kvToQString(samples::lineOf(samples::defaultTask())).toLatin1();
    return text;
}

void writeLine(benchmark::State& state)
{
    TestTask task = samples::defaultTask();
    _kvString<maxLine> line;
    while (state.KeepRunning())
        benchmark::DoNotOptimize(&writeTaskLine(line, task));
}
BENCHMARK(writeLine);

template <int (*Write)(char*, const PlainTask&)>
void writePlain(benchmark::State& state)
{
    PlainTask task = {};
    readByFromChars(task, lineText().constData());
    char buffer[plainLineSize];
    while (state.KeepRunning())
        benchmark::DoNotOptimize(Write(buffer, task));
}
BENCHMARK_TEMPLATE(writePlain, writeBySnprintf);
BENCHMARK_TEMPLATE(writePlain, writeByToChars);

void readLine(benchmark::State& state)
{
    const _kvString<maxLine> line(lineText().constData());
    const _kvString8_allSize<maxPath> file("/share/test/mytest.dpc");
    TestTask task;
    while (state.KeepRunning())
        benchmark::DoNotOptimize(readTaskLine(task, line, file));
}
BENCHMARK(readLine);

template <bool (*Read)(PlainTask&, const char*)>
void readPlain(benchmark::State& state)
{
    PlainTask task = {};
    while (state.KeepRunning())
        benchmark::DoNotOptimize(Read(task, lineText().constData()));
}
BENCHMARK_TEMPLATE(readPlain, readBySscanf);
BENCHMARK_TEMPLATE(readPlain, readBySplit);
BENCHMARK_TEMPLATE(readPlain, readByFromChars);

void expandName(benchmark::State& state)
{
    TestTask task = samples::defaultTask();
    task.configPath = _kvString8_allSize<maxPath>("/share/test/mytest.dpc");
    while (state.KeepRunning()) {
        _kvString<maxPath> name("[cfgPath]/[cfgName]/[host]/testfile-[cfgTaskID]_[iter].dat");
        benchmark::DoNotOptimize(replaceFileVariables(task, name, 7, 3, false));
    }
}
BENCHMARK(expandName);

} // namespace

BENCHMARK_MAIN();
