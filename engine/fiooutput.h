#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

// The output of fio, as far as a run is accounted by it. Any bytes will do: what is not understood
// is left out, and a job that is left out counts as not run.

/// Figures of one direction of a section, reads or writes.
struct IoFigures
{
    qint64 bytes = 0;
    qint64 ios = 0;
    double ioNs = 0;             ///< sum of the latencies, ns
    std::optional<qint64> p50Ns; ///< completion latency, ns
    std::optional<qint64> p99Ns;
    std::optional<qint64> maxNs;
};

/// The report of fio about one section on one machine.
struct SectionReport
{
    QByteArray name;      ///< of the section
    QString host;         ///< as given to `--client`; empty for a run without a server
    int port = 0;         ///< means nothing if the host is a socket's path
    int error = 0;        ///< error number of the system, 0 for none
    qint64 runtimeMs = 0; ///< waits included
    IoFigures read;
    IoFigures write;
    qint64 syncs = 0;
    double syncNs = 0;             ///< sum of the latencies, ns
    std::optional<qint64> startMs; ///< ms since 1970; older versions of fio do not say it

    /// In both directions.
    qint64 bytes() const { return read.bytes + write.bytes; }
};

/// All that fio printed in one call.
struct FioOutput
{
    QString version;                     ///< as fio spells it, "fio-3.33"; empty if it is not there
    std::vector<SectionReport> sections; ///< in the order of the text, without fio's own sums
    bool isWhole = false;                ///< the text ends where the document does
};

/// Reads standard output of fio with `--output-format=json`: text, then one document. Names may be
/// in any encoding. Of a document that breaks off, the sections before the break count. A section
/// that lacks a name, an error number or its bytes, or holds numbers that nothing can have
/// measured, is left out.
FioOutput readFioOutput(const QByteArray& text);
