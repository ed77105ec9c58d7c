#pragma once

#include "check/checker.h"
#include "check/findings.h"
#include "check/rules/catalogue.h"
#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "shared/kvtext.h"
#include "tests/support/files.h"
#include "tests/support/recording.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

/// A Read task whose log and .csv file differ on each machine.
inline TestTask readingTask(const char* source)
{
    TestTask task;
    task.setDefaults();
    task.sourcePath = path(source);
    task.destPath.clear();
    task.logPath = path("[cfgPath]/[host].txt");
    task.csvPath = path("[cfgPath]/[host]-[cfgID].csv");
    return task;
}

/// For a load whose comments and warnings a test does not look at.
inline LoadListener silentListener()
{
    return {[] { return false; }, [](const QString&) {}, [](const QString&, const QString&) {}};
}

/// A folder in which a test lays out a series, and what dpc says of it. Nothing outside the folder
/// exists for the rules but what the test names, so that results are the same on every machine.
class SeriesFolder
{
public:
    SeriesFolder()
        : m_folder(Recordings::folderOfKnownLength())
        , m_root(m_folder.path() + '/')
    {
        Recordings::hide(m_root, "@ROOT@/");
        if (!m_folder.isValid() || !QDir(m_root).mkdir("_wait"))
            qFatal("can't make a folder for the test");
        setExisting(m_root + "_wait/");
        m_options.environment.look = [this](const QString& path) { return look(path); };
        m_options.environment.space = [](const QString&) {
            return std::optional<DiskSpace>({1, qint64(1) << 60});
        };
    }

    const QString& root() const { return m_root; }
    CheckOptions& options() { return m_options; }

    void put(const QString& name, const QByteArray& content)
    {
        if (!QDir().mkpath(QFileInfo(m_root + name).path()))
            qFatal("can't make a folder for the test");
        test::put(m_root + name, content);
    }

    /// Of a file or folder that is there; of the folder itself if the name is empty.
    void setRights(const QString& name, mode_t mode)
    {
        if (::chmod(QFile::encodeName(m_root + name).constData(), mode) != 0)
            qFatal("can't change rights for the test");
    }

    /// A file that rules find on the disk, or a folder if it ends in "/"; the folders above it are
    /// there as well.
    void setExisting(const QString& path, qint64 size = 0)
    {
        if (!path.endsWith('/'))
            m_existing.insert(path, size);
        for (int end = 0; end >= 0; end = path.indexOf('/', end + 1))
            m_folders.insert(path.left(end));
    }

    /// A pipe, a disk or another special file.
    void setSpecial(const QString& path, PathStatus::Kind kind)
    {
        setExisting(path);
        m_special.insert(path, kind);
    }

    /// As the editor saves a list.
    void save(TaskList tasks, const char* baseName = "a")
    {
        saveSeries(tasks, "info", {m_root, baseName});
    }

    SeriesFacts facts(const QString& chosen = "a.dpc") const
    {
        return readSeries(seriesNameForLoading(m_root + chosen), QString());
    }

    std::vector<Finding> findings(const QString& chosen = "a.dpc") const
    {
        const CheckResult result = checkAll({m_root + chosen}, m_options);
        Recordings::compare(textOf(result));
        return result.findings;
    }

    /// The first findings as people see them, and all problems.
    static QString textOf(const CheckResult& result)
    {
        constexpr size_t most = 20;
        const char* const severities[] = {"error", "warning", "note"};
        QStringList lines;
        for (const Finding& finding : result.findings) {
            QStringList names;
            for (const std::string& name : finding.names)
                names += QString::fromStdString(name);
            if (size_t(lines.size()) < most)
                lines += QStringLiteral("%1:%2:%3: %4: %5 [%6]%7")
                             .arg(finding.path)
                             .arg(finding.line)
                             .arg(finding.column)
                             .arg(severities[int(finding.severity)],
                                  QString::fromStdString(finding.text), finding.rule->name,
                                  names.isEmpty() ? "" : " of " + names.mid(0, most).join(", "));
        }
        if (result.findings.size() > most)
            lines += QStringLiteral("of %1").arg(result.findings.size());
        for (const std::string& problem : result.problems)
            lines += QString::fromStdString(problem);
        return lines.join('\n');
    }

    /// "file:line:column rule" of each finding; only those of the given rules, if some are
    /// given.
    QStringList said(const QSet<QString>& rules = {}, const QString& chosen = "a.dpc") const
    {
        QStringList texts;
        for (const Finding& finding : findings(chosen)) {
            const QString rule = finding.rule->name;
            if (rules.isEmpty() || rules.contains(rule))
                texts += QStringLiteral("%1:%2:%3 %4")
                             .arg(QString(finding.path).remove(m_root))
                             .arg(finding.line)
                             .arg(finding.column)
                             .arg(rule);
        }
        return texts;
    }

    /// The same without notes.
    QStringList errorsAndWarnings() const
    {
        QSet<QString> rules;
        for (const Finding& finding : findings()) {
            if (finding.rule->severity != Severity::Note)
                rules.insert(finding.rule->name);
        }
        return rules.isEmpty() ? QStringList() : said(rules);
    }

    /// The text of the first finding of a rule.
    QString text(const char* rule, const QString& chosen = "a.dpc") const
    {
        for (const Finding& finding : findings(chosen)) {
            if (finding.rule->name == QByteArray(rule))
                return QString::fromStdString(finding.text);
        }
        return {};
    }

    /// The severity of the first finding of a rule; a note without one.
    Severity severity(const char* rule, const QString& chosen = "a.dpc") const
    {
        for (const Finding& finding : findings(chosen)) {
            if (finding.rule->name == QByteArray(rule))
                return finding.severity;
        }
        return Severity::Note;
    }

    /// How often a rule hits a series of one file with these lines.
    int hits(const char* rule, const QByteArray& lines)
    {
        put("a.dpc", lines);
        return said({rule}).size();
    }

private:
    PathStatus look(const QString& path) const
    {
        PathStatus status;
        const QString name = path.endsWith('/') ? path.chopped(1) : path;
        const auto file = m_existing.constFind(name);
        if (file != m_existing.cend())
            status.kind = m_special.value(name, PathStatus::Kind::File);
        else if (m_folders.contains(name))
            status.kind = PathStatus::Kind::Folder;
        else
            return path.startsWith(m_root) ? m_real.look(path) : status;
        status.isReadable = status.isWritable = true;
        status.size = file != m_existing.cend() ? *file : 0;
        status.canonical = name.isEmpty() ? "/" : name;
        return status;
    }

    QTemporaryDir m_folder;
    QString m_root;
    QHash<QString, qint64> m_existing; ///< path and size
    QHash<QString, PathStatus::Kind> m_special;
    QSet<QString> m_folders;
    CheckOptions m_options;
    Environment m_real = realEnvironment();
};

/// A line in which nothing is wrong, with some fields (from 1) replaced.
inline QByteArray goodLine(const QMap<int, QByteArray>& changes = {})
{
    QList<QByteArray> fields = {
        "Posix",    "flush",         "prealloc",      "10",  "64", "1", "1024", "3", "0", "MEMORY",
        "/d/x.dat", "/d/[host].txt", "/d/[host].csv", "true"};
    for (auto it = changes.begin(); it != changes.end(); ++it)
        fields[it.key() - 1] = it.value();
    return fields.join(';') + ";\n";
}
