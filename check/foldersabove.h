#pragma once

#include <QSet>
#include <QString>

/// The folders above some files, as far as memory allows.
class FoldersAbove
{
public:
    /// Adds all folders above a file, by its full name.
    void add(const QString& path);

    /// True for a folder, which ends with "/", that a file lies in or below, or if there are too
    /// many to tell: their names have more than 8,000,000 characters in all.
    bool contains(const QString& folder) const { return m_isFull || m_folders.contains(folder); }

private:
    QSet<QString> m_folders;
    long long m_characters = 0;
    bool m_isFull = false;
};
