#pragma once

#include "model/confignames.h"
#include "model/limits.h"

#include <QString>
#include <QStringList>

/// The name of a series of config files: "<folder><baseName>.dpc", "<folder><baseName>1.dpc" and so
/// on, each in the folder itself or in its subfolder "_wait", and "<folder><baseName>_init.dpc".
struct SeriesName
{
    QString folder;   ///< with a separator at the end, or empty
    QString baseName; ///< without number and extension
};

/// The subfolder in which the files of a series wait until somebody starts them.
inline QString waitFolder()
{
    return QString::fromLatin1(waitFolderName);
}

/// The name under which a series is saved when the user has chosen this file. A digit at the end
/// gets a "_" behind it, so that it is not taken for the number of a file.
SeriesName seriesNameForSaving(const QString& chosenFile);

/// The series that the chosen file belongs to: the first of these names that has the file among its
/// candidateFiles(), or else the first. All of them lose the number at the end.
///
/// 1. without every "_wait/" of the path, and without what follows the last dot of what remains
/// 2. the same with its dots
/// 3. without whole segments "_wait" only, so that "/x/my_wait/s.dpc" is not "/x/mys.dpc"
/// 4. the same with its dots
///
/// The folder is always that of the file: one chosen inside "_wait" makes that the folder.
SeriesName seriesNameForLoading(const QString& chosenFile);

/// True for a file that belongs to a series by its name and that no load looks for: number 20 and
/// above, or a number with leading zeros.
bool isBeyondSeries(const QString& fileName, const QString& baseName);

/// The file name of the file with this number (0 is the first, without a number) in a folder.
QString seriesFile(const QString& folder, const QString& baseName, int number);

/// The _init file, which creates what the series needs.
QString initFile(const SeriesName& name);

/// Every file that belongs to the series if it exists, in the order of loading.
QStringList candidateFiles(const SeriesName& name);
