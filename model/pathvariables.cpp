#include "model/pathvariables.h"

#include "model/confignames.h"
#include "model/limits.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <algorithm>
#include <array>
#include <map>
#include <unistd.h>

namespace {

/// How values become 8-bit text.
struct Narrow
{
    using Text = _kvString8_allSize<maxPath>;

    static Text fromQString(const QString& text) { return kvToString8<maxPath>(text); }
    static Text fromPath(const _kvString8_allSize<maxPath>& path) { return path; }

    static Text fromComputerName(const _kvString<maxPath>& name)
    {
        constexpr int maxNarrowName = 499;
        Text narrowed;
        for (int i = 0; i < name.length && i < maxNarrowName; ++i)
            narrowed.addChar(static_cast<char>(name.text[i]));
        return narrowed;
    }
};

/// How values become 16-bit text.
struct Wide
{
    using Text = _kvString<maxPath>;

    static Text fromQString(const QString& text) { return kvToString16<maxPath>(text); }
    static Text fromComputerName(const _kvString<maxPath>& name) { return name; }

    /// Folders widen as signed bytes, as paths do in a task line.
    static Text fromPath(const _kvString8_allSize<maxPath>& path)
    {
        Text widened;
        widened.addSignExtended(path.text, path.length);
        return widened;
    }
};

/// One name on its way from variables to values.
template <class Convert>
class Expansion
{
public:
    using Text = typename Convert::Text;

    Expansion(const TestTask& task, std::int32_t taskNumber, std::int32_t iteration,
              const MachineValues& machine)
        : m_task(task)
        , m_taskNumber(taskNumber)
        , m_iteration(iteration)
        , m_machine(machine)
        // Asked for every name, on purpose: a host may be renamed while the program runs.
        , m_computerName(machine.computerName ? *machine.computerName : getComputerName())
    {}

    void replaceIn(Text& text, bool keepCfgPath) const
    {
        Held held = variablesIn(text, 0);
        if (keepCfgPath)
            held.uses[int(PathVariable::CfgPath)] = 0;
        if (replaceAtOnce(text, held))
            return;
        for (int i = 0; i < pathVariableCount; ++i) {
            const auto variable = static_cast<PathVariable>(i);
            const bool isKept = keepCfgPath && variable == PathVariable::CfgPath;
            if (isKept || held.uses[i] == 0)
                continue;
            text.replace(Text(pathVariables[i]), valueOf(variable));
            // A value may hold a variable, or complete one with what stands around it.
            held = variablesIn(text, i + 1);
        }
    }

private:
    /// Variables that a text holds.
    struct Held
    {
        std::array<int, pathVariableCount> uses = {};
        bool areAll = true; ///< every bracket in the text begins one
    };

    /// Replaces the variables in one pass and returns true if the order does not matter: no value
    /// brings a bracket, and the text is never too long on the way.
    bool replaceAtOnce(Text& text, const Held& held) const
    {
        std::map<int, Text> values;
        int length = text.length;
        for (int i = 0; i < pathVariableCount; ++i) {
            if (held.uses[i] == 0)
                continue;
            const Text value = valueOf(static_cast<PathVariable>(i));
            if (value.isEqual(pathVariables[i]))
                continue; // it stays as it is
            if (!held.areAll || nextBracket(value, 0) < value.length)
                return false;
            length += held.uses[i] * (value.length - kvdetail::textLength(pathVariables[i]));
            if (length > kvdetail::capacityOf(text))
                return false;
            values.emplace(i, value);
        }
        if (!values.empty())
            text = withValues(text, values);
        return true;
    }

    static Text withValues(const Text& text, const std::map<int, Text>& values)
    {
        Text result;
        int copied = 0;
        visitBrackets(text, 0, [&](int at, int variable) {
            const auto value = values.find(variable);
            if (value == values.end())
                return;
            kvdetail::append(result, text.text + copied, at - copied);
            result.add(value->second);
            copied = at + kvdetail::textLength(pathVariables[variable]);
        });
        kvdetail::append(result, text.text + copied, text.length - copied);
        return result;
    }

    /// Of those from this one on, found in one look at the text: most names hold few.
    static Held variablesIn(const Text& text, int first)
    {
        Held held;
        visitBrackets(text, first, [&](int, int variable) {
            if (variable < pathVariableCount)
                ++held.uses[variable];
            else
                held.areAll = false;
        });
        return held;
    }

    /// Calls `visit` with the place of each bracket and the variable there.
    template <class Visit>
    static void visitBrackets(const Text& text, int first, const Visit& visit)
    {
        for (int at = nextBracket(text, 0); at < text.length; at = nextBracket(text, at + 1))
            visit(at, variableAt(text, at, first));
    }

