#include "tests/dpc/dpcrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QScopedPointer>
#include <QTest>

/// The command that writes the jobs of a series: what it allows, what it prints, and that it writes
/// all or nothing.
class TestDpcExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { QDir::setCurrent("/"); }
    void plainSeriesNeedsNoPermission();
    void lossesMustBeAllowedByName_data();
    void lossesMustBeAllowedByName();
    void errorsAreNotAllowedByAnything();
    void aSeriesThatMakesNoJobIsRefused();
    void lossesAreFindings();
    void whatIsThereIsLeftAlone();
    void optionsThatCannotBeUsed_data();
    void optionsThatCannotBeUsed();
    void machinesHaveTheirAddresses();
    void sameDateGivesTheSameBytes();

private:
    void put(const QByteArray& lines) const { test::put("own/own.dpc", lines); }
    DpcRun::Result run(const QString& options = {}) const
    {
        return m_dpc->run("export " + options + " own/own.dpc out");
    }
    static bool wasWritten() { return QFileInfo::exists("out") || !leftovers().isEmpty(); }
    static QStringList leftovers() { return QDir().entryList({"out*"}, QDir::AllEntries); }

    QScopedPointer<DpcRun> m_dpc;
};

namespace {

const QByteArray plain =
    "Posix;NOflush;NOprealloc;0;64;-1;256;2;0;MEMORY;[cfgPath]/[iter].dat;;;false;\n";
/// Has losses of two rules.
const QByteArray lossy = "AnsiC;flush;NOprealloc;9;64;-1;256;1;0;MEMORY;[cfgPath]/a.dat;;;false;\n";
const QByteArray impossible =
    "System;NOflush;NOprealloc;0;64;-1;256;1;0;MEMORY;[cfgPath]/b.dat;;;false;\n";

} // namespace

void TestDpcExport::init()
{
    m_dpc.reset(new DpcRun);
    QVERIFY(QDir().mkdir("own"));
}

void TestDpcExport::plainSeriesNeedsNoPermission()
{
    put(plain);
    const DpcRun::Result result = run();
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out + result.err, QByteArray());
    QVERIFY(QFileInfo::exists("out/plan.json"));
    QVERIFY(QFileInfo::exists("out/stage-0.fio"));
    QCOMPARE(leftovers(), QStringList("out"));
}

void TestDpcExport::lossesMustBeAllowedByName_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("code");
    QTest::newRow("none") << "" << 1;
    QTest::newRow("one of two") << "--allow-loss fio-flush" << 1;
    QTest::newRow("another one") << "--allow-loss fio-preallocate" << 1;
    QTest::newRow("both, with a comma") << "--allow-loss fio-flush,fio-buffer-sizes" << 0;
    QTest::newRow("both, one by one")
        << "--allow-loss fio-flush --allow-loss fio-buffer-sizes" << 0;
    QTest::newRow("more than needed")
        << "--allow-loss fio-log,fio-flush,fio-buffer-sizes,fio-cache-mode" << 0;
}

void TestDpcExport::lossesMustBeAllowedByName()
{
    QFETCH(QString, options);
    QFETCH(int, code);
    put(lossy + plain);
    const DpcRun::Result result = run(options);
    QCOMPARE(result.code, code);
    QCOMPARE(wasWritten(), code == 0);
    QCOMPARE(result.err.contains("--allow-loss fio-"), code != 0);
}

void TestDpcExport::errorsAreNotAllowedByAnything()
{
    put(plain + impossible);
    const DpcRun::Result result = run("--allow-loss fio-no-sendfile");
    QCOMPARE(result.code, 1);
    QVERIFY(result.out.contains("own/own.dpc:2:1: error: "));
    QVERIFY(result.out.contains(" [fio-no-sendfile]\n"));
    QVERIFY(!wasWritten());
}

void TestDpcExport::aSeriesThatMakesNoJobIsRefused()
{
    put("# text\n");
    const DpcRun::Result result = run();
    QCOMPARE(result.code, 1);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(result.err, QByteArray("dpc: no task of the series makes a job\n"));
    QVERIFY(!wasWritten());
}

