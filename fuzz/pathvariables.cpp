// Input, in lines, all of it Latin-1:
//   task number, iteration, config file ID and perhaps the word "keep", which leaves "[cfgPath]"
//   path of the config file
//   host
//   date
//   the name to expand, up to the end of the input

#include "model/pathvariables.h"
#include "fuzz/check.h"
#include "fuzz/slowpathvariables.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

namespace {

constexpr int maxHostLength = 499; // The 8-bit expansion takes no more: a separate rule.

slow::NameValues valuesOf(QByteArray& input)
{
    slow::NameValues values;
    const QList<QByteArray> words = fuzz::takeLine(input).split(' ');
    values.taskNumber = words.value(0).toInt();
    values.iteration = words.value(1).toInt();
    values.configId = words.value(2).toInt();
    values.keepCfgPath = words.contains("keep");
    values.configPath = fuzz::latin1(fuzz::takeLine(input).left(500));
    values.host = fuzz::latin1(fuzz::takeLine(input).left(maxHostLength));
    values.date = fuzz::latin1(fuzz::takeLine(input).left(500));
    values.temp = kvToQString(kvGetTempDir());
    return values;
}

struct Result
{
    QString text;
    QString resolved;
};

template <class Text, class Replace>
Result expandBy(const Replace& replace, Text text, const slow::NameValues& values)
{
    TestTask task;
    task.configPath = kvToString8<maxPath>(values.configPath);
    task.configId = values.configId;
    MachineValues machine;
    machine.computerName = kvToString16<maxPath>(values.host);
    machine.date = values.date;
    const Text resolved =
        replace(task, text, values.taskNumber, values.iteration, values.keepCfgPath, machine);
    fuzz::same("a text is terminated", int(text.text[text.length]), 0);
    return {kvToQString(text), kvToQString(resolved)};
}

Result wide(const QString& name, const slow::NameValues& values)
{
    return expandBy(replaceFileVariables, kvToString16<maxPath>(name), values);
}

Result narrow(const QString& name, const slow::NameValues& values)
{
    return expandBy(replaceFileVariables8, kvToString8<maxPath>(name), values);
}

/// The same values but for those that none of these variables stands for.
slow::NameValues withOthersChanged(slow::NameValues values, const QSet<QString>& variables)
{
    const auto change = [&](auto& value, const char* variable, const auto& other) {
        if (!variables.contains(variable))
            value = other;
    };
    change(values.host, "[host]", values.host + "[iter]/..");
    change(values.date, "[date]", QString("[host]"));
    change(values.iteration, "[iter]", values.iteration ^ 1);
    change(values.configId, "[cfgID]", ~values.configId);
    if (!variables.contains("[cfgline]"))
        change(values.taskNumber, "[cfgTaskID]", values.taskNumber ^ 1);
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray input = fuzz::bytesOf(data, size);
    const slow::NameValues values = valuesOf(input);
    const QString name = fuzz::latin1(input.left(500));

    const slow::Expansion expected = slow::expandName(name, values);
    const Result is = wide(name, values);
    fuzz::same("variables are replaced by the rules", is.text, expected.text);
    fuzz::same("an expanded name is a resolved path", is.resolved, expected.resolved);

    const Result narrowed = narrow(name, values);
    fuzz::same("both widths expand alike", narrowed.text, is.text);
    fuzz::same("both widths resolve alike", narrowed.resolved, is.resolved);

    const Result other = wide(name, withOthersChanged(values, expected.variables));
    fuzz::same("a variable that is not there has no part in the result", other.text, is.text);
    return 0;
}
