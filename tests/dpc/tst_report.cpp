#include "dpc/commandline.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sstream>
#include <sys/resource.h>

// Reports of a run of three machines that was recorded with fio 3.33, and of runs that did not come
// to their end.

namespace {

struct Result
{
    QByteArray out;
    QByteArray err;
    int code;
};

Result dpc(const QStringList& arguments, int width = 0)
{
    std::vector<std::string> list{"report"};
    for (const QString& argument : arguments)
        list.push_back(argument.toStdString());
    std::ostringstream out;
    std::ostringstream err;
    Output output{out, err};
    output.width = width;
    const int code = runDpc(list, output);
    return {QByteArray::fromStdString(out.str()), QByteArray::fromStdString(err.str()), code};
}

QJsonObject parsed(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class TestReport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Moments are shown in local time.
        qputenv("TZ", "UTC");
        const QString source = QStringLiteral(TWDP_SOURCE_DIR "/tests/data/run/nightly");
        for (const char* run : {"nightly", "slower", "killed", "incomplete", "hostile"})
            copy(source, in(run));
        QVERIFY(QDir::setCurrent(m_folder.path()));
        change("slower", [](QJsonObject& job) {
            job.insert("ioBytesPerSecond", job["ioBytesPerSecond"].toDouble() / 10);
        });
        QVERIFY(QFile::remove(in("killed/results.json")) &&
                QFile::remove(in("killed/results.csv")));
        test::put(in("killed/state.json"),
                  R"({"version": 1, "state": "running", "stage": 1, "startedMs": 1795304548190})");
        makeIncomplete();
        change("hostile", [](QJsonObject& job) {
            job.insert("machine", QString("=a|<script>&\x1B[31m\"'"));
            job.insert("configFile", "/x/</script><b>_*`.dpc");
        });
    }

