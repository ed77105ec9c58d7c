#pragma once

#include "tests/support/files.h"

#include <QDir>

namespace test {

/// Copies the series of examples/ into a folder, with files of another size than their 100 MiB.
inline void copyExamples(const QString& folder, const QByteArray& fileSizeKib)
{
    const QString source = TWDP_SOURCE_DIR "/examples";
    QDir().mkpath(folder + "/_wait");
    for (const QString& name : entriesOf(source)) {
        if (name.endsWith(".dpc"))
            put(folder + '/' + name,
                contentOf(source + '/' + name).replace("; 102400;", "; " + fileSizeKib + ';'));
    }
}

} // namespace test
