#pragma once

#include "engine/exporter.h"
#include "engine/guards.h"
#include "engine/jobfile.h"
#include "engine/planfile.h"
#include "engine/planner.h"
#include "tests/support/files.h"
#include "tests/support/recording.h"

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

/// A task line with the given fields; what a test does not name is plain: Posix, 64 KiB chunks.
struct Line
{
    QByteArray method = "Posix";
    bool flush = false;
    bool preallocate = false;
    int wait = 0;   // ms
    int chunk = 64; // KiB
    int buffer = -1;
    qint64 size = 256; // KiB
    int iterations = 1;
    int cache = 0;
    QByteArray source = "MEMORY";
    QByteArray destination = "MEMORY";

    QByteArray text() const
    {
        const auto number = [](qint64 n) { return QByteArray::number(n); };
        const QList<QByteArray> fields = {method,
                                          flush ? "flush" : "NOflush",
                                          preallocate ? "prealloc" : "NOprealloc",
                                          number(wait),
                                          number(chunk),
                                          number(buffer),
                                          number(size),
                                          number(iterations),
                                          number(cache),
                                          source,
                                          destination,
                                          "",
                                          "",
                                          "false"};
        return fields.join("; ") + ";\n";
    }
};

inline Line writing(const QByteArray& destination)
{
    Line line;
    line.destination = destination;
    return line;
}

inline Line reading(const QByteArray& source)
{
    Line line;
    line.source = source;
    return line;
}

inline Line copying(const QByteArray& source, const QByteArray& destination)
{
    Line line = reading(source);
    line.destination = destination;
    return line;
}

/// A series in a folder of its own, with what it plans to do with fio.
class PlannedSeries
{
public:
    PlannedSeries()
        : m_folder(Recordings::folderOfKnownLength())
    {
        Recordings::hide(m_folder.path() + '/', "@ROOT@/");
        const QString forSed = QString(m_folder.path() + '/').replace("/", "\\/");
        Recordings::hide(forSed, "@ROOT@\\/");
        if (!m_folder.isValid() || !QDir(m_folder.path()).mkpath("share/_wait"))
            qFatal("can't make a folder for the test");
    }

    /// The folder of the series, with "/" at its end.
    QString root() const { return m_folder.path() + "/share/"; }
    /// A place beside it.
    QString place(const char* name) const { return m_folder.filePath(name); }
    PlanOptions& options() { return m_options; }

    void put(const QString& name, const QByteArray& content) { test::put(root() + name, content); }

    PlanResult plan(const QString& chosen = "mytest.dpc") const
    {
        PlanResult result =
            planSeries(readSeries(seriesNameForLoading(root() + chosen), QString()), m_options);
        QStringList lines;
        for (const Finding& loss : result.losses)
            lines += QStringLiteral("%1:%2:%3: %4 [%5]")
                         .arg(loss.path)
                         .arg(loss.line)
                         .arg(loss.column)
                         .arg(QString::fromStdString(loss.text).left(400), loss.rule->name);
        for (const auto* sentences : {&result.problems, &result.misuse}) {
            for (const std::string& sentence : *sentences)
                lines += QString::fromStdString(sentence);
        }
        Recordings::compare(lines.mid(0, 20).join('\n') + '\n' + written(result.plan));
        return result;
    }

    /// The plan of a series of one file with these lines.
    PlanResult planOf(const QByteArray& lines)
    {
        put("mytest.dpc", lines);
        return plan();
    }

    /// "line:field rule" of what is lost.
    QStringList lossesOf(const QByteArray& lines) { return textsOf(planOf(lines)); }

    /// The same of a plan.
    QStringList textsOf(const PlanResult& result) const
    {
        QStringList texts;
        for (const Finding& loss : result.losses) {
            const QByteArray file = test::contentOf(root() + loss.path);
            const QByteArray line = file.split('\n').value(loss.line - 1);
            texts += QStringLiteral("%1:%2 %3")
                         .arg(loss.line)
                         .arg(line.left(loss.column - 1).count(';') + 1)
                         .arg(loss.rule->name);
        }
        return texts;
    }

private:
    /// The beginnings of all that an export would hold, without what differs from run to run.
    static QString written(const Plan& plan)
    {
        const auto firstLines = [](const QByteArray& content) {
            constexpr int most = 30;
            return QString::fromUtf8(content).section('\n', 0, most) + '\n';
        };
        const QJsonDocument json = QJsonDocument::fromJson(planAsJson(plan, {}));
        QString text = firstLines(json.toJson(QJsonDocument::Compact).replace("},{", "},\n{"));
        for (size_t stage = 0; stage < plan.stages.size(); ++stage) {
            for (const PlanJobFile& file : plan.stages[stage].files)
                text += "--- " + file.file + '\n' + firstLines(jobFileText(plan, stage, file));
        }
        for (const GuardCall& call : allGuardCalls(plan))
            text += "--- " + call.file + '\n' + firstLines(call.text());
        const auto hide = [&](const QString& pattern, const char* name) {
            text.replace(QRegularExpression(pattern), name);
        };
        // Of folders that nothing can name safely, /tmp takes the place.
        hide("(?:" + QRegularExpression::escape(QDir::tempPath()) + "|/tmp)/(dpc-[0-9a-f]{12}|')",
             "@TEMP@/\\1");
        hide("dpc-[0-9a-f]{12}", "dpc-@ID@");
        hide("\"id\":\"[0-9a-f]{12}\"", "\"id\":@ID@");
        hide("20[0-9]{2}-[0-9-]{5}_[0-9-]{8}", "@DATE@");
        hide("(['\"])" + QRegularExpression::escape(QDir::tempPath()) + "\\1", "\\1@TEMP@\\1");
        hide("(['\"])" + QRegularExpression::escape(QSysInfo::machineHostName()) + "\\1",
             "\\1@HOST@\\1");
        return text;
    }

    QTemporaryDir m_folder;
    PlanOptions m_options;
};
