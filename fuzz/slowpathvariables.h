#pragma once

#include "fuzz/slowpathresolve.h"

#include <QPair>
#include <QSet>
#include <QString>
#include <QVector>

namespace slow {

/// Everything that the variables of a name stand for.
struct NameValues
{
    QString host;
    QString date;
    QString temp;
    QString configPath;
    int iteration = 0;
    int taskNumber = 0;
    int configId = 0;
    bool keepCfgPath = false;
};

struct Expansion
{
    QString text;            ///< expanded, not resolved
    QString resolved;        ///< the same as a resolved path
    QSet<QString> variables; ///< those that the text held when their turn came
};

inline QString baseName(const QString& path)
{
    QStringList parts = path.split('/').last().split('.');
    if (parts.size() > 1)
        parts.removeLast();
    return parts.join('.');
}

inline QString folderOf(const QString& path)
{
    QStringList parts = path.split('/');
    parts.last().clear();
    return parts.join('/');
}

inline QString seriesName(QString name)
{
    while (!name.isEmpty() && QString("0123456789").contains(name.right(1)))
        name.chop(1);
    return name.endsWith("_init") ? name.split("_init").join("") : name;
}

/// A second expansion of a name's variables, on big strings, in the order that the rules give.
inline Expansion expandName(const QString& name, const NameValues& values)
{
    const QString base = baseName(values.configPath);
    const QVector<QPair<QString, QString>> steps = {
        {"[host]", values.host},
        {"[date]", values.date},
        {"[iter]", QString::number(values.iteration)},
        {"[cfgline]", QString::number(values.taskNumber)},
        {"[cfgTaskID]", QString::number(values.taskNumber)},
        {"[cfgID]", QString::number(values.configId)},
        {"[cfgLogName]", "_" + base + "_log"},
        {"[cfgNameID]", base},
        {"[cfgName]", seriesName(base)},
        {values.keepCfgPath ? "" : "[cfgPath]", folderOf(values.configPath)},
        {"[temp]", values.temp},
    };
    Expansion expansion{name, {}, {}};
    for (const auto& [variable, value] : steps) {
        if (variable.isEmpty() || !expansion.text.contains(variable))
            continue;
        expansion.variables += variable;
        expansion.text = expansion.text.split(variable).join(value.left(500)).left(500);
    }
    expansion.resolved = resolvePath(expansion.text);
    return expansion;
}

} // namespace slow
