#pragma once

#include "engine/plan.h"

#include <vector>

// Questions to a machine, asked by fio itself, so that they work through a server as well: a
// section that moves a few bytes of nothing if the answer is "yes", and none if it is "no". They
// only look.

/// Bytes that will be written below a folder, which may not be there yet.
struct SpaceNeed
{
    QString folder;
    qint64 bytes;
};

/// One question.
struct GuardTest
{
    /// The kind of question.
    enum class Kind
    {
        File,      ///< the state of a file
        NewFolder, ///< nothing is there under the name, and the folder above can be written
        Space,     ///< the file systems that the folders will lie on have the bytes free
        Caches,    ///< this user may drop the caches of the system
        SizeBit    ///< the size of the file has the bit with the number `bytes`
    };

    Kind kind = Kind::File;
    QString path;                        ///< of the file or the new folder
    FileState state = FileState::Absent; ///< of a file
    qint64 bytes = 0;                    ///< size of a source, or number of a bit
    std::vector<SpaceNeed> needs;        ///< for Space
};

/// The questions that a machine answers before the first byte of a run, each once.
std::vector<GuardTest> guardTests(const Plan& plan, int machine);

/// The question as a condition of the shell.
QByteArray guardCondition(const GuardTest& test);

/// A section of a call and the questions that it asks: all of them must be true.
struct GuardSection
{
    QByteArray name;
    std::vector<GuardTest> tests;
};

/// One call of fio for one machine.
struct GuardCall
{
    int machine = 0;
    QByteArray file; ///< relative to the folder of the export
    std::vector<GuardSection> sections;

    /// The job file that fio is given.
    QByteArray text() const;
};

/// Sections of one call: more would take fio long, and a GiB of memory for thousands.
constexpr int maxGuardSections = 64;

/// How many questions a section may ask.
enum class GuardGrain
{
    Many, ///< as many as a line of a job file can hold
    One   ///< tells which one has the answer no
};

/// Calls that ask a machine; the files are numbered from `firstNumber`.
std::vector<GuardCall> guardCalls(const Plan& plan, int machine,
                                  const std::vector<GuardTest>& tests, GuardGrain grain,
                                  int firstNumber = 0);

/// All calls of a plan before the first byte, machine by machine.
std::vector<GuardCall> allGuardCalls(const Plan& plan);

/// Questions that together tell how large a file is, with GuardGrain::One: bit N of its size is set
/// if question N has the answer yes. All say no of a file that is not there.
std::vector<GuardTest> sizeTests(const QString& path);

/// Questions that sizeTests() asks.
constexpr int sizeBits = 48;
static_assert(sizeBits <= maxGuardSections);
