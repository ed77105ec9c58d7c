#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/// The most machines that one series is checked for or run on.
constexpr int maxMachines = 100000;

/// A machine that runs a series.
struct Machine
{
    QString name;
    QString address; ///< "ip:ADDRESS,PORT" or "sock:PATH" of its fio server; empty if not told
    QString temp;    ///< its folder for [temp]; empty if not told
};

/// The machines that a user named.
struct MachineList
{
    std::vector<Machine> machines; ///< each name once, in the order of their first place
    std::string problem{};         ///< half a sentence if they can't be used
    std::string repeated{};        ///< half a sentence if names are there twice, in any capitals
    int repeatedCount = 0;         ///< how many names that are

    /// The names alone.
    QStringList names() const;
};

/// Machines by their names: "pc1", "pc[01-20]", "rack[1-2]-pc[01,05-08]". The numbers of a range
/// keep the leading zeros of its first. Several names stand between commas; empty ones are left
/// out. No name at all is a problem, and so are more than maxMachines.
MachineList machinesNamed(const QStringList& texts);

/// The machines of a file in UTF-8. Each line holds a name or a range, and after it, if wanted, the
/// address of the machine and its folder for temporary files:
///
///     pc[01-20] temp=/scratch     # "#" begins a comment
///     server1=ip:192.0.2.7,8765
///     server2=sock:/run/fio/server2 temp=/mnt/fast disk
///
/// A range has no address. The folder is the rest of the line. A machine that has two addresses or
/// folders is a problem.
MachineList machinesInFile(const QString& path);

/// So many machines: machine01, machine02, ...
MachineList numberedMachines(int count);
