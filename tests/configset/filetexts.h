#pragma once

#include "configset/filestocreate.h"

#include <QStringList>

/// The names of the files, as the lines that create them have them.
inline QStringList textsOf(const FileToCreateList& list)
{
    QStringList texts;
    for (const FileToCreate& file : list.files())
        texts += file.text;
    return texts;
}
