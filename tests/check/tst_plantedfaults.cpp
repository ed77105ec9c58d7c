#include "check/checker.h"
#include "check/rules/catalogue.h"
#include "tests/check/plantedfaults.h"
#include "tests/support/files.h"

#include <QElapsedTimer>
#include <QTest>

/// Clean series at random, and one fault in each: nothing is missed, and nothing false is said.
/// TWDP_PLANT_SECONDS lets it go on for so long, TWDP_PLANT_SEED begins elsewhere.
class TestPlantedFaults : public QObject
{
    Q_OBJECT

private slots:
    void cleanSeriesAndThoseWithAFault()
    {
        const qint64 seconds = qEnvironmentVariableIntValue("TWDP_PLANT_SECONDS");
        unsigned seed = unsigned(qEnvironmentVariableIntValue("TWDP_PLANT_SEED"));
        QElapsedTimer time;
        time.start();
        do {
            for (const NamedFault& fault : faultsInTasks())
                tryBoth(seed, fault, true);
            for (const NamedFault& fault : faultsInFiles())
                tryBoth(seed, fault, false);
            if (QTest::currentTestFailed())
                return;
        } while (time.elapsed() < seconds * 1000);
        qInfo("%d clean series and %d with a fault, up to seed %u", m_faults, m_faults, seed);
    }

private:
    static QStringList said(RandomSeries& series)
    {
        CheckOptions options;
        options.hosts = series.hosts();
        // Two tasks at random are the same now and then.
        options.rulesOff = {ruleNamed("same-task")};
        options.environment.space = [](const QString&) { return std::nullopt; };
        QStringList texts;
        for (const Finding& finding : checkAll({series.folder()}, options).findings)
            texts += QStringLiteral("%1 %2:%3")
                         .arg(finding.rule->name, QString(finding.path).remove(series.folder()))
                         .arg(finding.line);
        return texts;
    }

    /// A clean series, and the next one that has a place for the fault.
    void tryBoth(unsigned& seed, const NamedFault& fault, bool beforeSave)
    {
        if (QTest::currentTestFailed())
            return;
        tryClean(++seed);
        while (!QTest::currentTestFailed() && !tryFault(seed, fault, beforeSave))
            ++seed;
    }

    static void tryClean(unsigned seed)
    {
        using State = RandomSeries::State;
        RandomSeries series(seed);
        series.save();
        for (const State state : {State::Saved, State::InitRun, State::Finished}) {
            series.comeTo(state);
            const QStringList all = said(series);
            if (!all.isEmpty())
                QFAIL(report(series, "seed " + QByteArray::number(seed) + ", clean", all));
        }
    }

    /// False if the series has no place for the fault.
    bool tryFault(unsigned seed, const NamedFault& fault, bool beforeSave)
    {
        RandomSeries series(seed);
        Planted planted;
        if (beforeSave && !fault.plant(series, planted))
            return false;
        series.save();
        series.comeTo(RandomSeries::State(series.draw(int(planted.latest) + 1)));
        if (!beforeSave && !fault.plant(series, planted))
            return false;
        ++m_faults;
        compare(series, planted, "seed " + QByteArray::number(seed) + ", " + fault.name);
        return true;
    }

    static void compare(RandomSeries& series, Planted planted, const QByteArray& what)
    {
        const QStringList all = said(series);
        for (const QStringList& wanted : planted.wanted) {
            if (std::none_of(wanted.begin(), wanted.end(),
                             [&](const QString& one) { return isSaid(all, one); }))
                QFAIL(report(series, what, all));
            planted.alsoTrue += wanted;
        }
        for (const QString& one : all) {
            if (!planted.alsoTrue.contains(one) &&
                !planted.alsoTrue.contains(one.section(' ', 0, 0)))
                QFAIL(report(series, what, all));
        }
    }

    static bool isSaid(const QStringList& all, const QString& wanted)
    {
        return std::any_of(all.begin(), all.end(), [&](const QString& one) {
            return one == wanted || one.startsWith(wanted + ' ');
        });
    }

    /// Shows the series, and says what was found in it.
    static QByteArray report(RandomSeries& series, const QByteArray& what, const QStringList& all)
    {
        QByteArray text = "machines: " + series.hosts().join(',').toUtf8();
        for (const QString& file : test::entriesOf(series.folder()))
            text += "\n== " + file.toUtf8() + '\n' +
                    (file.endsWith(".dpc") ? test::contentOf(series.folder() + file) : "");
        qInfo("%s", text.constData());
        return what + ": " + all.join(", ").toUtf8();
    }

    int m_faults = 0;
};

QTEST_APPLESS_MAIN(TestPlantedFaults)
#include "tst_plantedfaults.moc"
