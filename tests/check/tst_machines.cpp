#include "check/machines.h"
#include "tests/support/files.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>

class TestMachines : public QObject
{
    Q_OBJECT

private slots:
    void namesAndRanges_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("names");
        QTest::newRow("one") << "pc1"
                             << "pc1";
        QTest::newRow("several") << "pc1,pc2"
                                 << "pc1 pc2";
        QTest::newRow("blanks and empty parts") << " pc1, ,pc2 ,"
                                                << "pc1 pc2";
        QTest::newRow("twice") << "pc1,pc2,pc1"
                               << "pc1 pc2";
        QTest::newRow("range") << "pc[08-11]"
                               << "pc08 pc09 pc10 pc11";
        QTest::newRow("range without zeros") << "pc[8-11]"
                                             << "pc8 pc9 pc10 pc11";
        QTest::newRow("range that outgrows its zeros") << "pc[98-101]"
                                                       << "pc98 pc99 pc100 pc101";
        QTest::newRow("range of one") << "pc[07-07]"
                                      << "pc07";
        QTest::newRow("list in a range") << "pc[1,03-04].lan,x"
                                         << "pc1.lan pc03.lan pc04.lan x";
        QTest::newRow("two ranges") << "r[1-2]p[1-2]"
                                    << "r1p1 r1p2 r2p1 r2p2";
        QTest::newRow("ranges that overlap") << "p[1-3],p[2-4]"
                                             << "p1 p2 p3 p4";
        QTest::newRow("letters outside Latin-1") << QString::fromUtf8("\xCE\xB1[1-2]")
                                                 << QString::fromUtf8("\xCE\xB1"
                                                                      "1 \xCE\xB1"
                                                                      "2");
    }

    void namesAndRanges()
    {
        QFETCH(QString, text);
        QFETCH(QString, names);
        const MachineList list = machinesNamed({text});
        QCOMPARE(list.problem, std::string());
        QCOMPARE(list.names().join(' '), names);
    }

    void repeatedNamesAreTold_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("repeated");
        QTest::addColumn<int>("count");
        QTest::newRow("none") << "pc1,pc01,pc1.lan" << QString() << 0;
        QTest::newRow("twice") << "pc1,pc2,pc1"
                               << "pc1 is named twice, and counts once" << 1;
        QTest::newRow("in a range") << "pc[1-2,2]"
                                    << "pc2 is named twice, and counts once" << 1;
        QTest::newRow("ranges that overlap")
            << "p[1-9],p[7-12]"
            << "p7 is named twice, and counts once (and so on for 2 more)" << 3;
        QTest::newRow("ranges that overlap in two")
            << "p[1-9],p[8-12]"
            << "p8 is named twice, and counts once (and so on for 1 more)" << 2;
        QTest::newRow("capitals") << "PC1,x,pc1"
                                  << "PC1 and pc1 differ in capitals only, and may be one machine"
                                  << 1;
    }

    void repeatedNamesAreTold()
    {
        QFETCH(QString, text);
        QFETCH(QString, repeated);
        const MachineList list = machinesNamed({text});
        QCOMPARE(list.problem, std::string());
        QCOMPARE(QString::fromStdString(list.repeated), repeated);
        QTEST(list.repeatedCount, "count");
    }

    void whatNamesNoMachineIsAProblem_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");
        const QString noRange = " is not a range such as pc[01-20]";
        QTest::newRow("empty") << ""
                               << "names no machine";
        QTest::newRow("commas") << " , ,"
                                << "names no machine";
        for (const char* text :
             {"pc[01-]", "pc[-2]", "pc[]", "pc[a-c]", "pc[2-1]", "pc[1-2", "pc1]", "p]1[", "[1",
              "]1", "pc[1-2-3]", "pc[ 1-2]", "[[1-2]]", "pc[1,]", "pc[0-9999999999]", "[host]"})
            QTest::newRow(text) << text << '\'' + QString(text) + '\'' + noRange;
        QTest::newRow("too many") << "pc[0-999999999]"
                                  << "more than 100000 machines";
        QTest::newRow("equal numbers")
            << QString("[1,1]").repeated(50) << "more than 100000 machines";
        const QString longName = QString("[0]").repeated(100);
        QTest::newRow("separator") << "pc/1"
                                   << QString("'pc/1' holds a separator of folders, and is not "
                                              "the name of a machine");
        QTest::newRow("backslash") << "pc\\1"
                                   << QString("'pc\\1' holds a separator of folders, and is not "
                                              "the name of a machine");
        QTest::newRow("one too many beside a range") << "pc[1-100000],x"
                                                     << "more than 100000 machines";
        QTest::newRow("long name") << longName
                                   << QString("'%1...%2' is longer than 253 characters")
                                          .arg(longName.left(80), longName.right(80));
        QTest::newRow("too many of two ranges") << "a[1-1000]b[1-1000]"
                                                << "more than 100000 machines";
    }

    void whatNamesNoMachineIsAProblem()
    {
        QFETCH(QString, text);
        QFETCH(QString, problem);
        const MachineList list = machinesNamed({text});
        QCOMPARE(QString::fromStdString(list.problem), problem);
        QVERIFY(list.machines.empty());
    }

    void machinesAreNumbered()
    {
        QCOMPARE(numberedMachines(3).names().join(' '), QString("machine01 machine02 machine03"));
        QCOMPARE(numberedMachines(100).names().first(), QString("machine001"));
        QCOMPARE(numberedMachines(maxMachines).names().size(), maxMachines);
        for (const int count : {0, -1, maxMachines + 1})
            QVERIFY(!numberedMachines(count).problem.empty());
    }

    void fileNamesMachinesWithAddressAndFolder()
    {
        const MachineList list = inFile("\xEF\xBB\xBF# the lab\r\n"
                                        "\r\n"
                                        "  pc1 # the old one\r\n"
                                        "pc[2-3]\ttemp=/scratch disk # fast\n"
                                        "srv=ip:192.0.2.7,8765\n"
                                        "sock=sock:/run/a#b temp=/t#1");
        QCOMPARE(list.problem, std::string());
        QCOMPARE(list.names().join(' '), QString("pc1 pc2 pc3 srv sock"));
        QCOMPARE(list.machines[0].temp, QString());
        QCOMPARE(list.machines[1].temp, QString("/scratch disk"));
        QCOMPARE(list.machines[2].temp, QString("/scratch disk"));
        QCOMPARE(list.machines[3].address, QString("ip:192.0.2.7,8765"));
        QCOMPARE(list.machines[4].address, QString("sock:/run/a#b"));
        QCOMPARE(list.machines[4].temp, QString("/t#1"));
    }

    void machineThatIsNamedTwiceAlikeCountsOnce()
    {
        const MachineList list =
            inFile("pc1=ip:a,1 temp=/t\npc1=ip:a,1\npc1 temp=/t\npc1\npc1=ip:a,1 temp=/t\n");
        QCOMPARE(list.problem, std::string());
        QCOMPARE(list.machines.size(), size_t(1));
        QCOMPARE(list.machines.front().address, QString("ip:a,1"));
        QCOMPARE(list.machines.front().temp, QString("/t"));
        QCOMPARE(list.repeatedCount, 4);
    }

    void fileThatCannotBeUsedSaysWhy_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem");
        QTest::newRow("empty") << QByteArray() << ": names no machine";
        QTest::newRow("comments") << QByteArray("# x\n\n") << ": names no machine";
        QTest::newRow("zero bytes")
            << QByteArray("pc1\0pc2\n", 8) << " can't be read: it is not a text file in UTF-8";
        QTest::newRow("escape") << QByteArray("\x1B[0mpc1\n")
                                << " can't be read: it is not a text file in UTF-8";
        QTest::newRow("unit separator")
            << QByteArray("pc1\x1Fpc2\n") << " can't be read: it is not a text file in UTF-8";
        QTest::newRow("Latin-1") << QByteArray("pr\xFC"
                                               "fung\n")
                                 << " can't be read: it is not a text file in UTF-8";
        QTest::newRow("cut letter")
            << QByteArray("pc1\n\xC3") << " can't be read: it is not a text file in UTF-8";
        QTest::newRow("two names")
            << QByteArray("pc1\npc2 pc3\n")
            << ", line 2: 'pc3' is not temp=FOLDER; a line holds one machine";
        QTest::newRow("no folder") << QByteArray("pc1 temp=\n")
                                   << ", line 1: 'temp=' is not temp=FOLDER; a line holds one "
                                      "machine";
        QTest::newRow("no name") << QByteArray("=ip:a,1\n")
                                 << ", line 1: '=ip:a,1' is not a name of a machine";
        QTest::newRow("comment without a blank")
            << QByteArray("pc1#x\n") << ", line 1: 'pc1#x' is not a name of a machine";
        QTest::newRow("no address")
            << QByteArray("pc1=192.0.2.7\n")
            << ", line 1: '192.0.2.7' is not an address such as ip:192.0.2.7,8765 or sock:/run/fio";
        QTest::newRow("range with an address")
            << QByteArray("pc[1-2]=ip:a,1\n")
            << ", line 1: 'pc[1-2]' is a range, and a range can't have one address";
        QTest::newRow("two addresses")
            << QByteArray("pc1=ip:a,1\npc2\npc1=ip:b,1\n")
            << ", line 3: 'pc1' is there twice, with another address or folder";
        QTest::newRow("address after none")
            << QByteArray("pc1\npc1=ip:a,1\n")
            << ", line 2: 'pc1' is there twice, with another address or folder";
        QTest::newRow("two folders")
            << QByteArray("pc1 temp=/a\npc1 temp=/b\n")
            << ", line 2: 'pc1' is there twice, with another address or folder";
        QTest::newRow("folder after a range")
            << QByteArray("pc[1-9]\npc7 temp=/scratch\n")
            << ", line 2: 'pc7' is there twice, with another address or folder";
        QTest::newRow("too many") << QByteArray("pc[0-999999]\n")
                                  << ", line 1: more than 100000 machines";
        QTest::newRow("too large")
            << QByteArray(16 * 1024 * 1024 + 1, '\n') << " can't be read: it is larger than 16 MiB";
    }

    void fileThatCannotBeUsedSaysWhy()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        const MachineList list = inFile(content);
        QCOMPARE(QString::fromStdString(list.problem), '\'' + path() + '\'' + problem);
        QVERIFY(list.machines.empty());
    }

    void pipeAndFolderAreNotOpened()
    {
        QVERIFY(::mkfifo(qPrintable(m_folder.filePath("pipe")), 0600) == 0);
        QVERIFY(QString::fromStdString(machinesInFile(m_folder.filePath("pipe")).problem)
                    .endsWith("can't be read: it is a pipe"));
        QVERIFY(QString::fromStdString(machinesInFile(m_folder.path()).problem)
                    .endsWith("can't be read: it is a folder"));
        QVERIFY(QString::fromStdString(machinesInFile(m_folder.filePath("none")).problem)
                    .endsWith("can't be read: it does not exist"));
    }

    /// A part of a list, or an empty one, must not pass for the whole.
    void fileThatFailsWhileItIsReadSaysWhy()
    {
        QVERIFY(QFile::link("/proc/self/mem", m_folder.filePath("mem")));
        QCOMPARE(QString::fromStdString(machinesInFile(m_folder.filePath("mem")).problem),
                 '\'' + m_folder.filePath("mem") + "' can't be read: Input/output error");
    }

    void fileThatCannotBeOpenedSaysWhy()
    {
        test::put(path(), "pc1\n");
        rlimit before = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
        const rlimit none = {0, before.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
        const MachineList list = machinesInFile(path());
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &before), 0);
        QCOMPARE(QString::fromStdString(list.problem),
                 '\'' + path() + "' can't be read: Too many open files");
        QVERIFY(list.machines.empty());
    }

    void longestNameAndLargestFileAreTaken()
    {
        const QString longest(253, 'x');
        QCOMPARE(machinesNamed({longest}).names(), QStringList{longest});
        QVERIFY(!machinesNamed({longest + 'x'}).problem.empty());
        constexpr int mostBytes = 16 * 1024 * 1024;
        QCOMPARE(inFile("pc1" + QByteArray(mostBytes - 3, ' ')).names(), QStringList{"pc1"});
    }

    void mostMachinesInOnePart()
    {
        QCOMPARE(machinesNamed({"pc[1-100000]"}).names().size(), maxMachines);
        // A name that is there already does not count again.
        QCOMPARE(machinesNamed({"pc[1-100000],pc7"}).names().size(), maxMachines);
    }

    void nothingOfALongFileIsDropped()
    {
        QByteArray lines;
        for (int i = 0; i < maxMachines; ++i)
            lines += "a-long-name-of-a-machine-" + QByteArray::number(i) + ".example\n";
        QVERIFY(lines.size() > 3 * 1024 * 1024);
        const MachineList list = inFile(lines);
        QCOMPARE(list.problem, std::string());
        QCOMPARE(list.machines.size(), size_t(maxMachines));
        QCOMPARE(list.machines.back().name, QString("a-long-name-of-a-machine-99999.example"));
    }

private:
    QString path() const { return m_folder.filePath("hosts.txt"); }

    MachineList inFile(const QByteArray& content) const
    {
        test::put(path(), content);
        return machinesInFile(path());
    }

    QTemporaryDir m_folder;
};

QTEST_APPLESS_MAIN(TestMachines)
#include "tst_machines.moc"
