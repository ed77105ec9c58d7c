#include "configset/seriesloader.h"
#include "dpc/alignment.h"
#include "dpc/roundtrip.h"
#include "tests/check/seriesfolder.h"
#include "tests/dpc/dpcrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

/// A load and a save of a series in memory, and the lines that they would change.
class TestDpcRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void savedAndLoadedSeriesComesThroughARoundTrip()
    {
        TestTask task;
        task.setDefaults();
        task.sourcePath = path("[cfgPath]/s.dat");
        m_series->save({task, marker(), task});
        // The names of the series come in with the second save, and then stay.
        TaskList tasks;
        loadSeries({m_series->root(), "a"}, tasks, silentListener());
        m_series->save(tasks);
        QCOMPARE(changes(), QString());
    }

    void roundTripTellsOfFilesThatAreCutAndLeftOver()
    {
        m_series->put("a.dpc", goodLine({{12, "[cfgPath]/l"}, {13, "[cfgPath]/c"}}).repeated(60));
        QVERIFY(changes().contains("_wait/a.dpc: is created"));
        QVERIFY(changes().contains(QString("_wait/a.dpc: is cut at %1 of ").arg(maxConfigFile)));
        QVERIFY(changes().contains("\na.dpc: stays as it is, and is loaded again next time\n"));
        QVERIFY(changes().contains("a_init.dpc: is created"));
        QCOMPARE(changesInJson(), (QStringList{"change created; cutAt 5000; file _wait/a.dpc; "
                                               "lineCount 49",
                                               "change created; file a_init.dpc; lineCount 1",
                                               "change kept; file a.dpc"}));
    }

    void roundTripTellsWhatCannotBeWritten()
    {
        m_series->put("a.dpc", goodLine());
        QVERIFY(QDir(m_series->root()).mkdir("_wait/a.dpc"));
        QVERIFY(changes().contains("_wait/a.dpc: can't be written: what is there is not a file\n"));
        QVERIFY(QDir(m_series->root() + "_wait").removeRecursively());
        m_series->put("_wait", "");
        QVERIFY(changes().contains("_wait/a.dpc: can't be written: the folder is a file\n"));
        QCOMPARE(changesInJson().value(0),
                 QString("change blocked; file _wait/a.dpc; reason the folder is a file"));
        QVERIFY(changes().contains("a_init.dpc: is created"));
    }

    void roundTripKnowsTheFilesThatTheSaveMakes()
    {
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/_wait/a.dpc"}, {11, ""}}));
        m_series->put("a_init.dpc", "");
        QVERIFY(
            changes().contains(QRegularExpression("1 [+] # Stream.*[[]cfgPath\\]/_wait/a.dpc;")));
    }

    void roundTripComparesALargeFileInPart()
    {
        constexpr int compared = 256 * 1024;
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", QByteArray("a\n").repeated(compared / 2));
        QVERIFY(!changes().contains("not shown"));
        QCOMPARE(changes().count(" - a\n"), compared / 2);
        // The line at the edge is not shown in part.
        m_series->put("a_init.dpc", QByteArray("aa\n").repeated(compared));
        QCOMPARE(changes().count(" - aa\n"), compared / 3);
        const int rest = 3 * (compared - compared / 3);
        QVERIFY(changes().contains(
            QString("a_init.dpc: %1 more bytes go, and are not shown\n").arg(rest)));
        QVERIFY(changesInJson().contains(
            QString("bytesNotShown %1; change changed; file a_init.dpc").arg(rest)));
    }

    void aFileThatStaysAsItIsIsToldIfItIsCut()
    {
        TestTask task;
        task.setDefaults();
        task.sourcePath = path("[cfgPath]/[iter].dat");
        task.iterations = 100;
        m_series->save({task});
        // The names of the series come in with the second save, and then stay.
        TaskList tasks;
        loadSeries({m_series->root(), "a"}, tasks, silentListener());
        m_series->save(tasks);
        QCOMPARE(test::contentOf(m_series->root() + "a_init.dpc").size(), maxConfigFile);
        QCOMPARE(changes().remove(m_series->root()),
                 QString("a_init.dpc: is cut at %1 characters\n").arg(maxConfigFile));
        QCOMPARE(changesInJson(), QStringList("change unchanged; cutAt 5000; file a_init.dpc"));
        QCOMPARE(m_dpc.run("roundtrip " + m_series->root() + "a.dpc").code, 1);
    }

    void aLargeFileWithoutALineEndIsComparedInPart()
    {
        constexpr int compared = 256 * 1024;
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", QByteArray(compared, 'a'));
        const QString line = " - " + QString(compared, 'a') + " (no line end)\n";
        QVERIFY(changes().contains(line));
        QVERIFY(!changes().contains("not shown"));
        m_series->put("a_init.dpc", QByteArray(compared + 1, 'a'));
        QVERIFY(changes().contains(line));
        QVERIFY(changes().contains("a_init.dpc: 1 more bytes go, and are not shown\n"));
    }

    void roundTripOfEndlessIterationsEnds()
    {
        m_series->put("a.dpc", goodLine({{8, "2000000000"}, {10, "[cfgPath]/[iter]"}}));
        QVERIFY(changes().contains(
            QString("a_init.dpc: is cut at %1 characters\n").arg(maxConfigFile)));
    }

    void alignmentPairsWhatIsEqual()
    {
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "x", "b", "c"}), QString("0-0 ?-1 1-2 2-3"));
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "c"}), QString("0-0 1-? 2-1"));
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "d", "c"}), QString("0-0 1-1 2-2"));
        QCOMPARE(pairs({}, {"a"}), QString("?-0"));
        QCOMPARE(pairs({}, {}), QString());
    }

    void alignmentOfVeryLongListsIsByPlaces()
    {
        std::vector<std::string> first(4000, "a");
        std::vector<std::string> second(4001, "b");
        const auto aligned = align(first, second);
        QCOMPARE(aligned.size(), size_t(4001));
        QCOMPARE(aligned[3999].first, 3999);
        QCOMPARE(aligned[4000].first, -1);
    }

private:
    /// For each file what the JSON tells of it, but for the lines: keys in their order, and values.
    QStringList changesInJson() const
    {
        const QByteArray json =
            m_dpc.run("roundtrip --format=json " + m_series->root() + "a.dpc").out;
        QStringList texts;
        for (const QJsonValue value : QJsonDocument::fromJson(json).object()["files"].toArray()) {
            QJsonObject file = value.toObject();
            file.remove("lines");
            QStringList parts;
            for (auto part = file.constBegin(); part != file.constEnd(); ++part)
                parts += part.key() + ' ' + part.value().toVariant().toString();
            texts += parts.join("; ").remove(m_series->root());
        }
        return texts;
    }

    QString changes() const
    {
        return QString::fromStdString(changesAsText(roundTrip(m_series->facts())));
    }

    static QString pairs(const std::vector<std::string>& first,
                         const std::vector<std::string>& second)
    {
        const auto name = [](int place) {
            return place < 0 ? QString("?") : QString::number(place);
        };
        QStringList texts;
        for (const AlignedPair& pair : align(first, second))
            texts += name(pair.first) + '-' + name(pair.second);
        return texts.join(' ');
    }

    QScopedPointer<SeriesFolder> m_series;
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcRoundTrip)
#include "tst_dpcroundtrip.moc"
