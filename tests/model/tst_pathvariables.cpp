#include "model/pathvariables.h"
#include "shared/kvtext.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <unistd.h>

using Path = _kvString8_allSize<500>;

namespace {

MachineValues machine(const char* host = "pc01", const char* date = "2026-01-02_03-04-05")
{
    MachineValues values;
    values.computerName = _kvString<500>(host);
    values.date = QString(date);
    return values;
}

TestTask taskIn(const QString& configPath, int configId = 0)
{
    TestTask task;
    task.configPath = kvToString8<500>(configPath);
    task.configId = configId;
    return task;
}

QString wide(const TestTask& task, const QString& name, int taskNumber = 0, int iteration = 0,
             bool keepCfgPath = false, const MachineValues& values = machine())
{
    auto text = kvToString16<500>(name);
    return kvToQString(
        replaceFileVariables(task, text, taskNumber, iteration, keepCfgPath, values));
}

QString narrow(const TestTask& task, const QString& name, int taskNumber = 0, int iteration = 0,
               bool keepCfgPath = false, const MachineValues& values = machine())
{
    auto text = kvToString8<500>(name);
    return kvToQString(
        replaceFileVariables8(task, text, taskNumber, iteration, keepCfgPath, values));
}

/// Both widths must agree; what they agree on is returned.
QString expanded(const TestTask& task, const QString& name, int taskNumber = 0, int iteration = 0,
                 bool keepCfgPath = false)
{
    const QString text = wide(task, name, taskNumber, iteration, keepCfgPath);
    const QString eightBit = narrow(task, name, taskNumber, iteration, keepCfgPath);
    return text == eightBit ? text : QStringLiteral("widths differ: %1 and %2").arg(text, eightBit);
}

} // namespace

class TestPathVariables : public QObject
{
    Q_OBJECT

private slots:
    void folderForTemporaryFilesOfAnotherMachine()
    {
        MachineValues values = machine();
        values.tempFolder = _kvString8_allSize<500>("/scratch");
        QCOMPARE(wide({}, "[temp]/a", 0, 0, false, values), QStringLiteral("/scratch/a"));
        QCOMPARE(narrow({}, "[temp]/a", 0, 0, false, values), QStringLiteral("/scratch/a"));
    }

    void computerNameLosesItsDomain()
    {
        const auto name = [](const char* host) { return kvToQString(computerNameFrom(host)); };
        QCOMPARE(name("pc01"), QStringLiteral("pc01"));
        QCOMPARE(name("pc01.lan.example"), QStringLiteral("pc01"));
        QCOMPARE(name(".hidden.lan"), QStringLiteral(".hidden.lan"));
        QCOMPARE(name("a."), QStringLiteral("a"));
        QCOMPARE(name("localhost"), QStringLiteral("NoHostNameSet_"));
        QCOMPARE(name("localhost.localdomain"), QStringLiteral("NoHostNameSet_"));
        QCOMPARE(name("Localhost"), QStringLiteral("Localhost"));
        QCOMPARE(name(""), QStringLiteral("NoHostNameSet_"));
        // Bytes of a host name widen without sign, unlike those of a folder.
        QCOMPARE(int(computerNameFrom("\xFC").text[0]), 0xFC);
    }

    void computerNameIsThisMachines()
    {
        char host[256] = {};
        QCOMPARE(::gethostname(host, 255), 0);
        QVERIFY(getComputerName().isEqual(computerNameFrom(host)));
    }

