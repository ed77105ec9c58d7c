#pragma once

#include "check/seriesfacts.h"
#include "model/pathvariables.h"

/// Expands the names of the tasks of a series as they are on the machines that run it: its files
/// lie outside "_wait" then, and have their number as config file ID.
class NameExpander
{
public:
    /// The facts must outlive it.
    NameExpander(const SeriesFacts& facts, MachineValues machine);

    /// Where a path lies; a relative one counts from the folder of the config file.
    QString resolve(const LineFact& line, const QByteArray& path, int iteration = 0);

    /// The same with "[cfgPath]" left in, as an "_init" file names it.
    QString initName(const LineFact& line, const QByteArray& path, int iteration = 0);

    /// As an "_init" file names it that was saved before the tasks belonged to a config file.
    QString namelessInitName(const LineFact& line, const QByteArray& path, int iteration = 0);

    /// The value of a variable, which is given as it is spelled.
    QString valueOf(const LineFact& line, const char* variable, int iteration);

    /// At least as long as what any variable stands for, in characters.
    int longestValue() const { return m_longestValue; }

    /// The task as a record of the editor, as far as its files go: paths as the line has them.
    TestTask& record(const LineFact& line);

private:
    QString expand(const LineFact& line, const QByteArray& path, int iteration, bool keepCfgPath);
    void turnTo(const LineFact& line);

    const SeriesFacts& m_facts;
    MachineValues m_machine;
    int m_longestValue;
    TestTask m_task;
    int m_file = -1;
};

/// Values that leave "[host]", "[date]" and "[temp]" in the names: what two tasks have in common on
/// every machine.
MachineValues noMachine();

/// This machine, asked once.
MachineValues thisMachine();

/// Puts the folder of the config files, which ends in "/", in the place of "[cfgPath]". The name of
/// the folder may hold that word itself.
void replaceConfigPath(QByteArray& path, const QByteArray& folder);

/// True if a path counts from the folder of the config file that names it; also for the empty path.
bool isRelative(const QByteArray& path);

/// True if a name that was expanded by noMachine() is another one on each machine or at each run.
bool dependsOnMachine(const QString& name);
