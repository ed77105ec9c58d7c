#pragma once

#include "tests/engine/plannedseries.h"
#include "tests/engine/realfio.h"

/// Writes the export of a plan and lets fio read each job file.
inline QString exported(const PlannedSeries& series, const Plan& plan)
{
    QString folder = series.place("out");
    std::string problem;
    if (!createExport(folder, plan, {}, problem))
        qFatal("%s", problem.c_str());
    for (const QString& name : QDir(folder).entryList({"*.fio"}) +
                                   QDir(folder + "/guards")
                                       .entryList({"*.fio"})
                                       .replaceInStrings(QRegularExpression("^"), "guards/")) {
        if (!test::parses(folder, name))
            qFatal("fio can't read %s", qPrintable(name));
    }
    return folder;
}
