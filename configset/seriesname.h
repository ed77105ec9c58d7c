#pragma once

#include <QString>
#include <QStringList>

/// The name of a series of config files: "<folder><baseName>.dpc", "<folder><baseName>1.dpc" and so
/// on, each in the folder itself or in its subfolder "_wait", and "<folder><baseName>_init.dpc".
struct SeriesName
{
    QString folder;   ///< with a separator at the end, or empty
    QString baseName; ///< without number and extension
};

/// How many files of a series are looked for: the first without a number, then 1 to 19.
constexpr int seriesFileCount = 20;

/// The subfolder in which the files of a series wait until somebody starts them.
inline QString waitFolder()
{
    return QStringLiteral("_wait/");
}

/// The name under which a series is saved when the user has chosen this file. A digit at the end
/// gets a "_" behind it, so that it is not taken for the number of a file.
SeriesName seriesNameForSaving(const QString& chosenFile);

/// The series that the chosen file belongs to. A file chosen inside "_wait" makes that the folder.
SeriesName seriesNameForLoading(const QString& chosenFile);

/// The file name of the file with this number (0 is the first, without a number) in a folder.
QString seriesFile(const QString& folder, const QString& baseName, int number);

/// The companion that creates what the series needs.
QString initFile(const SeriesName& name);

/// Every file that belongs to the series where it exists, in the order of loading.
QStringList candidateFiles(const SeriesName& name);
