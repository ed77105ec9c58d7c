#include "configset/seriesname.h"

#include "shared/kvpath.h"

namespace {

const QString extension = QStringLiteral(".dpc");

bool isNumberDigit(QChar c)
{
    return c.unicode() > 127 ? c.category() == QChar::Number_DecimalDigit : kvIsDigit(c.unicode());
}

} // namespace

SeriesName seriesNameForSaving(const QString& chosenFile)
{
    QString name = chosenFile;
    name.remove(extension);
    if (!name.isEmpty() && isNumberDigit(name.back()))
        name += QLatin1Char('_');
    name += extension;
    return {kvGetDirNameAutoPD(chosenFile), kvGetFileNameBase(name, '/')};
}

SeriesName seriesNameForLoading(const QString& chosenFile)
{
    QString name = chosenFile;
    name.remove(waitFolder()).remove(extension);
    while (!name.isEmpty() && isNumberDigit(name.back()))
        name.chop(1);

    const QString folder = kvGetDirNameAutoPD(chosenFile);
    const SeriesName series{folder, kvGetFileNameBase(name, '/')};
    // What follows a dot is no extension where only the whole name leads back to the chosen file,
    // as for "nas.lan.dpc".
    const SeriesName dotted{folder, name.mid(name.lastIndexOf(QLatin1Char('/')) + 1)};
    const bool isDotted =
        !candidateFiles(series).contains(chosenFile) && candidateFiles(dotted).contains(chosenFile);
    return isDotted ? dotted : series;
}

QString seriesFile(const QString& folder, const QString& baseName, int number)
{
    return folder + baseName + (number > 0 ? QString::number(number) : QString()) + extension;
}

QString initFile(const SeriesName& name)
{
    return name.folder + name.baseName + QStringLiteral("_init") + extension;
}

QStringList candidateFiles(const SeriesName& name)
{
    QStringList files;
    for (int number = 0; number < seriesFileCount; ++number) {
        for (const QString& folder : {name.folder, name.folder + waitFolder()})
            files += seriesFile(folder, name.baseName, number);
    }
    return files;
}
