#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>

// Whether a path leads to a file at all, or to a folder, a pipe, a socket or a disk.

namespace {

constexpr Rule fileIsFolder = {
    "file-is-folder",
    Severity::Error,
    "paths",
    "The source or destination names a folder: by a separator at its end, by [cfgPath], [temp], a "
    "drive, a server or a share alone, or because a folder of that name exists.",
    "name a file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out/;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule logIsFolder = {
    "log-is-folder",
    Severity::Warning,
    "paths",
    "The log or .csv field names a folder: an empty field does after a load and a save.",
    "name a file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// True if a path ends in "." or "..", which are gone once it is resolved.
bool endsInDots(const QByteArray& path)
{
    // Most paths end in a letter.
    if (!path.endsWith('.'))
        return false;
    const int start = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1;
    const QByteArray last = path.mid(start);
    return last == "." || last == "..";
}

/// Of all iterations and machines one is enough.
void checkNamedFolder(const SeriesFacts& facts, const FileUses& uses, int line, TaskPath role,
                      Findings& findings)
{
    for (int iteration = 0; iteration < uses.useCount(line, role); ++iteration) {
        const FileUse& use = uses.use(line, role, iteration);
        const KeyedPath& path = uses.file(use, 0).path;
        const LineFact& fact = facts.lines[size_t(line)];
        const bool isThere = path.kind == PathStatus::Kind::Folder;
        if (!isThere && !path.namesFolder && !endsInDots(fact.path(role)))
            continue;
        findings.add(role == SourcePath || role == DestPath ? fileIsFolder : logIsFolder, fact,
                     fact.columnOf(role),
                     fmt::format("the {} {} {}, and a file is needed",
                                 fieldName(firstPathField + role), quoted(uses.nameOf(use).text),
                                 isThere ? "is a folder" : "names a folder"));
        return;
    }
}

constexpr Rule specialFile = {
    "special-file",
    Severity::Error,
    "paths",
    "A path leads to a pipe, where the task waits for another program, or to a socket, which can't "
    "be opened. A warning for a disk itself that a task writes, because all that lies on it is "
    "lost, and for /dev/null as a source, which holds no bytes. Devices may be named otherwise: "
    "/dev/zero as a source, /dev/null for what nobody needs.",
    "name a file",
    withExisting("/data/out|", 0,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/out;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    withExisting("/data/", 0,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/out;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

/// The fault of a file of its kind, as the end of a sentence; null if nothing is.
const char* faultOfKind(const KeyedPath& path, TaskPath role)
{
    switch (path.kind) {
    case PathStatus::Kind::Pipe:
        return "is a pipe: the task waits until another program opens it";
    case PathStatus::Kind::Socket:
        return "is a socket, which can't be opened as a file";
    case PathStatus::Kind::Disk:
        return role == SourcePath ? nullptr
                                  : "is a disk itself: the task overwrites what lies on it";
    case PathStatus::Kind::Device:
        return role == SourcePath && path.key == "/dev/null"
                   ? "holds no bytes: there is nothing to read"
                   : nullptr;
    default:
        return nullptr;
    }
}

/// Of all iterations one is enough.
void checkSpecialFile(const SeriesFacts& facts, const FileUses& uses, int line, TaskPath role,
                      Findings& findings)
{
    for (int iteration = 0; iteration < uses.useCount(line, role); ++iteration) {
        const FileUse& use = uses.use(line, role, iteration);
        const KeyedPath& path = uses.file(use, 0).path;
        const char* const fault = faultOfKind(path, role);
        if (fault == nullptr)
            continue;
        const LineFact& fact = facts.lines[size_t(line)];
        Message message = fmt::format("the {} {} {}", fieldName(firstPathField + role),
                                      quoted(uses.nameOf(use).text), fault);
        if (path.kind == PathStatus::Kind::Disk || path.kind == PathStatus::Kind::Device)
            message = std::move(message).as(Severity::Warning);
        findings.add(specialFile, fact, fact.columnOf(role), std::move(message));
        return;
    }
}

} // namespace

void checkKinds(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    for (int line = 0; line < int(facts.lines.size()); ++line) {
        for (const TaskPath role : {SourcePath, DestPath, LogPath, CsvPath}) {
            checkNamedFolder(facts, uses, line, role, findings);
            checkSpecialFile(facts, uses, line, role, findings);
        }
    }
}

RuleList kindRules()
{
    return {&fileIsFolder, &logIsFolder, &specialFile};
}
