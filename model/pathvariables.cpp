#include "model/pathvariables.h"

#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <unistd.h>

namespace {

/// How values become 8-bit text.
struct Narrow
{
    using Text = _kvString8_allSize<500>;

    static Text fromQString(const QString& text) { return kvToString8<500>(text); }
    static Text fromPath(const _kvString8_allSize<500>& path) { return path; }

    static Text fromComputerName(const _kvString<500>& name)
    {
        constexpr int longestName = 499;
        Text narrowed;
        for (int i = 0; i < name.length && i < longestName; ++i)
            narrowed.addChar(static_cast<char>(name.text[i]));
        return narrowed;
    }
};

/// How values become 16-bit text.
struct Wide
{
    using Text = _kvString<500>;

    static Text fromQString(const QString& text) { return kvToString16<500>(text); }
    static Text fromComputerName(const _kvString<500>& name) { return name; }

    /// Folders widen as signed bytes, as paths do in a task line.
    static Text fromPath(const _kvString8_allSize<500>& path)
    {
        Text widened;
        widened.addSignExtended(path.text, path.length);
        return widened;
    }
};

/// Asks for the value only where the text holds the variable: most texts hold few.
template <class Text, class Value>
void replaceVariable(Text& text, const char* variable, const Value& value)
{
    if (text.contains(variable))
        text.replace(Text(variable), value());
}

template <class Text>
void replaceNumber(Text& text, const char* variable, long long number)
{
    replaceVariable(text, variable, [&] {
        _kvString8_allSize<20> digits;
        digits.addNr(number);
        return Text(digits.text);
    });
}

/// The file name of the task's config file, without folder and extension.
template <class Convert>
typename Convert::Text configBaseName(const TestTask& task)
{
    return Convert::fromQString(kvGetFileNameBase(kvToQString(task.configPath), '/'));
}

/// The name of the series: its files differ in the digits at the end, and its companion in "_init".
/// The digits go first, so that "mytest2_init" gives "mytest2".
template <class Convert>
typename Convert::Text seriesName(const TestTask& task)
{
    auto name = configBaseName<Convert>(task);
    while (name.hasData() && kvIsDigit(kvdetail::codeUnit(name.text[name.length - 1])))
        name.setLength(static_cast<short>(name.length - 1));
    if (name.endsWith("_init"))
        name.remove(typename Convert::Text("_init"));
    return name;
}

template <class Convert>
void replaceVariables(const TestTask& task, typename Convert::Text& text, std::int32_t taskNumber,
                      std::int32_t iteration, bool keepCfgPath, const MachineValues& machine,
                      const _kvString<500>& computerName)
{
    replaceVariable(text, "[host]", [&] { return Convert::fromComputerName(computerName); });
    replaceVariable(text, "[date]", [&] {
        return Convert::fromQString(machine.date ? *machine.date
                                                 : _kvTime(true).asStringFileName_TruncSec());
    });
    replaceNumber(text, "[iter]", iteration);
    replaceNumber(text, "[cfgline]", taskNumber);
    replaceNumber(text, "[cfgTaskID]", taskNumber);
    replaceNumber(text, "[cfgID]", task.configId);
    replaceVariable(text, "[cfgLogName]", [&] {
        typename Convert::Text logName("_");
        logName.add(configBaseName<Convert>(task));
        logName.add("_log");
        return logName;
    });
    replaceVariable(text, "[cfgNameID]", [&] { return configBaseName<Convert>(task); });
    replaceVariable(text, "[cfgName]", [&] { return seriesName<Convert>(task); });
    if (!keepCfgPath)
        replaceVariable(text, "[cfgPath]",
                        [&] { return Convert::fromPath(kvGetDirName(task.configPath)); });
    replaceVariable(text, "[temp]", [&] {
        return Convert::fromPath(machine.tempFolder ? *machine.tempFolder : kvGetTempDir());
    });
}

template <class Convert>
typename Convert::Text expand(const TestTask& task, typename Convert::Text& text,
                              std::int32_t taskNumber, std::int32_t iteration, bool keepCfgPath,
                              const MachineValues& machine)
{
    const auto computerName = machine.computerName ? *machine.computerName : getComputerName();
    // Many names are plain: one look at the text instead of one for each variable.
    if (text.contains("["))
        replaceVariables<Convert>(task, text, taskNumber, iteration, keepCfgPath, machine,
                                  computerName);
    return kvPathResolve(text);
}

} // namespace

_kvString<500> getComputerName()
{
    char hostName[256] = {};
    const bool isKnown = ::gethostname(hostName, sizeof hostName - 1) == 0;
    hostName[sizeof hostName - 2] = 0;
    return computerNameFrom(isKnown ? hostName : "");
}

_kvString<500> computerNameFrom(const char* hostName)
{
    _kvString<500> name(hostName);
    const int dot = name.indexOf('.', 0);
    if (dot >= 1)
        name.setLength(static_cast<short>(dot));
    if (name.isEmpty() || name.isEqual("localhost"))
        name = _kvString<500>("NoHostNameSet_");
    return name;
}

_kvString<500> replaceFileVariables(const TestTask& task, _kvString<500>& text,
                                    std::int32_t taskNumber, std::int32_t iteration,
                                    const bool& keepCfgPath, const MachineValues& machine)
{
    return expand<Wide>(task, text, taskNumber, iteration, keepCfgPath, machine);
}

_kvString8_allSize<500> replaceFileVariables8(const TestTask& task, _kvString8_allSize<500>& text,
                                              std::int32_t taskNumber, std::int32_t iteration,
                                              const bool& keepCfgPath, const MachineValues& machine)
{
    return expand<Narrow>(task, text, taskNumber, iteration, keepCfgPath, machine);
}
