#include "benchmarks/plaintask.h"

#include <QString>
#include <QStringList>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

char* append(char* end, std::string_view text)
{
    std::memcpy(end, text.data(), text.size());
    return end + text.size();
}

char* append(char* end, int number, int width = 0)
{
    char digits[16];
    const char* const digitsEnd = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto count = static_cast<int>(digitsEnd - digits);
    for (int padding = width - count; padding > 0; --padding)
        *end++ = ' ';
    return append(end, {digits, static_cast<std::size_t>(count)});
}

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The fields of a line as views.
class Fields
{
public:
    explicit Fields(std::string_view line)
        : m_rest(line)
    {}

    bool next(char* text)
    {
        std::string_view field;
        if (!take(field))
            return false;
        *append(text, field) = 0;
        return true;
    }

    bool next(int& number)
    {
        std::string_view field;
        return take(field) &&
               std::from_chars(field.data(), field.data() + field.size(), number).ec == std::errc();
    }

private:
    bool take(std::string_view& field)
    {
        const std::size_t end = m_rest.find(';');
        if (end == std::string_view::npos)
            return false;
        field = trimmed(m_rest.substr(0, end));
        m_rest.remove_prefix(end + 1);
        return true;
    }

    std::string_view m_rest;
};

void copyText(char* text, const QString& field)
{
    const QByteArray latin1 = field.trimmed().toLatin1();
    std::memcpy(text, latin1.constData(), static_cast<std::size_t>(latin1.size()) + 1);
}

} // namespace

int writeBySnprintf(char* buffer, const PlainTask& task)
{
    return std::snprintf(buffer, plainLineSize,
                         "%-6s;%-7s;%-10s; %2d;%5d; %2d; %d;%d;%d;  %s;  %s;  %s;  %s;  %s;",
                         task.method, task.flush, task.preallocate, task.chunkWait, task.chunkKib,
                         task.sysBufferMode, task.fileKib, task.iterations, task.cacheMode,
                         task.source, task.dest, task.log, task.csv, task.writeDone);
}

int writeByToChars(char* buffer, const PlainTask& task)
{
    const auto padded = [](char* end, std::string_view text, std::size_t width) {
        char* const textEnd = append(end, text);
        std::memset(textEnd, ' ', width - text.size());
        return append(end + width, ";");
    };
    char* end = padded(buffer, task.method, 6);
    end = padded(end, task.flush, 7);
    end = append(padded(end, task.preallocate, 10), " ");
    end = append(append(end, task.chunkWait, 2), ";");
    end = append(append(end, task.chunkKib, 5), "; ");
    end = append(append(end, task.sysBufferMode, 2), "; ");
    end = append(append(end, task.fileKib), ";");
    end = append(append(end, task.iterations), ";");
    end = append(append(end, task.cacheMode), ";  ");
    for (const char* path : {task.source, task.dest, task.log, task.csv})
        end = append(append(end, path), ";  ");
    end = append(append(end, task.writeDone), ";");
    *end = 0;
    return static_cast<int>(end - buffer);
}

bool readBySscanf(PlainTask& task, const char* line)
{
    constexpr int fieldCount = 14;
    return std::sscanf(line,
                       " %15[^; ] ; %15[^; ] ; %15[^; ] ; %d ; %d ; %d ; %d ; %d ; %d ; %500[^;]; "
                       "%500[^;]; %500[^;]; %500[^;]; %15[^;];",
                       task.method, task.flush, task.preallocate, &task.chunkWait, &task.chunkKib,
                       &task.sysBufferMode, &task.fileKib, &task.iterations, &task.cacheMode,
                       task.source, task.dest, task.log, task.csv, task.writeDone) == fieldCount;
}

bool readByFromChars(PlainTask& task, const char* line)
{
    Fields fields(line);
    return fields.next(task.method) && fields.next(task.flush) && fields.next(task.preallocate) &&
           fields.next(task.chunkWait) && fields.next(task.chunkKib) &&
           fields.next(task.sysBufferMode) && fields.next(task.fileKib) &&
           fields.next(task.iterations) && fields.next(task.cacheMode) &&
           fields.next(task.source) && fields.next(task.dest) && fields.next(task.log) &&
           fields.next(task.csv) && fields.next(task.writeDone);
}

bool readBySplit(PlainTask& task, const char* line)
{
    constexpr int fieldCount = 15; // what follows the last ";" counts as well
    const QStringList fields = QString::fromLatin1(line).split(QLatin1Char(';'));
    if (fields.size() != fieldCount)
        return false;
    copyText(task.method, fields[0]);
    copyText(task.flush, fields[1]);
    copyText(task.preallocate, fields[2]);
    int* const numbers[] = {&task.chunkWait, &task.chunkKib,   &task.sysBufferMode,
                            &task.fileKib,   &task.iterations, &task.cacheMode};
    int next = 3;
    for (int* number : numbers)
        *number = fields[next++].trimmed().toInt();
    for (char* text : {task.source, task.dest, task.log, task.csv, task.writeDone})
        copyText(text, fields[next++]);
    return true;
}