void TestDpcExport::lossesAreFindings()
{
    put(lossy + impossible);
    const DpcRun::Result result = run("--format json");
    QCOMPARE(result.code, 1);
    const QJsonObject object = QJsonDocument::fromJson(result.out).object();
    QStringList rules;
    for (const QJsonValue value : object["findings"].toArray()) {
        const QJsonObject finding = value.toObject();
        QCOMPARE(finding["file"].toString(), QString("own/own.dpc"));
        QVERIFY(finding["line"].toInt() > 0 && finding["column"].toInt() > 0);
        rules += finding["severity"].toString() + ' ' + finding["rule"].toString();
    }
    QCOMPARE(rules, QStringList({"warning fio-buffer-sizes", "warning fio-flush",
                                 "error fio-no-sendfile"}));
    QVERIFY(!wasWritten());
    // The losses that were allowed stay with the plan.
    put(lossy);
    QCOMPARE(run("--allow-loss fio-buffer-sizes,fio-flush").code, 0);
    const QJsonObject plan = QJsonDocument::fromJson(test::contentOf("out/plan.json")).object();
    QCOMPARE(plan["losses"].toArray().size(), 2);
}

void TestDpcExport::whatIsThereIsLeftAlone()
{
    put(plain);
    test::put("out", "content");
    QCOMPARE(run().code, 2);
    QCOMPARE(test::contentOf("out"), QByteArray("content"));
    QVERIFY(QFile::remove("out") && QFile::link("nowhere", "out"));
    QCOMPARE(run().code, 2);
    QCOMPARE(leftovers(), QStringList());
    QCOMPARE(test::linkOf("out"), QByteArray("nowhere"));
}

void TestDpcExport::optionsThatCannotBeUsed_data()
{
    QTest::addColumn<QString>("options");
    QTest::newRow("unknown rule") << "--allow-loss fio-flash";
    QTest::newRow("rule of a check") << "--allow-loss bad-line";
    QTest::newRow("temp that is not absolute") << "--temp tmp";
    QTest::newRow("date that makes folders") << "--date 1/2";
    QTest::newRow("address that is none") << "--hosts-file own/bad";
    QTest::newRow("two names that no address can spell")
        << QString::fromUtf8("--hosts \xCE\xB1,\xCE\xB2 --temp /tmp");
    QTest::newRow("two at one address") << "--hosts-file own/twice";
    QTest::newRow("no temp of another machine") << "--hosts pc1";
}

void TestDpcExport::optionsThatCannotBeUsed()
{
    QFETCH(QString, options);
    put(QByteArray(plain).replace("[cfgPath]", "[temp]"));
    test::put("own/bad", "pc1=ip:127.0.0.1\n");
    test::put("own/twice", "pc1=ip:127.0.0.1,1\npc2=ip:127.0.0.1,1\n");
    const DpcRun::Result result = run(options);
    QCOMPARE(result.code, 2);
    QVERIFY(result.err.startsWith("dpc: "));
    QVERIFY(!wasWritten());
}

void TestDpcExport::machinesHaveTheirAddresses()
{
    put(plain);
    test::put("own/hosts", "pc1\npc2=ip:127.0.0.2,99 temp=/scratch\npc%2\n");
    QCOMPARE(run("--temp /var/tmp --hosts-file own/hosts").code, 0);
    const QByteArray readme = test::contentOf("out/README");
    QVERIFY(readme.contains("--client='ip:pc1,8765' stage-0-1-pc1.fio"));
    QVERIFY(readme.contains("--client='ip:127.0.0.2,99' stage-0-2-pc2.fio"));
    QVERIFY(readme.contains("--client='ip:pc%2,8765' "));
    const QByteArray plan = test::contentOf("out/plan.json");
    QVERIFY(plan.contains("\"temp\": \"/var/tmp\"") && plan.contains("\"temp\": \"/scratch\""));
}

void TestDpcExport::sameDateGivesTheSameBytes()
{
    put(QByteArray(plain).replace("[iter]", "[date]_[iter]"));
    QCOMPARE(run("--date d --hosts pc1").code, 0);
    QMap<QString, QByteArray> first;
    for (const QString& name : test::entriesOf(QDir::current().filePath("out")))
        first.insert(name, test::contentOf("out/" + name));
    QVERIFY(first.value("stage-0-1-pc1.fio").contains("/d_1.dat"));
    QVERIFY(QDir().rename("out", "before"));
    QCOMPARE(run("--date d --hosts pc1").code, 0);
    for (const QString& name : test::entriesOf(QDir::current().filePath("out")))
        QCOMPARE(test::contentOf("out/" + name), first.take(name));
    QVERIFY(first.isEmpty());
}

QTEST_APPLESS_MAIN(TestDpcExport)
#include "tst_dpcexport.moc"
