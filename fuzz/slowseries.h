#pragma once

#include "fuzz/slowtaskline.h"

#include <QFile>
#include <QFileInfo>

namespace slow {

/// The result of a load, as text.
struct Load
{
    QStringList tasks;
    QStringList info;
    QStringList rejected; ///< line and file in turn

    bool operator==(const Load& other) const
    {
        return tasks == other.tasks && info == other.info && rejected == other.rejected;
    }
};

/// A content as it is read: a byte order mark at its beginning is not part of the first line.
inline QByteArray withoutMark(const QByteArray& content)
{
    return content.mid(content.startsWith("\xEF\xBB\xBF") ? 3 : 0);
}

/// The text of a line of a file for its readers.
inline QString lineText(const QByteArray& bytes)
{
    return slowreading::trimmed(QString::fromLatin1(bytes.split('\0').first()).left(1000));
}

inline QStringList filesOfSeries(const QString& folder, const QString& name)
{
    QStringList files;
    for (int number = 0; number < 20; ++number) {
        const QString file = name + (number == 0 ? "" : QString::number(number)) + ".dpc";
        files << folder + file << folder + "_wait/" + file;
    }
    return files;
}

/// The files of the series that the chosen one belongs to.
inline QStringList filesAround(const QString& chosen)
{
    const QString folder = folderOf(chosen);
    QStringList names;
    for (QString name : {chosen.split("_wait/").join(""), chosen}) {
        name = name.split(".dpc").join("").split('/').last();
        while (!name.isEmpty() && name.back().isDigit())
            name.chop(1);
        names << baseName(name) << name;
    }
    for (const QString& name : names) {
        if (filesOfSeries(folder, name).contains(chosen))
            return filesOfSeries(folder, name);
    }
    return filesOfSeries(folder, names[0]);
}

/// A second loader, on whole files.
class Loader
{
public:
    Loader(const QString& infoText, const QString& date)
        : m_date(date)
    {
        m_load.info += infoText;
    }

    Load load(const QString& chosen)
    {
        for (const QString& path : filesAround(chosen))
            loadFile(path);
        return m_load;
    }

private:
    void loadFile(const QString& path)
    {
        QFile file(path);
        if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
            return;
        QList<QByteArray> lines = withoutMark(file.readAll()).split('\n');
        if (lines.last().isEmpty())
            lines.removeLast();
        const bool takesComments = m_load.info.join('\n').isEmpty();
        for (const QByteArray& bytes : lines) {
            const QByteArray upToZero = bytes.split('\0').first();
            loadLine(QString::fromLatin1(upToZero).left(1000), path, takesComments);
        }
    }

    void loadLine(const QString& line, const QString& path, bool takesComments)
    {
        const QString text = slowreading::trimmed(line);
        if (line.startsWith('#')) {
            if (takesComments)
                m_load.info += slowreading::trimmed(line.mid(1));
            return;
        }
        if (text.isEmpty())
            return;
        const auto task = describeLine(text, path, m_date);
        if (task)
            m_load.tasks += *task;
        else
            m_load.rejected << text << path;
    }

    QString m_date;
    Load m_load;
};

} // namespace slow
