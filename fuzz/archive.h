#pragma once

#include "fuzz/check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QTemporaryDir>

// Several files as one input, after lines of its own that a fuzzer has at its head:
//
//   ==> chosen.dpc          a file of the folder, up to the next such line
//   (its content)
//   ==> _wait/chosen1.dpc   a file of the other folder
//   (its content)
//   ==> chosen2.dpc/        a folder of that name
//
// A file loses the line end before the next "==>", so that each can end with or without one. Names
// that lead elsewhere are passed over. The files are written to a folder of this process in memory,
// or among the temporary files if the system lacks such a place.

namespace fuzz {

constexpr int maxNameLength = 60;

inline bool leadsElsewhere(const QString& name)
{
    const QString last = name.startsWith("_wait/") ? name.mid(6) : name;
    return last.isEmpty() || last.contains('/') || last.contains(QChar(0)) || last == "." ||
           last == "..";
}

/// The folder of a series.
class ArchiveFolder
{
public:
    ArchiveFolder()
        : m_folder(pattern())
    {
        if (!m_folder.isValid())
            qFatal("no folder for the files: %s", qPrintable(m_folder.errorString()));
    }

    [[nodiscard]] QString path() const { return m_folder.path() + "/set/"; }

    /// Replaces everything in the folder by the files of an input.
    void unpack(const QByteArray& archive) const
    {
        QDir(path()).removeRecursively();
        QDir().mkpath(path());
        for (const QByteArray& entry : entriesOf(archive))
            unpackOne(entry);
    }

private:
    static QString pattern()
    {
        const QString memory = QStringLiteral("/dev/shm");
        const QString place = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
        return place + "/twdp-fuzz-XXXXXX";
    }

    static QList<QByteArray> entriesOf(const QByteArray& archive)
    {
        constexpr int maxFiles = 40;
        const QByteArray mark("\n==> ");
        QList<QByteArray> entries;
        int start = archive.indexOf(mark);
        while (start >= 0 && entries.size() < maxFiles) {
            const int end = archive.indexOf(mark, start + mark.size());
            entries += archive.mid(start + mark.size(), end < 0 ? -1 : end - start - mark.size());
            start = end;
        }
        return entries;
    }

    void unpackOne(QByteArray entry) const
    {
        QString name = latin1(takeLine(entry).left(maxNameLength));
        const bool isFolder = name.endsWith('/');
        if (isFolder)
            name.chop(1);
        if (leadsElsewhere(name))
            return;
        if (name.startsWith("_wait/"))
            QDir(path()).mkdir("_wait");
        QFile file(path() + name);
        if (isFolder)
            QDir(path()).mkdir(name);
        else if (file.open(QIODevice::WriteOnly))
            file.write(entry);
    }

    QTemporaryDir m_folder;
};

} // namespace fuzz
