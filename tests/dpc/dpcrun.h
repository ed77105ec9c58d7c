#pragma once

#include "dpc/commandline.h"
#include "tests/support/files.h"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

#include <sstream>

/// Set to 1, the tests write what dpc prints into the files that they compare with:
///     TWDP_UPDATE_GOLDEN=1 ctest --preset dev -R 'tst_dpcgolden|tst_dpcdocument'
/// Look at the difference before it is taken.
inline bool updatesGolden()
{
    return qEnvironmentVariableIntValue("TWDP_UPDATE_GOLDEN") == 1;
}

/// Runs dpc on a copy of the series in tests/data/dpc/series. "@ROOT@" in files and output stands
/// for the folder of the copy, which is the current one. "[temp]" is a folder that is empty.
class DpcRun
{
public:
    struct Result
    {
        QByteArray out;
        QByteArray err;
        int code;
    };

    DpcRun()
        : m_root(QFileInfo(m_folder.path()).canonicalFilePath())
    {
        const QDir source(QStringLiteral(TWDP_SOURCE_DIR "/tests/data/dpc/series"));
        for (const QString& name : test::entriesOf(source.path()))
            copy(source.filePath(name), m_root + '/' + name);
        if (!QDir::setCurrent(m_root))
            qFatal("can't enter the copy of the series");
        qputenv("TMPDIR", QFile::encodeName(m_temporary.path()));
    }

    /// Arguments as in a shell, but nothing is quoted: no name here has a blank.
    Result run(const QString& arguments, bool colour = false) const
    {
        std::vector<std::string> list;
        for (const QString& argument : arguments.split(' ', Qt::SkipEmptyParts))
            list.push_back(argument.toStdString());
        std::ostringstream out;
        std::ostringstream err;
        const int code = runDpc(list, {out, err, colour});
        return {withoutRoot(out.str()), withoutRoot(err.str()), code};
    }

    static QString dataFolder() { return QStringLiteral(TWDP_SOURCE_DIR "/tests/data/dpc/"); }

private:
    QByteArray withoutRoot(const std::string& text) const
    {
        return QByteArray::fromStdString(text).replace(m_root.toLocal8Bit(), "@ROOT@");
    }

    void copy(const QString& from, const QString& to) const
    {
        if (QFileInfo(from).isDir())
            QDir().mkpath(to);
        else
            test::put(to, test::contentOf(from).replace("@ROOT@", m_root.toLocal8Bit()));
    }

    QTemporaryDir m_folder;
    QTemporaryDir m_temporary;
    QString m_root;
};
