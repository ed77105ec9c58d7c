#include "engine/runfolder.h"

#include "check/text.h"
#include "engine/writeall.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int formatVersion = 1;
/// No state or plan of a run comes near it.
constexpr qint64 maxJsonBytes = 64 << 20;

QJsonObject readObject(const QString& path)
{
    const QFileInfo info(path);
    QFile file(path);
    // A pipe of that name would be waited for.
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.read(maxJsonBytes)).object();
}

QByteArray lineOf(const QString& machine, const QString& path)
{
    QByteArray text = QFile::encodeName(path);
    text.replace('\\', "\\\\").replace('\t', "\\t").replace('\n', "\\n");
    return machine.toUtf8() + '\t' + text;
}

} // namespace

const char* runStateName(RunState state)
{
    switch (state) {
    case RunState::Running:
        return "running";
    case RunState::Complete:
        return "complete";
    case RunState::Incomplete:
        return "incomplete";
    case RunState::Failed:
        return "failed";
    case RunState::Interrupted:
        return "interrupted";
    case RunState::Refused:
        break;
    }
    return "refused";
}

RunFolder::~RunFolder()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

bool RunFolder::isLocked(const QString& path)
{
    const int number = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (number < 0)
        return false;
    const bool isFree = ::flock(number, LOCK_EX | LOCK_NB) == 0;
    const bool isHeld = !isFree && errno == EWOULDBLOCK;
    ::close(number);
    return isHeld;
}

std::string RunFolder::whyTaken(const QString& path)
{
    struct stat status
    {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    const QJsonObject state = readObject(path + QLatin1Char('/') + QLatin1String(stateFileName));
    const QString name = state.value(QLatin1String("state")).toString();
    const QJsonValue stage = state.value(QLatin1String("stage"));
    std::string text = quoted(path) + " is there already";
    if (name.isEmpty())
        return text;
    if (name != QLatin1String(runStateName(RunState::Running)))
        return fmt::format("{}: a run that ended as {}", text, printable(name));
    const std::string where = stage.isDouble() ? fmt::format("in stage {}", stage.toInt())
                                               : std::string("before its first stage");
    return isLocked(path) ? fmt::format("{}: a run that goes on {}", text, where)
                          : fmt::format("{}: a run that was killed {}", text, where);
}

bool RunFolder::create(const QString& path, std::string& problem)
{
    constexpr mode_t everyonesUmask = 0777;
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), everyonesUmask) != 0) {
        problem = std::strerror(errno);
        return false;
    }
    m_path = QDir(path).absolutePath() + QLatin1Char('/');
    m_lock = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // Some file systems have no locks: then a run that goes on looks like one that was killed.
    if (m_lock >= 0)
        static_cast<void>(::flock(m_lock, LOCK_EX | LOCK_NB));
    return true;
}

bool RunFolder::write(const QString& name, const QByteArray& content)
{
    QSaveFile saved(file(name));
    if (saved.open(QIODevice::WriteOnly) && writeAll(saved, content) && saved.commit())
        return true;
    if (m_problem.empty())
        m_problem = fmt::format("{}: {}", quoted(file(name)), saved.errorString().toStdString());
    return false;
}

bool RunFolder::writeState(const RunStatus& status)
{
    QJsonArray reasons;
    for (const std::string& reason : status.reasons)
        reasons.append(QString::fromStdString(reason));
    QJsonObject object;
    object.insert(QStringLiteral("version"), formatVersion);
    object.insert(QStringLiteral("state"), QLatin1String(runStateName(status.state)));
    object.insert(QStringLiteral("stage"),
                  status.stage.has_value() ? QJsonValue(*status.stage) : QJsonValue());
    object.insert(QStringLiteral("reasons"), reasons);
    object.insert(QStringLiteral("startedMs"), status.startedMs);
    object.insert(QStringLiteral("endedMs"),
                  status.endedMs.has_value() ? QJsonValue(*status.endedMs) : QJsonValue());
    object.insert(QStringLiteral("process"), int(::getpid()));
    return write(QLatin1String(stateFileName), QJsonDocument(object).toJson());
}

QByteArray manifestText(const std::vector<MadeFile>& files)
{
    QByteArray text;
    for (const MadeFile& file : files)
        text += lineOf(file.machine, file.path) + '\n';
    return text;
}

std::optional<EarlierRun> EarlierRun::read(const QString& folder, std::string& problem)
{
    const QString begin = folder + QLatin1Char('/');
    const QString series =
        readObject(begin + QLatin1String(planFileName)).value(QLatin1String("series")).toString();
    QFile manifest(begin + QLatin1String(manifestFileName));
    if (series.isEmpty() || !QFileInfo(manifest).isFile() || !manifest.open(QIODevice::ReadOnly)) {
        problem = quoted(folder) + " does not hold a run that made files";
        return std::nullopt;
    }
    EarlierRun run;
    run.m_series = series;
    for (const QByteArray& line : manifest.readAll().split('\n')) {
        if (!line.isEmpty())
            run.m_lines.insert(line);
    }
    return run;
}

bool EarlierRun::made(const QString& machine, const QString& path) const
{
    return m_lines.contains(lineOf(machine, path));
}
