#include "configset/seriesname.h"

#include <QTest>

class TestSeriesName : public QObject
{
    Q_OBJECT

private slots:
    void saving_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("baseName");
        const auto row = [](const char* chosen, const char* folder, const char* baseName) {
            QTest::newRow(chosen) << QString(chosen) << QString(folder) << QString(baseName);
        };
        row("/x/mytest.dpc", "/x/", "mytest");
        row("/x/mytest", "/x/", "mytest");
        row("/x/bench7.dpc", "/x/", "bench7_");
        row("/x/bench7_.dpc", "/x/", "bench7_");
        row("/x/a.dpc.b.dpc", "/x/", "a.b");
        row("/x/v1.2.dpc", "/x/", "v1.2_");
        row("/x/nas.lan.dpc", "/x/", "nas.lan");
        row("/x/A.DPC", "/x/", "A.DPC");
        row("/x.dpc/name.dpc", "/x.dpc/", "name");
        row("/x/.dpc", "/x/", "");
        row(".dpc", "", "");
        row("mytest.dpc", "", "mytest");
        row("/x/Pr\xC3\xBC"
            "fung.dpc",
            "/x/",
            "Pr\xC3\xBC"
            "fung");
        // Digits of every script count, other numbers do not.
        row("/x/a\xD9\xA3.dpc", "/x/", "a\xD9\xA3_");
        row("/x/a\xC2\xB2.dpc", "/x/", "a\xC2\xB2");
    }

    void saving()
    {
        QFETCH(QString, chosen);
        const SeriesName name = seriesNameForSaving(chosen);
        QTEST(name.folder, "folder");
        QTEST(name.baseName, "baseName");
    }

    void loading_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("baseName");
        const auto row = [](const char* chosen, const char* folder, const char* baseName) {
            QTest::newRow(chosen) << QString(chosen) << QString(folder) << QString(baseName);
        };
        row("/x/mytest.dpc", "/x/", "mytest");
        row("/x/mytest12.dpc", "/x/", "mytest");
        row("/x/_wait/mytest2.dpc", "/x/_wait/", "mytest");
        row("/x/bench7_1.dpc", "/x/", "bench7_");
        row("/x/mytest_init.dpc", "/x/", "mytest_init");
        row("/x/12.dpc", "/x/", "");
        row("12.dpc", "", "");
        row("/x/mytest25.dpc", "/x/", "mytest");
        row("/x/a\xD9\xA3.dpc", "/x/", "a");
        row("mytest1.dpc", "", "mytest");
        // Names with dots lead back to the chosen file.
        row("/x/nas.lan.dpc", "/x/", "nas.lan");
        row("/x/nas.lan3.dpc", "/x/", "nas.lan");
        row("/x/v1.2_.dpc", "/x/", "v1.2_");
        row("/x/_wait/v1.2_4.dpc", "/x/_wait/", "v1.2_");
        row("/x/v1.2.dpc", "/x/", "v1.");
        row("/x/nas.lan25.dpc", "/x/", "nas");
        row("/x.y/mytest.dpc", "/x.y/", "mytest");
        // Only a whole segment is the folder "_wait", if the rest leads back to the chosen file.
        row("/x/my_wait/s.dpc", "/x/my_wait/", "s");
        row("/x/my_wait/s12.dpc", "/x/my_wait/", "s");
        row("/x/my_wait/_wait/s1.dpc", "/x/my_wait/_wait/", "s");
        row("/my_wait/x_wait/s.dpc", "/my_wait/x_wait/", "s");
        row("my_wait/s.dpc", "my_wait/", "s");
        row("/x/my_wait/nas.lan3.dpc", "/x/my_wait/", "nas.lan");
        row("/x/my_wait/v1.2_.dpc", "/x/my_wait/", "v1.2_");
        row("/x/my_wait/x_wait.dpc", "/x/my_wait/", "x_wait");
        row("/x/my_wait/12.dpc", "/x/my_wait/", "");
        // Where nothing leads back, the rule decides.
        row("/x/my_wait/s20.dpc", "/x/my_wait/", "mys");
        row("/x/2024.dpc", "/x/", "");
        row("/x/_wait/_wait/s.dpc", "/x/_wait/_wait/", "s");
    }

    void loading()
    {
        QFETCH(QString, chosen);
        const SeriesName name = seriesNameForLoading(chosen);
        QTEST(name.folder, "folder");
        QTEST(name.baseName, "baseName");
    }

    void everySavedNameLoadsBack()
    {
        for (const char* chosen :
             {"/x/mytest.dpc", "/x/bench7.dpc", "/x/v1.2.dpc", "/x/nas.lan.dpc", "/x/a.b.c9.dpc",
              "/x/_.dpc", "/x/my_wait/mytest.dpc", "/x/my_wait/v1.2.dpc",
              "/x_wait/y_wait/nas.lan.dpc"}) {
            const SeriesName saved = seriesNameForSaving(chosen);
            for (int number = 0; number < seriesFileCount; ++number) {
                const QString file = seriesFile(saved.folder, saved.baseName, number);
                const SeriesName loaded = seriesNameForLoading(file);
                QCOMPARE(loaded.folder, saved.folder);
                QCOMPARE(loaded.baseName, saved.baseName);
            }
        }
    }

    void filesBeyondTheSeriesAreKnownByTheirNumber()
    {
        for (const char* name : {"a20.dpc", "a99.dpc", "a100.dpc", "a0.dpc", "a00.dpc", "a05.dpc",
                                 "a010.dpc", "a4294967297.dpc", "a99999999999999999999.dpc"})
            QVERIFY2(isBeyondSeries(name, "a"), name);
        for (const char* name : {"a.dpc", "a1.dpc", "a2.dpc", "a9.dpc", "a10.dpc", "a19.dpc",
                                 "b20.dpc", "a20", "a20.txt", "a20.dpcx", "a20x.dpc", "ax20.dpc",
                                 "a-20.dpc", "a20_init.dpc", "", "a", ".dpc"})
            QVERIFY2(!isBeyondSeries(name, "a"), name);
        QVERIFY(isBeyondSeries("20.dpc", ""));
        QVERIFY(!isBeyondSeries("19.dpc", ""));
    }

    void candidatesAreFortyFilesInBothFolders()
    {
        const QStringList files = candidateFiles({"/x/", "a"});
        QCOMPARE(files.size(), 40);
        QCOMPARE(files.mid(0, 4),
                 (QStringList{"/x/a.dpc", "/x/_wait/a.dpc", "/x/a1.dpc", "/x/_wait/a1.dpc"}));
        QCOMPARE(files.mid(38), (QStringList{"/x/a19.dpc", "/x/_wait/a19.dpc"}));
    }

    void candidatesOfAFileInsideTheWaitFolder()
    {
        const QStringList files = candidateFiles(seriesNameForLoading("/x/_wait/mytest2.dpc"));
        QCOMPARE(files.mid(0, 3), (QStringList{"/x/_wait/mytest.dpc", "/x/_wait/_wait/mytest.dpc",
                                               "/x/_wait/mytest1.dpc"}));
    }

    void initFileLiesInTheFolderItself()
    {
        QCOMPARE(initFile({"/x/", "mytest"}), QStringLiteral("/x/mytest_init.dpc"));
        QCOMPARE(initFile({"/x/", "bench7_"}), QStringLiteral("/x/bench7__init.dpc"));
    }
};

QTEST_APPLESS_MAIN(TestSeriesName)
#include "tst_seriesname.moc"
