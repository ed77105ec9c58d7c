#include "model/tasklinereader.h"

#include "model/confignames.h"
#include "model/limits.h"
#include "model/methods.h"
#include "model/pathvariables.h"
#include "shared/kvpath.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <system_error>

namespace {

using Path = _kvString8_allSize<maxPath>;

/// One trimmed field, a view into the line.
struct Field
{
    const unsigned short* text;
    int length;

    bool is(const char* keyword) const
    {
        // Most words differ in their first letter, so that their lengths are not asked for.
        int same = 0;
        while (same < length && keyword[same] != 0 &&
               kvdetail::codeUnit(keyword[same]) == text[same])
            ++same;
        return same == length && keyword[same] == 0;
    }
};

/// Takes the fields of a line one by one. A line with too few of them ends in empty ones.
class FieldReader
{
public:
    explicit FieldReader(const _kvString<maxLine>& line)
        : m_line(line)
    {}

    Field next()
    {
        const auto* const lineEnd = m_line.text + m_line.length;
        int start = m_position;
        auto end = static_cast<int>(std::find(m_line.text + start, lineEnd, ';') - m_line.text);
        m_position = std::min(end + 1, int(m_line.length));
        while (start < end && kvdetail::isWhiteSpace(m_line.text[start]))
            ++start;
        while (end > start && kvdetail::isWhiteSpace(m_line.text[end - 1]))
            --end;
        m_last = {++m_count, start, end - start};
        return {m_line.text + start, end - start};
    }

    int position() const { return m_position; }
    bool atEnd() const { return m_position >= m_line.length; }

    /// The field taken last.
    const TaskLineProblem& last() const { return m_last; }

private:
    const _kvString<maxLine>& m_line;
    int m_position = 0;
    int m_count = 0;
    TaskLineProblem m_last;
};

/// The low byte of each character gives back what the writer sign-extended. A text ends at its
/// first zero.
void narrow(Path& path, const unsigned short* text, int length)
{
    const auto end = static_cast<int>(std::find(text, text + length, 0) - text);
    const int fitting = std::min(end, maxPath);
    for (int i = 0; i < fitting; ++i)
        path.text[i] = static_cast<char>(text[i] & 0xFF);
    path.setLength(static_cast<short>(fitting));
}

std::optional<IoMethod> methodOf(const Field& field)
{
    for (int number = 0; number < methodCount; ++number) {
        if (ioMethods[number].has(IsRead) && field.is(ioMethods[number].name))
            return static_cast<IoMethod>(number);
    }
    return std::nullopt;
}

bool isTrue(const Field& field, const char* keyword)
{
    return field.is(keyword) || field.is("true") || field.is("1");
}

/// An empty field and a lone "-" count as 0. A number beyond 64 bits is the nearest that they hold,
/// before it is cut to 32.
std::optional<std::int32_t> numberOf(const Field& field)
{
    char digits[maxNumberLength];
    const int count = std::min(field.length, maxNumberLength);
    for (int i = 0; i < field.length; ++i) {
        const unsigned short c = field.text[i];
        if (!kvIsDigit(c) && !(i == 0 && c == '-'))
            return std::nullopt;
        if (i < count)
            digits[i] = static_cast<char>(c);
    }
    std::int64_t value = 0;
    if (std::from_chars(digits, digits + count, value).ec == std::errc::result_out_of_range)
        value = digits[0] == '-' ? std::numeric_limits<std::int64_t>::min()
                                 : std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int32_t>(value);
}

/// Reads the six numbers; `set` gets 0 for a text that is not a number, which ends the reading.
template <class Set>
bool readNumber(FieldReader& fields, const Set& set)
{
    const std::optional<std::int32_t> number = numberOf(fields.next());
    set(number.value_or(0));
    return number.has_value();
}

bool readNumbers(TestTask& task, FieldReader& fields)
{
    _fileGLobal& io = task.io;
    return readNumber(fields, [&](std::int32_t ms) { task.setChunkWait(ms); }) &&
           readNumber(fields, [&](std::int32_t kib) { task.setChunkSize(bytesFromKib(kib)); }) &&
           readNumber(fields, [&](std::int32_t mode) { io.sysBufferMode = mode; }) &&
           readNumber(fields, [&](std::int32_t kib) { io.fileSize = bytesFromKib(kib); }) &&
           readNumber(fields, [&](std::int32_t count) { task.iterations = count; }) &&
           readNumber(fields, [&](std::int32_t mode) { io.cacheMode = mode; });
}

/// All that a line must not exceed, whether the rest of it is accepted or not. The size is compared
/// after its 32 bits have overflowed.
void capSettings(_fileGLobal& io)
{
    io.sysBufferMode = std::min(io.sysBufferMode, maxSysBufferModeRead);
    io.fileSize = std::min(io.fileSize, maxFileSize);
}

void readPath(Path& path, FieldReader& fields)
{
    const Field field = fields.next();
    narrow(path, field.text, field.length);
}

void makeAbsolute(Path& path, const Path& folder)
{
    if (!isRelativePath(path))
        return;
    Path absolute = folder;
    absolute.add(path);
    path = absolute;
}

void readPaths(TestTask& task, FieldReader& fields, const Path& folder)
{
    Path* const paths[] = {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath};
    for (Path* path : paths)
        readPath(*path, fields);
    for (Path* path : {&task.sourcePath, &task.destPath}) {
        if (path->isEqual("MEMORY"))
            path->clear();
    }
    for (Path* path : paths)
        *path = kvConvertPDToOS(*path);
    for (Path* path : {&task.sourcePath, &task.destPath}) {
        if (path->hasData())
            makeAbsolute(*path, folder);
    }
    // An empty log or .csv path becomes the folder itself.
    makeAbsolute(task.logPath, folder);
    makeAbsolute(task.csvPath, folder);

    task.logPathAsRead = task.logPath;
    task.csvPathAsRead = task.csvPath;
    task.sourcePathAsRead = task.sourcePath;
    task.destPathAsRead = task.destPath;
}

void readMarker(TestTask& task, const _kvString<maxLine>& line)
{
    task.waitForNextConfig = true;
    narrow(task.sourcePath, line.text, line.length);
    task.sourcePath = kvConvertPDToOS(replaceFileVariables8(task, task.sourcePath, 0, 0, false));
}

} // namespace

