#pragma once

#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/recording.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

/// Runs "dpc" and compares all that it tells, and the files that a run leaves, with a recording. A
/// program stands in for fio, so that each figure is the same every time.
class RunRecordingTest : public QObject
{
    Q_OBJECT

public slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    /// Runs the series into the folder "run".
    void run(const QStringList& arguments, int status) const;
    void command(const QStringList& words, int status) const;
    /// A text without what differs from run to run, and from machine to machine.
    QString comparable(QString text) const;
    /// The names of all files in a folder, and the content of those whose names end in a pattern.
    QString folderText(const QString& folder, const QString& pattern) const;
    /// The options for machines that answer, named pc01 and so on.
    QStringList machines(int count = 3);
    /// Commands of the shell that a call of fio begins with.
    void putFio(const QByteArray& script) const;
    /// Two stages: writes in three iterations, then reads and a copy.
    void putWork(const QByteArray& host, int wait = 0) const;

    QTemporaryDir m_tools; ///< all programs that can be run
    std::unique_ptr<test::SeriesRun> m_series;
    std::vector<int> m_sockets; ///< of the machines
};
