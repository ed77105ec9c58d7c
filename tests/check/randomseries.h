#pragma once

#include "model/tasklist.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <random>
#include <vector>

/// A series without faults, drawn at random, as the editor saves it. Its content is known from the
/// drawing, and not from any code that checks it.
class RandomSeries
{
public:
    /// How far it has come.
    enum class State
    {
        Saved,    ///< loaded and saved once more after its first save
        InitRun,  ///< the _init file has made what it makes
        Finished, ///< all tasks have run
        count
    };

    /// A task, and where it stands.
    struct Task
    {
        TestTask record;
        int file = 0;               ///< number of its config file
        int number = 0;             ///< in that file
        int readsBack = -1;         ///< the task whose destination it reads, -1 if none
        bool readsExisting = false; ///< its source lies on the disk from the start
        bool readsOwn = false;      ///< the _init file makes its source for it alone
    };

    explicit RandomSeries(unsigned seed);

    std::mt19937& random() { return m_random; }
    /// 0 to below `end`.
    int draw(int end) { return int(m_random() % unsigned(end)); }

    std::vector<Task>& tasks() { return m_tasks; }
    int files() const { return m_files; }
    QStringList& hosts() { return m_hosts; }
    /// Where it runs, with "/" at the end.
    QString folder() const { return m_root.path() + "/series/"; }
    /// The folder for temporary files, for as long as the series lives.
    QString temp() const { return m_root.path() + "/tmp"; }
    /// Another way to the folder where it runs, with "/" at the end.
    QString linkedFolder() const { return m_root.path() + "/link/"; }

    /// Writes it, as the editor does after two saves.
    void save();
    /// Lays out what the disk holds then.
    void comeTo(State state);

    /// Where a task stands: "_wait/m1.dpc:3".
    static QString placeOf(const Task& task);
    /// The config file of a number, from the folder.
    static QString fileName(int number);

    /// The name that a path of a task stands for, on a machine and in an iteration.
    QByteArray expanded(const QByteArray& path, const Task& task, const QString& host,
                        int iteration) const;
    /// The same path as any other task has to name it.
    static QByteArray asSeenByOthers(QByteArray path, const Task& task);

private:
    void drawTask(Task& task);
    void drawSource(Task& task);
    void drawDestination(Task& task);
    void makeInitFiles() const;
    void makeDestinations() const;

    QTemporaryDir m_root;
    std::mt19937 m_random;
    std::vector<Task> m_tasks;
    int m_files = 1;
    QStringList m_hosts;
};