TaskLineFields splitTaskLine(const _kvString<maxLine>& line)
{
    TaskLineFields split;
    FieldReader reader(line);
    for (TaskLineField& field : split.fields) {
        split.count += reader.atEnd() ? 0 : 1;
        reader.next();
        field = {reader.last().column, reader.last().length};
    }
    split.beyond = {reader.position(), line.length - reader.position()};
    return split;
}

bool readTaskLine(TestTask& task, const _kvString<maxLine>& line, const Path& configPath,
                  TaskLineProblem* problem)
{
    const bool isAccepted = readTaskLineAsIs(task, line, configPath, problem);
    // A marker has no settings.
    if (task.waitForNextConfig)
        return true;
    capSettings(task.io);
    if (isAccepted)
        task.normalise();
    return isAccepted;
}

bool readTaskLineAsIs(TestTask& task, const _kvString<maxLine>& line, const Path& configPath,
                      TaskLineProblem* problem)
{
    task.configPath = configPath;
    task.lineText = line;
    if (line.endsWith(configFileExtension)) {
        readMarker(task, line);
        return true;
    }

    task.waitForNextConfig = false;
    FieldReader fields(line);
    const std::optional<IoMethod> method = methodOf(fields.next());
    if (method) {
        task.method = *method;
        task.io.flush = isTrue(fields.next(), "flush");
        task.io.preallocate = isTrue(fields.next(), "prealloc");
    }
    if (!method || !readNumbers(task, fields)) {
        if (problem != nullptr)
            *problem = fields.last();
        return false;
    }
    readPaths(task, fields, kvGetDirName(configPath));
    task.writeDone = fields.next().is("true");
    return true;
}