    static int nextBracket(const Text& text, int from)
    {
        return kvdetail::findUnit(text.text, text.length, '[', from);
    }

    /// The variable that stands at a bracket, of those from this one on; behind the last if none.
    static int variableAt(const Text& text, int bracket, int first)
    {
        int variable = first;
        while (variable < pathVariableCount && !standsAt(text, bracket, pathVariables[variable]))
            ++variable;
        return variable;
    }

    /// The text's zero at its end matches no character of a variable.
    static bool standsAt(const Text& text, int position, const char* variable)
    {
        int same = 1; // the bracket was found already
        while (variable[same] != 0 &&
               kvdetail::codeUnit(text.text[position + same]) == kvdetail::codeUnit(variable[same]))
            ++same;
        return variable[same] == 0;
    }

    Text valueOf(PathVariable variable) const
    {
        switch (variable) {
        case PathVariable::Host:
            return Convert::fromComputerName(m_computerName);
        case PathVariable::Date:
            return Convert::fromQString(m_machine.date ? *m_machine.date
                                                       : _kvTime(true).asStringFileName_TruncSec());
        case PathVariable::Iter:
            return number(m_iteration);
        case PathVariable::CfgLine:
        case PathVariable::CfgTaskId:
            return number(m_taskNumber);
        case PathVariable::CfgId:
            return number(m_task.configId);
        case PathVariable::CfgLogName:
            return logName();
        case PathVariable::CfgNameId:
            return configBaseName();
        case PathVariable::CfgName:
            return seriesName();
        case PathVariable::CfgPath:
            return Convert::fromPath(kvGetDirName(m_task.configPath));
        case PathVariable::Temp:
            break;
        }
        return Convert::fromPath(m_machine.tempFolder ? *m_machine.tempFolder : kvGetTempDir());
    }

    static Text number(long long value)
    {
        _kvString8_allSize<20> digits;
        digits.addNr(value);
        return Text(digits.text);
    }

    /// The file name of the task's config file, without folder and extension.
    Text configBaseName() const
    {
        return Convert::fromQString(kvGetFileNameBase(kvToQString(m_task.configPath), '/'));
    }

    Text logName() const
    {
        Text name("_");
        name.add(configBaseName());
        name.add("_log");
        return name;
    }

    /// The name of the series: its files differ in the digits at the end, and its _init file in
    /// "_init". The digits go first, so that "mytest2_init" gives "mytest2".
    Text seriesName() const
    {
        Text name = configBaseName();
        while (name.hasData() && kvIsDigit(kvdetail::codeUnit(name.text[name.length - 1])))
            name.setLength(static_cast<short>(name.length - 1));
        if (name.endsWith(initFileSuffix))
            name.remove(Text(initFileSuffix));
        return name;
    }

    const TestTask& m_task;
    std::int32_t m_taskNumber;
    std::int32_t m_iteration;
    const MachineValues& m_machine;
    const _kvString<maxPath> m_computerName;
};

} // namespace

_kvString<maxPath> getComputerName()
{
    char hostName[256] = {};
    const bool isKnown = ::gethostname(hostName, sizeof hostName - 1) == 0;
    hostName[sizeof hostName - 2] = 0;
    return computerNameFrom(isKnown ? hostName : "");
}

_kvString<maxPath> computerNameFrom(const char* hostName)
{
    _kvString<maxPath> name(hostName);
    const int dot = name.indexOf('.', 0);
    if (dot >= 1)
        name.setLength(static_cast<short>(dot));
    if (name.isEmpty() || name.isEqual("localhost"))
        name = _kvString<maxPath>("NoHostNameSet_");
    return name;
}

_kvString<maxPath> replaceFileVariables(const TestTask& task, _kvString<maxPath>& text,
                                        std::int32_t taskNumber, std::int32_t iteration,
                                        const bool& keepCfgPath, const MachineValues& machine)
{
    Expansion<Wide>(task, taskNumber, iteration, machine).replaceIn(text, keepCfgPath);
    return kvPathResolve(text);
}

_kvString8_allSize<maxPath> replaceFileVariables8(const TestTask& task,
                                                  _kvString8_allSize<maxPath>& text,
                                                  std::int32_t taskNumber, std::int32_t iteration,
                                                  const bool& keepCfgPath,
                                                  const MachineValues& machine)
{
    Expansion<Narrow>(task, taskNumber, iteration, machine).replaceIn(text, keepCfgPath);
    return kvPathResolve(text);
}

bool mayDependOnIteration(const _kvString<maxPath>& name)
{
    const char* const* const end = pathVariables + int(PathVariable::Iter) + 1;
    return std::any_of(pathVariables, end,
                       [&](const char* variable) { return name.contains(variable); });
}
