#pragma once

#include "model/testtask.h"

#include <QString>

#include <iterator>
#include <optional>

/// The variables that a name in a task can hold in brackets, in the order of their replacement.
enum class PathVariable
{
    Host,
    Date,
    Iter,
    CfgLine,
    CfgTaskId,
    CfgId,
    CfgLogName,
    CfgNameId,
    CfgName,
    CfgPath,
    Temp
};

/// How the variables are spelled in a name.
constexpr const char* pathVariables[] = {"[host]",      "[date]",    "[iter]",       "[cfgline]",
                                         "[cfgTaskID]", "[cfgID]",   "[cfgLogName]", "[cfgNameID]",
                                         "[cfgName]",   "[cfgPath]", "[temp]"};

constexpr int pathVariableCount = int(std::size(pathVariables));
static_assert(pathVariableCount == int(PathVariable::Temp) + 1, "each variable has its spelling");

/// How a variable is spelled in a name.
constexpr const char* spellingOf(PathVariable variable)
{
    return pathVariables[int(variable)];
}

/// The part of a run with which the value of a variable changes.
enum class VariesBy
{
    Machine,
    Moment,
    Iteration,
    Task,       ///< begins again in each config file
    ConfigFile, ///< of a series
    Series      ///< the same in all its files
};

/// The part of a run with which the value of a variable changes.
constexpr VariesBy variationOf(PathVariable variable)
{
    switch (variable) {
    case PathVariable::Host:
    case PathVariable::Temp:
        return VariesBy::Machine;
    case PathVariable::Date:
        return VariesBy::Moment;
    case PathVariable::Iter:
        return VariesBy::Iteration;
    case PathVariable::CfgLine:
    case PathVariable::CfgTaskId:
        return VariesBy::Task;
    case PathVariable::CfgId:
    case PathVariable::CfgLogName:
    case PathVariable::CfgNameId:
        return VariesBy::ConfigFile;
    case PathVariable::CfgName:
    case PathVariable::CfgPath:
        break;
    }
    return VariesBy::Series;
}

// Those that are particular to a machine, and where a series lies.
constexpr const char* hostVariable = spellingOf(PathVariable::Host);
constexpr const char* dateVariable = spellingOf(PathVariable::Date);
constexpr const char* iterVariable = spellingOf(PathVariable::Iter);
constexpr const char* configPathVariable = spellingOf(PathVariable::CfgPath);
constexpr const char* tempVariable = spellingOf(PathVariable::Temp);

/// The values of a machine's variables. A value that is not set is asked of this machine.
struct MachineValues
{
    std::optional<_kvString<maxPath>> computerName;        ///< "[host]"
    std::optional<QString> date;                           ///< "[date]"
    std::optional<_kvString8_allSize<maxPath>> tempFolder; ///< "[temp]"
};

/// This machine's name as used in file names.
_kvString<maxPath> getComputerName();

/// The same for a given host name (Latin-1): without its domain, and "NoHostNameSet_" for the empty
/// name and for "localhost". A name that begins with a dot is kept whole.
_kvString<maxPath> computerNameFrom(const char* hostName);

/// Replaces the variables in a file name, such as "[host]", "[iter]" or "[cfgPath]", and returns
/// the result as a resolved path; `text` itself is left expanded and unresolved. Variables are
/// matched exactly; unknown bracketed words stay. The values of "[cfgName]", "[cfgPath]" and their
/// like follow from the `configPath` of the task, "[cfgID]" from its `configId`. With `keepCfgPath`
/// "[cfgPath]" stays in the text. Every value and the result are cut at 500 characters.
_kvString<maxPath> replaceFileVariables(const TestTask& task, _kvString<maxPath>& text,
                                        std::int32_t taskNumber, std::int32_t iteration,
                                        const bool& keepCfgPath, const MachineValues& machine = {});

/// The same for 8-bit texts (Latin-1).
_kvString8_allSize<maxPath> replaceFileVariables8(const TestTask& task,
                                                  _kvString8_allSize<maxPath>& text,
                                                  std::int32_t taskNumber, std::int32_t iteration,
                                                  const bool& keepCfgPath,
                                                  const MachineValues& machine = {});

/// False if a name is surely the same in every iteration. The values of variables that are replaced
/// before "[iter]" count as well: they may complete it, and the date goes on from one to the next.
bool mayDependOnIteration(const _kvString<maxPath>& name);
