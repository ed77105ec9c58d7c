#include "configset/seriesname.h"

#include "model/confignames.h"
#include "shared/kvpath.h"

#include <algorithm>

namespace {

const QString extension = QString::fromLatin1(configFileExtension);

bool isNumberDigit(QChar c)
{
    return c.unicode() > 127 ? c.category() == QChar::Number_DecimalDigit : kvIsDigit(c.unicode());
}

QString afterLastSeparator(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString withoutNumber(QString name)
{
    name.remove(extension);
    while (!name.isEmpty() && isNumberDigit(name.back()))
        name.chop(1);
    return name;
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
    const QString folder = kvGetDirNameAutoPD(chosenFile);
    const QString withoutWait = withoutNumber(QString(chosenFile).remove(waitFolder()));
    // A whole segment that is taken out leaves the file's own name as it is.
    const QString ownName = withoutNumber(afterLastSeparator(chosenFile));
    const QString names[] = {kvGetFileNameBase(withoutWait, '/'), afterLastSeparator(withoutWait),
                             kvGetFileNameBase(ownName, '/'), ownName};
    for (const QString& name : names) {
        SeriesName series{folder, name};
        if (candidateFiles(series).contains(chosenFile))
            return series;
    }
    return {folder, names[0]};
}

bool isBeyondSeries(const QString& fileName, const QString& baseName)
{
    if (!fileName.startsWith(baseName) || !fileName.endsWith(extension))
        return false;
    const QString number =
        fileName.mid(baseName.size(), fileName.size() - baseName.size() - extension.size());
    const bool isNumber =
        !number.isEmpty() &&
        std::all_of(number.cbegin(), number.cend(), [](QChar c) { return kvIsDigit(c.unicode()); });
    return isNumber &&
           (number.startsWith('0') || number.size() > 2 || number.toInt() >= seriesFileCount);
}

QString seriesFile(const QString& folder, const QString& baseName, int number)
{
    return folder + baseName + (number > 0 ? QString::number(number) : QString()) + extension;
}

QString initFile(const SeriesName& name)
{
    return name.folder + name.baseName + QLatin1String(initFileSuffix) + extension;
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