    void reportsAreAsRecorded_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("width");
        QTest::newRow("text") << QStringList{"nightly"} << 0;
        QTest::newRow("narrow") << QStringList{"nightly"} << 80;
        QTest::newRow("compared") << QStringList{"nightly", "slower"} << 0;
        QTest::newRow("killed") << QStringList{"killed"} << 0;
        QTest::newRow("incomplete") << QStringList{"incomplete"} << 0;
        QTest::newRow("hostile") << QStringList{"hostile"} << 0;
        QTest::newRow("csv") << QStringList{"--format=csv", "incomplete"} << 0;
        QTest::newRow("json") << QStringList{"--format=json", "incomplete", "slower"} << 0;
        QTest::newRow("markdown") << QStringList{"--format=markdown", "hostile", "slower"} << 0;
    }

    void reportsAreAsRecorded()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, width);
        const QString file =
            QString(TWDP_SOURCE_DIR "/tests/data/report/%1.txt").arg(QTest::currentDataTag());
        const Result result = dpc(arguments, width);
        QCOMPARE(result.code, 0);
        QCOMPARE(result.err, QByteArray());
        if (qEnvironmentVariableIntValue("TWDP_UPDATE_GOLDEN") == 1)
            test::put(file, result.out);
        else
            QCOMPARE(QString::fromUtf8(result.out), QString::fromUtf8(test::contentOf(file)));
    }

    void linesFitTheTerminal()
    {
        for (const int width : {60, 80, 120}) {
            const Result result = dpc({"nightly"}, width);
            bool isTable = false;
            for (const QByteArray& line : result.out.split('\n')) {
                isTable = (isTable || line.startsWith("task ")) && !line.isEmpty();
                QVERIFY2(!isTable || QString::fromUtf8(line).size() <= width, line.constData());
            }
        }
    }

    /// A copy counts once, by what it wrote.
    void totalsAreThoseOfFiosOwnOutput()
    {
        QProcess awk;
        awk.start("awk", {"-f", TWDP_SOURCE_DIR "/tests/data/report/total.awk",
                          in("nightly/output/stage-0.txt"), in("nightly/output/stage-1.txt")});
        QVERIFY(awk.waitForFinished(-1));
        double total = 0;
        const QJsonObject report = parsed(dpc({"--format=json", "nightly"}).out);
        for (const QJsonValue stage :
             report["runs"].toArray().first().toObject()["stages"].toArray())
            total += stage.toObject()["bytes"].toDouble();
        QVERIFY(total > 0);
        QCOMPARE(awk.readAllStandardOutput(), QByteArray::number(qint64(total)));
    }

    void aSlowerRunFailsIfAsked()
    {
        QCOMPARE(dpc({"nightly", "slower"}).code, 0);
        const Result slower = dpc({"--fail-if-slower", "10%", "nightly", "slower"});
        QCOMPARE(slower.code, 1);
        QVERIFY2(slower.err.contains("nightly.dpc:5 write on pc01: 0.10 times"), slower.err);
        QCOMPARE(dpc({"--fail-if-slower", "95", "nightly", "slower"}).code, 0);
        QCOMPARE(dpc({"--fail-if-slower", "10", "slower", "nightly"}).code, 0);
        QCOMPARE(dpc({"--fail-if-slower", "10", "nightly", "nightly"}).code, 0);
        QCOMPARE(dpc({"--fail-if-slower", "0", "nightly", "nightly"}).code, 0);
        QCOMPARE(dpc({"--fail-if-slower", "99.9", "nightly", "slower"}).code, 0);
    }

    void whatARunDoesNotTellIsLeftOut()
    {
        QJsonObject results = parsed(test::contentOf(in("nightly/results.json")));
        for (const char* key : {"startedMs", "losses"})
            results.remove(key);
        QVERIFY(QDir().mkpath(in("silent")));
        test::put(in("silent/results.json"), QJsonDocument(results).toJson());
        const QByteArray text = dpc({"silent"}).out;
        QVERIFY2(text.contains("\n/srv/bench/nightly.dpc, 3 machines, fio-3.33\n"), text);
        const QByteArray markdown = dpc({"--format=markdown", "silent"}).out;
        QVERIFY(!markdown.contains("\n- "));
        QVERIFY2(markdown.contains("|\n\nshort: "), markdown);
    }

    void aRunThatIsNotCompleteFailsIfAsked()
    {
        for (const char* run : {"incomplete", "killed"}) {
            const Result result = dpc({"--fail-if-slower", "10", "nightly", run});
            QCOMPARE(result.code, 1);
            QVERIFY(result.err.contains(run));
        }
    }

    void wrongUseIsSaid_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no run") << QStringList{};
        QTest::newRow("not a run") << QStringList{"."};
        QTest::newRow("not there") << QStringList{"none"};
        QTest::newRow("unknown format") << QStringList{"--format=pdf", "nightly"};
        QTest::newRow("one run") << QStringList{"--fail-if-slower", "10", "nightly"};
        QTest::newRow("no number") << QStringList{"--fail-if-slower", "x", "nightly", "slower"};
        QTest::newRow("below nothing") << QStringList{"--fail-if-slower=-0.1", "nightly", "slower"};
        QTest::newRow("all of it") << QStringList{"--fail-if-slower=100", "nightly", "slower"};
        QTest::newRow("into a run") << QStringList{"--output", "nightly/report.html", "nightly"};
        QTest::newRow("nowhere") << QStringList{"--output", "none/report.html", "nightly"};
    }

    void wrongUseIsSaid()
    {
        QFETCH(QStringList, arguments);
        const Result result = dpc(arguments);
        QCOMPARE(result.code, 2);
        QCOMPARE(result.out, QByteArray());
        QVERIFY(result.err.startsWith("dpc: "));
    }

    void aReportGoesIntoAFileAsAWhole()
    {
        test::put(in("report.txt"), "old");
        const Result result = dpc({"--output", "report.txt", "nightly"}, 40);
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(test::contentOf(in("report.txt")), dpc({"nightly"}).out);
    }

    void aReportThatDoesNotFitOnTheDiskLeavesTheOldOne()
    {
        test::put(in("kept.txt"), "old");
        const QStringList before = test::entriesOf(m_folder.path());
        // No file may grow beyond that, as on a full disk.
        rlimit limit{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        const rlim_t whole = limit.rlim_cur;
        constexpr rlim_t few = 100;
        limit.rlim_cur = few;
        const auto handler = ::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        const Result result = dpc({"--output", "kept.txt", "nightly"});
        limit.rlim_cur = whole;
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        ::signal(SIGXFSZ, handler);
        QCOMPARE(result.code, 2);
        QCOMPARE(result.err, QByteArray("dpc: 'kept.txt' can't be written: File too large\n"));
        QCOMPARE(test::contentOf(in("kept.txt")), QByteArray("old"));
        QCOMPARE(test::entriesOf(m_folder.path()), before);
    }

    void nothingIsWrittenIntoARun()
    {
        const QStringList before = test::entriesOf(in("nightly"));
        dpc({"--format=html", "nightly"});
        QCOMPARE(test::entriesOf(in("nightly")), before);
    }

private:
    QString in(const QString& name) const { return m_folder.filePath(name); }

    static void copy(const QString& from, const QString& to)
    {
        QDir().mkpath(to);
        for (const QString& name : test::entriesOf(from)) {
            if (QFileInfo(from + '/' + name).isDir())
                QDir().mkpath(to + '/' + name);
            else
                test::put(to + '/' + name, test::contentOf(from + '/' + name));
        }
    }

    template <class Change>
    void change(const QString& run, Change change)
    {
        const QString file = in(run + "/results.json");
        QJsonObject results = parsed(test::contentOf(file));
        QJsonArray jobs;
        for (const QJsonValue value : results["jobs"].toArray()) {
            QJsonObject job = value.toObject();
            change(job);
            jobs.append(job);
        }
        results.insert("jobs", jobs);
        test::put(file, QJsonDocument(results).toJson());
    }

    /// The machine pc02 died in the second stage.
    void makeIncomplete()
    {
        change("incomplete", [](QJsonObject& job) {
            if (job["machine"].toString() != "pc02" || job["stage"].toInt() != 1)
                return;
            for (const char* key :
                 {"doneBytes", "error", "startMs", "endMs", "runtimeMs", "bytesPerSecond", "ioNs",
                  "ioBytesPerSecond", "ios", "p50Ns", "p99Ns", "maxNs", "read", "write"})
                job.insert(key, QJsonValue());
            job.insert("good", false);
            job.insert("reason", "fio reported nothing");
        });
        const QString file = in("incomplete/results.json");
        QJsonObject results = parsed(test::contentOf(file));
        results.insert("state", "failed");
        results.insert("reasons", QJsonArray{"stage 1: pc02 reported nothing"});
        test::put(file, QJsonDocument(results).toJson());
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestReport)
#include "tst_report.moc"
