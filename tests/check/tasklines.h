#pragma once

#include <QByteArray>

// Lines of config files that tests of series are made of.

/// A line of a task; sizes in KiB.
inline QByteArray task(const QByteArray& source, const QByteArray& dest, int kib = 1024,
                       int iterations = 1, const QByteArray& log = "[cfgPath]/[host].txt",
                       const QByteArray& csv = "[cfgPath]/[host]-[cfgID].csv")
{
    return "Stream;NOflush;NOprealloc; 50; 1024; -1; " + QByteArray::number(kib) + ';' +
           QByteArray::number(iterations) + ";0;  " + source + ";  " + dest + ";  " + log + ";  " +
           csv + ";  true;\n";
}

inline QByteArray writing(const QByteArray& dest, int kib = 1024, int iterations = 1)
{
    return task("MEMORY", dest, kib, iterations);
}

inline QByteArray reading(const QByteArray& source, int kib = 1024, int iterations = 1)
{
    return task(source, "MEMORY", kib, iterations);
}

inline QByteArray withLog(const QByteArray& dest, const QByteArray& log)
{
    return task("MEMORY", dest, 1024, 1, log);
}

inline QByteArray withCsv(const QByteArray& csv, const QByteArray& log = "[cfgPath]/[host].txt")
{
    return task("MEMORY", "[cfgPath]/out_[host].dat", 1024, 1, log, csv);
}

/// A line of an "_init" file.
inline QByteArray making(const QByteArray& file, int kib = 1024)
{
    return "Stream;NOflush;NOprealloc;  0;    0; -1; " + QByteArray::number(kib) +
           ";1;0;  MEMORY;  " + file + ";  ;  ;  true;\n";
}

/// The line that makes the folder of the series.
const QByteArray dummy = making("[cfgPath]/dummyFile", 0);
