#pragma once

#include "model/pathvariables.h"

#include <QSet>
#include <QString>
#include <QVector>

#include <optional>

/// The name of a file that is only there to make its folder.
constexpr char dummyFileName[] = "dummyFile";

/// A file that must exist before a series can run.
struct FileToCreate
{
    QString text;         ///< every variable expanded but "[cfgPath]": what the creating line names
    QString resolved;     ///< "[cfgPath]" expanded too: where the file lies on this machine
    qint64 size = 0;      ///< bytes
    bool isDummy = false; ///< only there to make its folder
};

/// The line of an _init file that creates a file, with its line end.
QString creatingLine(const FileToCreate& file);

/// An ordered list in which no text stands twice.
class FileToCreateList
{
public:
    /// Without a limit.
    FileToCreateList() = default;
    /// Full as soon as the lines of its files fill this many characters of an _init file.
    explicit FileToCreateList(int maxCharacters)
        : m_maxCharacters(maxCharacters)
    {}

    /// True if nothing more can be seen in the _init file; what is added still counts.
    bool isFull() const { return m_maxCharacters && m_characters >= *m_maxCharacters; }
    /// True if a file of the list has this text.
    bool contains(const QString& text) const { return m_texts.contains(text); }
    /// Adds a file whose text is not in the list yet.
    void append(const FileToCreate& file);
    /// In the order in which they were added.
    const QVector<FileToCreate>& files() const { return m_files; }

private:
    std::optional<int> m_maxCharacters;
    int m_characters = 0; ///< counted only if there is a limit
    QVector<FileToCreate> m_files;
    QSet<QString> m_texts;
};

/// Adds the files that a name stands for, one for each iteration of the task (fewer if they have
/// the same text, or if the list is full), each of `size` bytes. The time grows with the files that
/// are added and with those that other names have added before, not with the iterations.
void collectFilesToCreate(FileToCreateList& list, const QString& name, qint64 size,
                          const TestTask& task, const int& taskNumber,
                          const MachineValues& machine = {});

/// Adds all files that a task needs: its source, and a dummy in each folder that it writes to. A
/// destination counts only below "[cfgPath]"; the folders of log and .csv files always count.
void collectFilesOfTask(FileToCreateList& list, const TestTask& task, int taskNumber,
                        const MachineValues& machine = {});
