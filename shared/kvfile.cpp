#include "shared/kvfile.h"

#include "shared/kvtext.h"
#include "shared/linktarget.h"
#include "shared/replacefile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

bool kvFileExists(const _kvString<500>& file)
{
    return QFileInfo::exists(kvToQString(file));
}

bool kvCreateFolder(const QString& folder, bool parents)
{
    if (folder.isEmpty())
        return false;
    const QDir here;
    return (parents ? here.mkpath(folder) : here.mkdir(folder)) || QFileInfo(folder).isDir();
}

_kvString8_allSize<500> kvGetTempDir()
{
    QString folder = QDir::tempPath();
    // Qt finds nothing if TMPDIR does not name a folder. Then "[temp]/file" must not land in "/".
    if (folder.isEmpty())
        folder = QStringLiteral("/tmp");
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return kvToString8<500>(folder);
}

void writeToLogFile(const _kvString8_allSize<maxLogFileName>& file,
                    _kvString8_allSize<maxLogFileText> text, bool, bool)
{
    const QByteArray name = QFile::encodeName(kvToQString(file));
    if (name.isEmpty() || name.contains('\0'))
        return;
    const QByteArray path = linkTarget(name);
    if (path.isEmpty() || path.endsWith('/'))
        return;
    if (kvCreateFolder(QFile::decodeName(folderOf(path)), true))
        replaceFile(path, text.text, static_cast<std::size_t>(text.length));
}
