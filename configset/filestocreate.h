#pragma once

#include "model/pathvariables.h"

#include <QSet>
#include <QString>
#include <QVector>

/// A file that must exist before a series can run.
struct FileToCreate
{
    QString text;         ///< every variable expanded but "[cfgPath]": what the creating line names
    QString resolved;     ///< "[cfgPath]" expanded too: where the file lies on this machine
    qint64 size = 0;      ///< bytes
    bool isDummy = false; ///< only there to make its folder
};

/// An ordered list in which no text stands twice.
class FileToCreateList
{
public:
    /// True if a file of the list has this text.
    bool contains(const QString& text) const { return m_texts.contains(text); }
    /// Adds a file whose text is not in the list yet.
    void append(const FileToCreate& file);
    /// In the order in which they were added.
    const QVector<FileToCreate>& files() const { return m_files; }

private:
    QVector<FileToCreate> m_files;
    QSet<QString> m_texts;
};

/// Adds the files that a name stands for, one for each iteration of the task (fewer where they have
/// the same text), each of `size` bytes.
void collectFilesToCreate(FileToCreateList& list, const QString& name, qint64 size,
                          const TestTask& task, const int& taskNumber,
                          const MachineValues& machine = {});

/// Adds all files that a task needs: its source, and a dummy in each folder that it writes to. A
/// destination counts only below "[cfgPath]"; the folders of log and .csv files always count.
void collectFilesOfTask(FileToCreateList& list, const TestTask& task, int taskNumber,
                        const MachineValues& machine = {});
