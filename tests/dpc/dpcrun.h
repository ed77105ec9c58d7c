#pragma once

#include "dpc/commandline.h"
#include "tests/support/files.h"
#include "tests/support/recording.h"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

#include <sstream>

/// Runs dpc on a copy of the series in tests/data/dpc/series. "@ROOT@" in files and output stands
/// for the folder of the copy, which is the current one, and "@TEMP@" for that of "[temp]", which
/// is empty.
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
        Recordings::hide(m_root, "@ROOT@");
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
        Result result{withoutRoot(out.str()), withoutRoot(err.str()), code};
        // Whole lines: a path that is cut can't be told from others.
        const auto begin = [](const QByteArray& text) {
            constexpr int mostLines = 80;
            return QString::fromUtf8(text).section('\n', 0, mostLines);
        };
        Recordings::compare(begin(result.out) + "--- error stream\n" + begin(result.err) +
                            "--- exit status " + QString::number(code));
        return result;
    }

    /// The folder of "[temp]".
    QByteArray temporary() const { return m_temporary.path().toLocal8Bit(); }

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

    /// In the folder that TMPDIR named at first, and not in that of the run before, which goes.
    static QString newFolder()
    {
        static const QString start = QDir::tempPath();
        return start + "/dpc-XXXXXX";
    }

    QTemporaryDir m_folder{newFolder()};
    QTemporaryDir m_temporary{newFolder()};
    QString m_root;
};
