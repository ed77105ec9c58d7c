#include "dpc/commandline.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"
#include "tests/support/recording.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>
#include <ctime>
#include <functional>
#include <sstream>

// The HTML page of a report, in a real browser without a window and without a network.

namespace {

constexpr double mib = 1024 * 1024;

QByteArray page(const QStringList& runs)
{
    std::vector<std::string> list{"report", "--format=html"};
    for (const QString& run : runs)
        list.push_back(run.toStdString());
    std::ostringstream out;
    std::ostringstream err;
    const int code = runDpc(list, {out, err});
    return code == 0 ? QByteArray::fromStdString(out.str()) : QByteArray();
}

QJsonObject jobOf(const QJsonObject& sample, int task, int machine, int iteration)
{
    QJsonObject job = sample;
    job.insert("line", task + 1);
    job.insert("machine", QString("pc%1").arg(machine));
    job.insert("iteration", iteration);
    job.insert("ioBytesPerSecond", 1e8 + task * 1e6 + machine * 1e5 + iteration);
    return job;
}

} // namespace

class TestReportPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Recordings::hide(m_folder.path(), "@ROOT@");
        Recordings::hide(TWDP_SOURCE_DIR, "@SOURCE@");
        QByteArray hostile = test::contentOf(nightly() + "/results.json");
        hostile.replace("pc02", "<script>alert(1)</script>&'\\\"\\u001b[31m");
        QVERIFY(QDir().mkpath(in("hostile")));
        test::put(in("hostile/results.json"), hostile);
    }

    void thePageAsksForNothingAndNothingFails_data()
    {
        QTest::addColumn<QStringList>("runs");
        QTest::newRow("one run") << QStringList{nightly()};
        QTest::newRow("two runs") << QStringList{nightly(), nightly()};
        QTest::newRow("names that look like code") << QStringList{in("hostile")};
    }

    void thePageAsksForNothingAndNothingFails()
    {
        QFETCH(QStringList, runs);
        const QByteArray dom = opened(page(runs));
        QVERIFY(dom.contains("<canvas"));
        // A request is against the page's own policy, and the browser would say so.
        QVERIFY2(!m_log.contains("CONSOLE"), m_log.constData());
        QVERIFY(!dom.contains("<script>alert"));
    }

    void aRequestOrAFailureWouldBeSeen()
    {
        for (const char* line : {"new Image().src = 'http://127.0.0.1:9/x.png';", "nothing();"}) {
            opened(withScript(page({nightly()}), line));
            QVERIFY2(m_log.contains("CONSOLE"), line);
        }
    }

    /// A canvas that nobody drew on has no pixels that can be seen.
    void picturesAreDrawn()
    {
        const QByteArray script = R"(
            document.title = Array.from(document.querySelectorAll('canvas')).map(function (canvas) {
                const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
                return canvas.id + (pixels.some(function (value) { return value !== 0; }) ? ' drawn' : ' empty');
            }).join(', ');)";
        QCOMPARE(titleOf(opened(withScript(page({nightly(), nightly()}), script))),
                 QByteArray("rates drawn, latencies drawn, time drawn, comparison0 drawn"));
    }

    void aClickSortsNumbersAndASecondOneTurnsTheOrder()
    {
        const QByteArray script = R"(
            const table = Array.from(document.querySelectorAll('table.sortable')).find(
                function (one) { return one.caption.textContent === 'Tasks'; });
            const column = Array.from(table.tHead.rows[0].cells).findIndex(function (cell) {
                return cell.textContent === 'bytes'; });
            function values() {
                return Array.from(table.tBodies[0].rows).map(function (row) {
                    return Number(row.cells[column].textContent); });
            }
            function isSorted(numbers) {
                return numbers.every(function (n, i) { return i === 0 || numbers[i - 1] <= n; });
            }
            const button = table.tHead.rows[0].cells[column].querySelector('button');
            const before = isSorted(values());
            button.click();
            const up = isSorted(values()) + ' ' + button.parentElement.getAttribute('aria-sort');
            button.click();
            document.title = before + ', ' + up + ', ' + isSorted(values().reverse());)";
        const QByteArray dom = opened(withScript(page({nightly()}), script));
        QVERIFY2(!m_log.contains("CONSOLE"), m_log.constData());
        QCOMPARE(titleOf(dom), QByteArray("false, true ascending, true"));
    }

    void namesStayText()
    {
        const QByteArray text = page({in("hostile")});
        QVERIFY(text.contains("&lt;script&gt;alert(1)&lt;/script&gt;&amp;&#39;&quot;\\x1B[31m"));
        QVERIFY(!text.contains("<script>alert") && !text.contains('\x1B'));
    }

    /// It is seen in both themes, and as wide as a telephone and a large screen. The pictures are
    /// for looking at: build/.../report-*.png.
    void bothThemesHaveTheirColours()
    {
        const QByteArray script = "document.title = "
                                  "getComputedStyle(document.body).backgroundColor;";
        const QByteArray text = withScript(page({nightly()}), script);
        QCOMPARE(titleOf(opened(text, {"--blink-settings=preferredColorScheme=1"})),
                 QByteArray("rgb(255, 255, 255)"));
        QCOMPARE(titleOf(opened(text, {"--blink-settings=preferredColorScheme=0"})),
                 QByteArray("rgb(20, 24, 29)"));
        for (const char* width : {"800", "1920"}) {
            for (const char* theme : {"0", "1"}) {
                const QString picture = QString("report-%1-%2.png").arg(width, theme);
                opened(page({nightly()}),
                       {QString("--blink-settings=preferredColorScheme=") + theme,
                        "--screenshot=" + QDir::current().filePath(picture),
                        QString("--window-size=%1,2400").arg(width)});
                QCOMPARE(QImage(picture).width(), QByteArray(width).toInt());
            }
        }
    }

    void aPageHoldsTheFiguresOfItsRuns_data()
    {
        makeRun("many", 3, 9, 2);
        QTest::addColumn<QStringList>("runs");
        QTest::newRow("one run") << QStringList{nightly()};
        QTest::newRow("two runs") << QStringList{nightly(), nightly()};
        QTest::newRow("many machines") << QStringList{in("many")};
    }

    /// All but the scripts and the colours, which are the same on every page.
    void aPageHoldsTheFiguresOfItsRuns()
    {
        QFETCH(const QStringList, runs);
        const QByteArray text = page(runs);
        const int style = text.indexOf("<style>");
        const int body = text.indexOf("</style>");
        const int scripts = text.indexOf("<script>\n");
        QVERIFY(style > 0 && body > style && scripts > body);
        QVERIFY(text.endsWith("</script>\n</body>\n</html>\n"));
        Recordings::compare(QString::fromUtf8(text.left(style) + text.mid(body, scripts - body)));
    }

    void manyMachinesAreSummedUpAndManyCellsHaveAHeatMap_data()
    {
        QTest::addColumn<int>("tasks");
        QTest::addColumn<int>("machines");
        QTest::addColumn<bool>("isSummedUp");
        QTest::addColumn<bool>("hasHeatMap");
        QTest::newRow("8 machines, 16 cells") << 2 << 8 << false << false;
        QTest::newRow("8 machines, 24 cells") << 3 << 8 << false << true;
        QTest::newRow("9 machines, 18 cells") << 2 << 9 << true << false;
        QTest::newRow("23 machines, 23 cells") << 1 << 23 << true << false;
        QTest::newRow("1 machine, 24 cells") << 24 << 1 << false << true;
        QTest::newRow("1 machine, 25 cells") << 25 << 1 << false << true;
    }

    void manyMachinesAreSummedUpAndManyCellsHaveAHeatMap()
    {
        QFETCH(const int, tasks);
        QFETCH(const int, machines);
        QFETCH(const bool, isSummedUp);
        QFETCH(const bool, hasHeatMap);
        makeRun("sized", tasks, machines, 1);
        const QByteArray text = page({in("sized")});
        QCOMPARE(text.contains("slowest machine"), isSummedUp);
        QCOMPARE(text.contains("<h2>Heat map</h2>"), hasHeatMap);
    }

    void coloursOfAHeatMapAreSharesOfTheFastest()
    {
        makeRun("heat", 1, 24, 1, [](QJsonObject& job) {
            const QMap<QString, QJsonValue> rates = {{"pc0", 100 * mib},
                                                     {"pc1", QJsonValue()},
                                                     {"pc2", 50 * mib},
                                                     {"pc3", 51 * mib},
                                                     {"pc4", 0}};
            job.insert("ioBytesPerSecond", rates.value(job["machine"].toString(), 10 * mib));
        });
        const QByteArray text = page({in("heat")});
        const auto hasRow = [&](const QByteArray& machine, const QByteArray& cell) {
            return text.contains("<tr><th scope=\"row\">" + machine + "</th><td" + cell +
                                 "</td></tr>\n");
        };
        QVERIFY(hasRow("pc0", " class=\"number strong\" style=\"--heat:100\">100.0"));
        // Nobody measured it.
        QVERIFY(hasRow("pc1", ">"));
        QVERIFY(hasRow("pc2", " class=\"number\" style=\"--heat:50\">50.0"));
        QVERIFY(hasRow("pc3", " class=\"number strong\" style=\"--heat:51\">51.0"));
        QVERIFY(hasRow("pc4", " class=\"number\" style=\"--heat:0\">0.0"));
        QVERIFY(hasRow("pc23", " class=\"number\" style=\"--heat:10\">10.0"));
    }

    void aHeatMapWithoutAnySpeedHasNoColour()
    {
        makeRun("still", 1, 24, 1, [](QJsonObject& job) { job.insert("ioBytesPerSecond", 0); });
        QCOMPARE(page({in("still")}).count("<td class=\"number\" style=\"--heat:0\">0.0</td>"), 24);
    }

    void aTaskThatNobodyMeasuredHasNoBarOfManyMachines()
    {
        makeRun("gap", 2, 9, 1, [](QJsonObject& job) {
            const double machine = job["machine"].toString().mid(2).toDouble();
            const bool isMeasured = job["line"].toInt() == 1;
            job.insert("ioBytesPerSecond",
                       isMeasured ? QJsonValue((10 + machine) * mib) : QJsonValue());
        });
        const QByteArray text = page({in("gap")});
        const QByteArray start = "id=\"data\">";
        const int begin = text.indexOf(start) + start.size();
        const QByteArray data = text.mid(begin, text.indexOf("</script>", begin) - begin);
        QJsonArray values;
        for (const QJsonValue set :
             QJsonDocument::fromJson(data).object()["rates"].toObject()["datasets"].toArray())
            values.append(set.toObject()["values"]);
        const QJsonValue none;
        QCOMPARE(values,
                 (QJsonArray{QJsonArray{10, none}, QJsonArray{14, none}, QJsonArray{18, none}}));
    }

    void aLargeRunMakesAPageOfFewMegabytesInLittleTime()
    {
        makeRun("large", 100, 20, 10);
        const std::clock_t begin = std::clock();
        const QByteArray text = page({in("large")});
        const double seconds = double(std::clock() - begin) / CLOCKS_PER_SEC;
        qInfo("%lld bytes, %.2f s of processor time", qint64(text.size()), seconds);
        QVERIFY(text.size() > 100000 && text.size() < 5 * 1024 * 1024);
        const QByteArray script =
            "document.title = document.querySelectorAll('.heat tbody tr').length + ' ' + "
            "document.querySelector('table.sortable').tBodies[0].rows.length;";
        QCOMPARE(titleOf(opened(withScript(text, script))), QByteArray("20 2000"));
    }

