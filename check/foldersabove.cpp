#include "check/foldersabove.h"

#include "check/filekeys.h"
#include "shared/kvpath.h"

void FoldersAbove::add(const QString& path)
{
    for (QString folder = kvGetDirName(path, '/');
         !m_isFull && !folder.isEmpty() && !m_folders.contains(folder);
         folder = kvGetDirName(folder.chopped(1), '/')) {
        m_characters += folder.size();
        m_isFull = m_characters > maxFolderCharacters;
        folder.squeeze();
        m_folders.insert(folder);
    }
}
