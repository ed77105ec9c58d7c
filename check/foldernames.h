#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

/// A file in a folder.
struct FolderEntry
{
    QString name;
    bool isRegular = false; ///< not a pipe, and not a link that leads nowhere
};

/// All that could be a config file by its name, in capitals as well, sorted; no folders and nothing
/// hidden. Names that are not UTF-8 are among them if keepForeignBytesInFileNames() was called.
std::vector<FolderEntry> configFilesIn(const QString& folder);

/// The config files in folders, each folder listed once: a folder of many series is asked for the
/// files of each of them.
class FolderNames
{
public:
    /// Names of files that belong to a series by its name and that no load looks for, in their
    /// order; see isBeyondSeries(). The folder ends in "/".
    QStringList beyondSeries(const QString& folder, const QString& baseName);

private:
    /// Names that end in digits, by what comes before the digits.
    using Index = QHash<QString, QStringList>;

    static Index indexOf(const QString& folder);

    QHash<QString, Index> m_folders;
};
