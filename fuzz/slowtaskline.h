#pragma once

#include "fuzz/slowpathvariables.h"
#include "model/pathvariables.h"
#include "shared/kvfile.h"
#include "shared/kvtime.h"
#include "tests/model/describetask.h"
#include "tests/model/slowreading.h"

#include <optional>

namespace slow {

inline QString now()
{
    return _kvTime(true).asStringFileName_TruncSec();
}

/// Does something that may ask for the time until no second ended meanwhile, and returns the time.
template <class Work>
QString withinOneSecond(const Work& work)
{
    QString before;
    do {
        before = now();
        work();
    } while (now() != before);
    return before;
}

/// The path that a marker names.
inline QString markedPath(const QString& line, const QString& configPath, const QString& date)
{
    NameValues values;
    values.host = kvToQString(getComputerName());
    values.date = date;
    values.temp = kvToQString(kvGetTempDir());
    values.configPath = configPath;
    return expandName(line.section(QChar(0), 0, 0).left(500), values).resolved;
}

/// The text of describe() for the record that a line gives; nothing if the line is rejected.
inline std::optional<QString> describeLine(const QString& line, const QString& configPath,
                                           const QString& date)
{
    if (line.endsWith(".dpc")) {
        TestTask task;
        task.waitForNextConfig = true;
        task.sourcePath = kvToString8<maxPath>(markedPath(line, configPath, date));
        return describe(task);
    }
    const auto reading = slowreading::read(line, folderOf(configPath));
    if (!reading)
        return std::nullopt;
    return describe(*reading);
}

} // namespace slow
