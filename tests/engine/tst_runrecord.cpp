#include "engine/runfolder.h"
#include "engine/runrecord.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

/// The folder of a run as reports read it, whatever lies in it.
class TestRunRecord : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void numbersAreWholeOrAbsent_data();
    void numbersAreWholeOrAbsent();
    void ratesMayHaveFractions();
    void jobsAreOfAStage_data();
    void jobsAreOfAStage();
    void whatIsNotAFileHoldsNothingUp();
    void aRunWithoutResultsGoesOnOrWasKilled();
    void aRunThatWasRefusedSaysWhy();
    void otherFoldersHoldNoRun();

private:
    QString path(const char* name = "") const { return m_folder->path() + '/' + name; }
    void put(const char* name, const QByteArray& content) const { test::put(path(name), content); }
    std::optional<RecordedRun> read() { return readRun(path(), m_problem); }
    QString problem() const { return QString::fromStdString(m_problem).remove(m_folder->path()); }

    QScopedPointer<QTemporaryDir> m_folder;
    std::string m_problem;
};

namespace {

QByteArray resultsWith(const QByteArray& job)
{
    return R"({"version": 1, "state": "complete", "stages": [{"configFile": "/x/a.dpc"}], "jobs": [{)" +
           job + "}]}";
}

} // namespace

void TestRunRecord::init()
{
    m_folder.reset(new QTemporaryDir);
    m_problem.clear();
}

void TestRunRecord::numbersAreWholeOrAbsent_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<qint64>("read"); // -1: absent
    QTest::newRow("zero") << QByteArray("0") << qint64(0);
    QTest::newRow("one") << QByteArray("1") << qint64(1);
    QTest::newRow("a fraction") << QByteArray("2.9") << qint64(2);
    QTest::newRow("2^53") << QByteArray("9007199254740992") << (qint64(1) << 53);
    QTest::newRow("beyond") << QByteArray("9007199254740994") << qint64(-1);
    QTest::newRow("huge") << QByteArray("1e300") << qint64(-1);
    QTest::newRow("negative") << QByteArray("-1") << qint64(-1);
    QTest::newRow("a text") << QByteArray("\"5\"") << qint64(-1);
    QTest::newRow("nothing") << QByteArray("null") << qint64(-1);
}

void TestRunRecord::numbersAreWholeOrAbsent()
{
    QFETCH(QByteArray, number);
    QFETCH(qint64, read);
    const QByteArrayList keys = {"doneBytes", "startMs", "endMs", "runtimeMs",
                                 "p50Ns",     "p99Ns",   "maxNs"};
    QByteArrayList fields;
    for (const QByteArray& key : keys)
        fields += '"' + key + "\": " + number;
    put("results.json", resultsWith(fields.join(", ")));
    const auto run = this->read();
    QVERIFY2(run.has_value(), m_problem.c_str());
    const RecordedJob& job = run->jobs.at(0);
    for (const auto& value :
         {job.doneBytes, job.startMs, job.endMs, job.runtimeMs, job.p50Ns, job.p99Ns, job.maxNs})
        QCOMPARE(value.value_or(-1), read);
    put("results.json", resultsWith("\"plannedBytes\": " + number));
    QCOMPARE(this->read()->jobs.at(0).plannedBytes, std::max(read, qint64(0)));
}

void TestRunRecord::ratesMayHaveFractions()
{
    put("results.json", resultsWith(R"("bytesPerSecond": 1.5, "ioBytesPerSecond": 1e15)"));
    const RecordedJob good = read()->jobs.at(0);
    QCOMPARE(good.rate.value_or(-1), 1.5);
    QCOMPARE(good.ioRate.value_or(-1), 1e15);
    put("results.json", resultsWith(R"("bytesPerSecond": -1.5, "ioBytesPerSecond": "1")"));
    const RecordedJob bad = read()->jobs.at(0);
    QVERIFY(!bad.rate && !bad.ioRate);
}

void TestRunRecord::jobsAreOfAStage_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("first") << 0 << true;
    QTest::newRow("after the last") << 1 << false;
    QTest::newRow("before the first") << -1 << false;
}

void TestRunRecord::jobsAreOfAStage()
{
    QFETCH(int, stage);
    QFETCH(bool, isGood);
    put("results.json", resultsWith("\"stage\": " + QByteArray::number(stage)));
    QCOMPARE(read().has_value(), isGood);
    QCOMPARE(problem(), isGood ? QString() : QStringLiteral("'/' holds results that were changed"));
}

void TestRunRecord::whatIsNotAFileHoldsNothingUp()
{
    put("state.json", R"({"version": 1, "state": "running", "stage": 2})");
    QCOMPARE(::mkfifo(path("results.json").toLocal8Bit().constData(), 0600), 0);
    QVERIFY(QDir().mkdir(path("plan.json")));
    const auto run = read();
    QVERIFY(run.has_value());
    QCOMPARE(run->state, QStringLiteral("killed"));
    QCOMPARE(run->reasons, QStringList("killed in stage 2"));
    QVERIFY(run->jobs.empty());
}

void TestRunRecord::aRunWithoutResultsGoesOnOrWasKilled()
{
    std::string problem;
    QString folder = path("run");
    {
        RunFolder going;
        QVERIFY(going.create(folder, problem));
        QVERIFY(going.writeState({}));
        const auto run = readRun(folder, problem);
        QCOMPARE(run->state, QStringLiteral("running"));
        QCOMPARE(run->reasons, QStringList("running before its first stage"));
        QVERIFY(!run->isComplete());
    }
    QCOMPARE(readRun(folder, problem)->reasons, QStringList("killed before its first stage"));
}

void TestRunRecord::aRunThatWasRefusedSaysWhy()
{
    put("state.json",
        R"({"version": 1, "state": "refused", "reasons": ["a", "b"], "startedMs": 5})");
    const auto run = read();
    QCOMPARE(run->state, QStringLiteral("refused"));
    QCOMPARE(run->reasons, QStringList({"a", "b"}));
    QCOMPARE(run->startedMs.value_or(-1), qint64(5));
}

void TestRunRecord::otherFoldersHoldNoRun()
{
    QVERIFY(!read());
    QCOMPARE(problem(), QStringLiteral("'/' does not hold a run"));
    put("state.json", R"({"version": 2, "state": "running"})");
    QVERIFY(!read());
    put("state.json", R"({"version": 1, "state": "running"})");
    QVERIFY(read().has_value());
    put("results.json", "");
    QVERIFY(!read());
    QCOMPARE(problem(), QStringLiteral("'/' holds results that can't be read"));
    put("results.json", R"({"version": 2})");
    QVERIFY(!read());
    QCOMPARE(problem(), QStringLiteral("'/' holds results of another version of dpc"));
}

QTEST_APPLESS_MAIN(TestRunRecord)
#include "tst_runrecord.moc"