private:
    static QString nightly() { return QStringLiteral(TWDP_SOURCE_DIR "/tests/data/run/nightly"); }
    QString in(const QString& name) const { return m_folder.filePath(name); }

    static QByteArray withScript(QByteArray text, const QByteArray& script)
    {
        return text.replace("</body>", "<script>" + script + "</script></body>");
    }

    static QByteArray titleOf(const QByteArray& dom)
    {
        const int begin = dom.indexOf("<title>") + 7;
        return dom.mid(begin, dom.indexOf("</title>") - begin);
    }

    /// The page after its scripts ran, as the browser sees it. Its log goes into m_log.
    QByteArray opened(const QByteArray& text, const QStringList& options = {})
    {
        test::put(in("page.html"), text);
        QProcess browser;
        QStringList arguments{"--headless",
                              "--no-sandbox",
                              "--disable-gpu",
                              "--disable-quic",
                              "--no-first-run",
                              "--disable-background-networking",
                              "--disable-component-update",
                              "--disable-sync",
                              "--enable-logging=stderr",
                              "--virtual-time-budget=10000",
                              "--user-data-dir=" + in("profile")};
        arguments += options;
        if (options.filter("--screenshot").isEmpty())
            arguments += "--dump-dom";
        browser.start("chromium", arguments << "file://" + in("page.html"));
        if (!browser.waitForFinished(-1))
            return {};
        m_log = browser.readAllStandardError();
        return browser.readAllStandardOutput();
    }

    /// All jobs are good, unless a change says otherwise.
    void makeRun(
        const QString& name, int tasks, int machineCount, int iterations,
        const std::function<void(QJsonObject&)>& change = [](QJsonObject&) {})
    {
        QJsonObject results =
            QJsonDocument::fromJson(test::contentOf(nightly() + "/results.json")).object();
        const QJsonObject sample = results["jobs"].toArray().first().toObject();
        QJsonArray jobs;
        QJsonArray machines;
        for (int machine = 0; machine < machineCount; ++machine) {
            machines.append(QJsonObject{{"name", QString("pc%1").arg(machine)}});
            for (int task = 0; task < tasks; ++task) {
                for (int iteration = 0; iteration < iterations; ++iteration) {
                    QJsonObject job = jobOf(sample, task, machine, iteration);
                    change(job);
                    jobs.append(job);
                }
            }
        }
        results.insert("machines", machines);
        results.insert("jobs", jobs);
        QVERIFY(QDir().mkpath(in(name)));
        test::put(in(name + "/results.json"), QJsonDocument(results).toJson());
    }

    QTemporaryDir m_folder;
    QByteArray m_log;
};

int main(int argc, char** argv)
{
    qputenv("TZ", "UTC"); // moments are those of the place
    QCoreApplication application(argc, argv);
    if (QStandardPaths::findExecutable("chromium").isEmpty())
        test::leaveOut("chromium is missing; it opens the page of a report");
    TestReportPage tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_reportpage.moc"
