#include "engine/calllog.h"

#include "engine/names.h"

#include <QByteArrayList>

namespace {

/// The lines of a log: the files in the order in which a job opens them, and what it does with each
/// chunk.
class CallLog
{
public:
    explicit CallLog(const PlanJob& job)
    {
        const QByteArray source = encodedName(job.source.path);
        const QByteArray destination = encodedName(job.destination.path);
        if (!source.isEmpty()) {
            m_files += source;
            m_actions += source + " read ";
        }
        if (!destination.isEmpty()) {
            m_files += destination;
            m_actions += destination + " write ";
        }
        if (job.flush)
            m_sync = m_files.last() + " sync 0 0\n";
    }

    QByteArrayList opening() const
    {
        return QByteArrayList{"fio version 2 iolog"} + each(" add") + each(" open");
    }
    QByteArrayList closing() const { return each(" close"); }

    /// Adds the lines of one chunk, the last with its end; a shell puts numbers in for other texts.
    void addChunk(QByteArray& text, const QByteArray& offset, const QByteArray& length) const
    {
        for (const QByteArray& action : m_actions) {
            text += action;
            text += offset;
            text += ' ';
            text += length;
            text += '\n';
        }
        text += m_sync;
    }

private:
    QByteArrayList each(const char* action) const
    {
        QByteArrayList lines;
        for (const QByteArray& file : m_files)
            lines += file + action;
        return lines;
    }

    QByteArrayList m_files;
    QByteArrayList m_actions;
    QByteArray m_sync;
};

/// `printf '%s\n' 'line' ...`
QByteArray printed(const QByteArrayList& lines)
{
    QByteArray command = "printf '%s\\n'";
    for (const QByteArray& line : lines)
        command += ' ' + shellWord(line);
    return command;
}

/// The lines of a chunk as what sed puts in place of its offset.
QByteArray sedScript(const CallLog& log, const QByteArray& length)
{
    const QByteArray offset(1, '\x01'); // in no name: those hold no control characters
    QByteArray text;
    log.addChunk(text, offset, length);
    text.chop(1);
    text.replace('\\', "\\\\").replace('/', "\\/").replace('&', "\\&").replace('\n', "\\n");
    return "s/.*/" + text.replace(offset, "&") + '/';
}

} // namespace

qint64 logLines(const PlanJob& job)
{
    const qint64 files = int(!job.source.path.isEmpty()) + int(!job.destination.path.isEmpty());
    return 1 + 3 * files + job.chunks() * (files + int(job.flush));
}

bool writeLog(const PlanJob& job, const std::function<bool(const QByteArray&)>& write)
{
    constexpr int enoughForOneCall = 64 * 1024;
    const CallLog log(job);
    QByteArray text = log.opening().join('\n') + '\n';
    for (qint64 offset = 0; offset < job.bytes; offset += job.chunk) {
        const qint64 length = qMin(job.chunk, job.bytes - offset);
        log.addChunk(text, QByteArray::number(offset), QByteArray::number(length));
        if (text.size() < enoughForOneCall)
            continue;
        if (!write(text))
            return false;
        text.clear();
    }
    return write(text + log.closing().join('\n') + '\n');
}

QByteArray logCommand(const PlanJob& job, const QByteArray& file)
{
    const auto number = [](qint64 n) { return QByteArray::number(n); };
    const CallLog log(job);
    const qint64 rest = job.bytes % job.chunk;
    const qint64 whole = job.bytes - rest;
    QByteArray command = '(' + printed(log.opening());
    if (whole > 0)
        command += " && seq 0 " + number(job.chunk) + ' ' + number(whole - job.chunk) + " | sed " +
                   shellWord(sedScript(log, number(job.chunk)));
    QByteArrayList end = log.closing();
    if (rest > 0) {
        QByteArray last;
        log.addChunk(last, number(whole), number(rest));
        last.chop(1);
        end = last.split('\n') + end;
    }
    return command + " && " + printed(end) + ") > " + shellWord(file);
}