    void everyVariable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("result");
        QTest::newRow("host") << "[host]"
                              << "pc01";
        QTest::newRow("date") << "[date]"
                              << "2026-01-02_03-04-05";
        QTest::newRow("iter") << "[iter]"
                              << "7";
        QTest::newRow("cfgline") << "[cfgline]"
                                 << "3";
        QTest::newRow("cfgTaskID") << "[cfgTaskID]"
                                   << "3";
        QTest::newRow("cfgID") << "[cfgID]"
                               << "12";
        QTest::newRow("cfgLogName") << "[cfgLogName]"
                                    << "_mytest12_log";
        QTest::newRow("cfgNameID") << "[cfgNameID]"
                                   << "mytest12";
        QTest::newRow("cfgName") << "[cfgName]"
                                 << "mytest";
        QTest::newRow("cfgPath") << "[cfgPath]"
                                 << "/data/cfg/";
        QTest::newRow("no variable") << "/a//b/./c"
                                     << "/a/b/c";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("unknown word") << "[hosts]/[x]"
                                      << "[hosts]/[x]";
        QTest::newRow("other case") << "[Host][CFGNAME]"
                                    << "[Host][CFGNAME]";
        QTest::newRow("repeated") << "[host][host]-[iter][iter]"
                                  << "pc01pc01-77";
        QTest::newRow("nested") << "[[host]]"
                                << "[pc01]";
        QTest::newRow("together") << "[cfgPath]/[cfgName]-[cfgTaskID]_[iter]"
                                  << "/data/cfg/mytest-3_7";
    }

    void everyVariable()
    {
        QFETCH(QString, name);
        QFETCH(QString, result);
        QCOMPARE(expanded(taskIn("/data/cfg/mytest12.dpc", 12), name, 3, 7), result);
    }

    void variablesVaryByAPartOfTheRun()
    {
        const QStringList parts = {"machine", "moment", "iteration", "task", "file", "series"};
        QStringList found;
        for (int i = 0; i < pathVariableCount; ++i) {
            const auto variable = static_cast<PathVariable>(i);
            found += spellingOf(variable) + (' ' + parts[int(variationOf(variable))]);
        }
        QCOMPARE(found, (QStringList{"[host] machine", "[date] moment", "[iter] iteration",
                                     "[cfgline] task", "[cfgTaskID] task", "[cfgID] file",
                                     "[cfgLogName] file", "[cfgNameID] file", "[cfgName] series",
                                     "[cfgPath] series", "[temp] machine"}));
        QCOMPARE(hostVariable, "[host]");
        QCOMPARE(dateVariable, "[date]");
        QCOMPARE(iterVariable, "[iter]");
        QCOMPARE(configPathVariable, "[cfgPath]");
        QCOMPARE(tempVariable, "[temp]");
    }

    void everyVariableIsReplaced()
    {
        TestTask task = taskIn("/cfg/mytest12.dpc", 4);
        for (const char* variable : pathVariables) {
            const QString text = expanded(task, QStringLiteral("x%1y").arg(variable), 3, 5);
            QVERIFY2(!text.contains(variable) && text != "xy", variable);
            // Another spelling is not a variable.
            const QString capitals = QString(variable).toUpper();
            QCOMPARE(expanded(task, capitals), capitals);
            for (int i = 0; i < capitals.size(); ++i) {
                const QString other = QString(variable).replace(i, 1, '#');
                QCOMPARE(expanded(task, other), other);
            }
        }
    }

    void variablesAreReplacedInTheirOrder()
    {
        // The value of a variable may hold another variable: only a later one is replaced.
        for (int i = 0; i < pathVariableCount; ++i) {
            MachineValues values = machine(pathVariables[i]);
            const bool isLater = i > int(PathVariable::Host);
            QCOMPARE(wide(taskIn("/c/a.dpc"), "[host]", 0, 0, false, values).contains('['),
                     !isLater);
            values = machine("pc01", pathVariables[i]);
            QCOMPARE(wide(taskIn("/c/a.dpc"), "[date]", 0, 0, false, values).contains('['),
                     i <= int(PathVariable::Date));
        }
    }

    void nameMayDependOnTheIterationByWhatIsReplacedBefore()
    {
        for (int i = 0; i < pathVariableCount; ++i) {
            const _kvString<500> name(QByteArray("a/" + QByteArray(pathVariables[i]) + "b"));
            QCOMPARE(mayDependOnIteration(name), i <= int(PathVariable::Iter));
        }
        QVERIFY(!mayDependOnIteration(_kvString<500>("iter[iter")));
    }

    void configPathStaysWhereAsked()
    {
        const TestTask task = taskIn("/data/cfg/mytest12.dpc", 12);
        QCOMPARE(expanded(task, "[cfgPath]/[cfgName]-[cfgTaskID]_[iter]", 3, 0, true),
                 QStringLiteral("[cfgPath]/mytest-3_0"));
        QCOMPARE(expanded(task, "[cfgPath]/../x", 0, 0, true), QStringLiteral("[cfgPath]/../x"));
        QCOMPARE(expanded(task, "[cfgPath]/../x"), QStringLiteral("/data/x"));
    }

    void seriesNames_data()
    {
        QTest::addColumn<QString>("configPath");
        QTest::addColumn<QString>("cfgName");
        QTest::addColumn<QString>("cfgNameID");
        QTest::addColumn<QString>("cfgLogName");
        QTest::newRow("plain") << "/x/mytest.dpc"
                               << "mytest"
                               << "mytest"
                               << "_mytest_log";
        QTest::newRow("numbered") << "/x/mytest2.dpc"
                                  << "mytest"
                                  << "mytest2"
                                  << "_mytest2_log";
        QTest::newRow("digits only") << "/x/12.dpc"
                                     << ""
                                     << "12"
                                     << "_12_log";
        QTest::newRow("_init file") << "/x/mytest_init.dpc"
                                    << "mytest"
                                    << "mytest_init"
                                    << "_mytest_init_log";
        QTest::newRow("numbered _init file") << "/x/mytest2_init.dpc"
                                             << "mytest2"
                                             << "mytest2_init"
                                             << "_mytest2_init_log";
        QTest::newRow("_init file numbered") << "/x/mytest_init2.dpc"
                                             << "mytest"
                                             << "mytest_init2"
                                             << "_mytest_init2_log";
        QTest::newRow("_init twice") << "/x/a_initb_init.dpc"
                                     << "ab"
                                     << "a_initb_init"
                                     << "_a_initb_init_log";
        QTest::newRow("_init inside") << "/x/a_initb.dpc"
                                      << "a_initb"
                                      << "a_initb"
                                      << "_a_initb_log";
        QTest::newRow("dots") << "/x/v1.2.dpc"
                              << "v1."
                              << "v1.2"
                              << "_v1.2_log";
        QTest::newRow("none") << ""
                              << ""
                              << ""
                              << "__log";
    }

    void seriesNames()
    {
        QFETCH(QString, configPath);
        const TestTask task = taskIn(configPath);
        QTEST(expanded(task, "[cfgName]"), "cfgName");
        QTEST(expanded(task, "[cfgNameID]"), "cfgNameID");
        QTEST(expanded(task, "[cfgLogName]"), "cfgLogName");
    }

    void taskNumberHasTwoNames()
    {
        for (const int number :
             {0, 9, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
            const TestTask task = taskIn("/x/a.dpc");
            QCOMPARE(expanded(task, "[cfgline]", number), QString::number(number));
            QCOMPARE(expanded(task, "[cfgTaskID]", number), QString::number(number));
        }
    }

    void tempFolderIsTheMachines()
    {
        const QTemporaryDir folder;
        qputenv("TMPDIR", QFile::encodeName(folder.path()));
        QCOMPARE(expanded(taskIn(""), "[temp]/a"), folder.path() + "/a");
        qputenv("TMPDIR", "/");
        QCOMPARE(expanded(taskIn(""), "[temp]/a"), QStringLiteral("/a"));
        qunsetenv("TMPDIR");
        QCOMPARE(expanded(taskIn(""), "[temp]/a"), QStringLiteral("/tmp/a"));
    }

    void replacementsHappenInOrder()
    {
        // A value may bring in a variable: a later one is replaced, an earlier one stays.
        const TestTask task = taskIn("/[host]/[cfgPath][iter]a.dpc");
        QCOMPARE(expanded(task, "[cfgNameID]"), QStringLiteral("/[host]/[iter]a"));
        QCOMPARE(wide(task, "[host]", 4, 5, false, machine("[iter][date]", "[host]")),
                 QStringLiteral("5[host]"));
        QCOMPARE(narrow(task, "[host]", 4, 5, false, machine("[iter][date]", "[host]")),
                 QStringLiteral("5[host]"));
    }

    void argumentHoldsTheUnresolvedText()
    {
        auto text = kvToString16<500>("[host]//a/../b");
        const auto result = replaceFileVariables(taskIn(""), text, 0, 0, false, machine());
        QVERIFY(text.isEqual("pc01//a/../b"));
        QVERIFY(result.isEqual("pc01/b"));
    }

    void realMachineIsAskedWithoutGivenValues()
    {
        const TestTask task = taskIn("/x/a.dpc");
        const QString before = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss");
        auto text = kvToString16<500>("[host]|[date]");
        const QStringList parts =
            kvToQString(replaceFileVariables(task, text, 0, 0, false)).split('|');
        const QString after = QDateTime::currentDateTime().toString("yyyy-MM-dd_HH-mm-ss");
        QCOMPARE(parts.value(0), kvToQString(getComputerName()));
        QVERIFY(before <= parts.value(1) && parts.value(1) <= after);
        auto text8 = kvToString8<500>("[host]");
        QCOMPARE(kvToQString(replaceFileVariables8(task, text8, 0, 0, false)), parts.value(0));
    }

    void latin1LettersSurviveInBothWidths()
    {
        const TestTask task = taskIn(QString::fromUtf8("/Prüfung/größe1.dpc"));
        QCOMPARE(expanded(task, QString::fromUtf8("[cfgPath]/[cfgName]/ä")),
                 QString::fromUtf8("/Prüfung/größe/ä"));
        // Folders widen with sign, names without.
        auto text = kvToString16<500>("[cfgPath]");
        QCOMPARE(int(replaceFileVariables(task, text, 0, 0, false).text[3]), 0xFFFC);
        text = kvToString16<500>("[cfgName]");
        QCOMPARE(int(replaceFileVariables(task, text, 0, 0, false).text[2]), 0xF6);
    }

    void valuesAndResultsAreCutAt500()
    {
        const QString longName = QStringLiteral("/x/") + QString(493, 'n') + ".dpc";
        const TestTask task = taskIn(longName);
        QCOMPARE(expanded(task, "[cfgNameID]"), QString(493, 'n'));
        QCOMPARE(expanded(task, "[cfgLogName]"), "_" + QString(493, 'n') + "_log");
        QCOMPARE(expanded(task, "[cfgNameID][cfgNameID]"), QString(500, 'n'));
        // Cut inside the config path: no extension is left to take away.
        const TestTask cut = taskIn(QString(600, 'n') + ".dpc");
        QCOMPARE(expanded(cut, "[cfgLogName]"), "_" + QString(499, 'n'));

        const QByteArray host(500, 'h');
        QCOMPARE(wide(task, "[host]", 0, 0, false, machine(host.constData())), QString(500, 'h'));
        QCOMPARE(narrow(task, "[host]", 0, 0, false, machine(host.constData())), QString(499, 'h'));
        const QByteArray date(600, 'd');
        const MachineValues longDate = machine("", date.constData());
        QCOMPARE(wide(task, "[date]", 0, 0, false, longDate), QString(500, 'd'));
        QCOMPARE(narrow(task, "[date]", 0, 0, false, longDate), QString(500, 'd'));
    }

    void aTextThatIsTooLongOnTheWayIsCutThere()
    {
        const TestTask task = taskIn("/x/a.dpc");
        // Behind 477 characters, what follows the machine's name just fits.
        const auto cutOnTheWay = [&](int hostLength, const QString& expected) {
            const QByteArray host(hostLength, 'h');
            const char* const text = "[host][cfgTaskID]c[cfgTaskID]";
            const MachineValues values = machine(host.constData());
            QCOMPARE(wide(task, text, 7, 0, false, values), host + expected);
            QCOMPARE(narrow(task, text, 7, 0, false, values), host + expected);
        };
        cutOnTheWay(477, "7c7");
        cutOnTheWay(478, "7c[cfgTaskID");
        cutOnTheWay(490, "[cfgTaskID");
    }
};

QTEST_APPLESS_MAIN(TestPathVariables)
#include "tst_pathvariables.moc"
