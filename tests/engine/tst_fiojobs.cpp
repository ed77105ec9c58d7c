#include "tests/engine/exported.h"
#include "tests/engine/fiotrace.h"

#include "tests/support/leaveout.h"

#include <QRandomGenerator>
#include <QStandardPaths>

/// fio makes the calls of the task lines, and no others.
class TestFioJobs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { test::needFio(); }
    void callsAreThoseOfTheTasks_data();
    void callsAreThoseOfTheTasks();
};

namespace {

constexpr int kib = 1024;

/// A call that must be, and the least time before it.
struct Step
{
    QString call;
    int waitMs = 0;
};

/// Tasks at random, and the calls that each iteration of them stands for.
class RandomTasks
{
public:
    explicit RandomTasks(quint32 seed)
        : m_random(seed)
    {}

    void add(PlannedSeries& series, int index)
    {
        Line line;
        const char* methods[] = {"Posix", "Stream", "AnsiC"};
        line.method = methods[m_random.bounded(3)];
        line.chunk = m_random.bounded(4) == 0 ? 0 : 1 + m_random.bounded(60);
        line.size = 1 + m_random.bounded(200);
        line.wait = m_random.bounded(2) * 10;
        line.flush = m_random.bounded(2) == 0;
        line.iterations = 1 + m_random.bounded(2);
        const int kind = m_random.bounded(3);
        // A log of calls can't hold a blank, and a copy needs one.
        const char* blank = kind != 0 && m_random.bounded(3) == 0 ? " " : "";
        const QByteArray number = QByteArray::number(index);
        const QByteArray source = "in" + number + blank + ".dat";
        const QByteArray destination =
            "out" + number + blank + (m_random.bounded(2) == 0 ? "_[iter]" : "") + ".dat";
        if (kind != 1) {
            const int size = int(line.size) * kib - m_random.bounded(kib);
            series.put("files/" + source, test::textOf(size));
            line.source = "[cfgPath]/files/" + source;
            expect(line, size, source, kind == 0 ? destination : QByteArray());
        } else {
            expect(line, int(line.size) * kib, {}, destination);
        }
        if (kind != 2)
            line.destination = "[cfgPath]/files/" + destination;
        if (kind == 0)
            m_copies.insert(destination, source);
        m_lines += line.text();
    }

    const QByteArray& lines() const { return m_lines; }
    const QList<Step>& steps() const { return m_steps; }
    const QMap<QString, QString>& copies() const { return m_copies; }
    const QMap<QString, int>& sizes() const { return m_sizes; }

private:
    /// By the words of the form: chunks one after the other, a flush and a wait after each.
    void expect(const Line& line, int size, const QByteArray& source, const QByteArray& destination)
    {
        // Posix and AnsiC copies have chunks of 1 MiB if the task has none.
        const bool isCopy = !source.isEmpty() && !destination.isEmpty();
        const bool isWhole = line.chunk == 0 && !(isCopy && line.method != "Stream");
        const int chunk = line.chunk == 0 ? (isWhole ? size : kib * kib) : line.chunk * kib;
        const int wait = isWhole ? 0 : line.wait;
        const bool flushes = line.flush && !destination.isEmpty() && !isWhole;
        for (int iteration = 0; iteration < line.iterations; ++iteration) {
            const QString from = QString::fromLatin1(source);
            const QString to =
                QString::fromLatin1(destination).replace("[iter]", QString::number(iteration));
            for (int offset = 0; offset < size; offset += chunk) {
                const QString length = ' ' + QString::number(qMin(chunk, size - offset));
                int waited = offset > 0 && !flushes ? wait : 0;
                if (!from.isEmpty()) {
                    m_steps += {"read " + from + length, waited};
                    waited = 0;
                }
                if (!to.isEmpty())
                    m_steps += {"write " + to + length, waited};
                // fio waits before the flush, which is said as a loss.
                if (flushes)
                    m_steps += {"sync " + to, wait};
            }
            if (!to.isEmpty())
                m_sizes.insert(to, size);
        }
    }

    QRandomGenerator m_random;
    QByteArray m_lines;
    QList<Step> m_steps;
    QMap<QString, QString> m_copies;
    QMap<QString, int> m_sizes;
};

/// The calls are these, and the waits between them at least as long. A task whose last chunk is a
/// section of its own has two processes: its wait stands in neither.
void compare(const QList<FioTrace::Call>& calls, const QList<Step>& steps)
{
    constexpr double clocksDifferMs = 0.5;
    for (int i = 0; i < qMin(calls.size(), steps.size()); ++i) {
        const FioTrace::Call& call = calls[i];
        const Step& step = steps[i];
        const bool isFirst = call.beforeMs == 0;
        QVERIFY2(
            call.text == step.call,
            qPrintable(QStringLiteral("call %1: %2 and not %3").arg(i).arg(call.text, step.call)));
        QVERIFY2(isFirst || call.beforeMs > step.waitMs - clocksDifferMs, qPrintable(call.text));
        QVERIFY2(!call.slept || step.waitMs > 0, qPrintable(call.text));
    }
    QCOMPARE(calls.size(), steps.size());
}

quint32 seedOfTheDay(quint32 otherwise)
{
    const int seed = qEnvironmentVariableIntValue("TWDP_SEED");
    return seed > 0 ? quint32(seed) : otherwise;
}

} // namespace

void TestFioJobs::callsAreThoseOfTheTasks_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 2; ++seed)
        QTest::addRow("seed %u", seedOfTheDay(seed)) << seedOfTheDay(seed);
}

void TestFioJobs::callsAreThoseOfTheTasks()
{
    QFETCH(quint32, seed);
    if (QStandardPaths::findExecutable("strace").isEmpty())
        test::leaveOut("strace is not installed");
    PlannedSeries series;
    const QString files = series.root() + "files";
    QVERIFY(QDir().mkdir(files));
    RandomTasks tasks(seed);
    for (int i = 0; i < 12; ++i)
        tasks.add(series, i);
    const test::Snapshot before = test::snapshotOf(files);
    const PlanResult result = series.planOf(tasks.lines());
    for (const Finding& loss : result.losses)
        QVERIFY2(loss.rule->severity != Severity::Error, loss.text.c_str());
    const QString folder = exported(series, result.plan);
    const QString prefix = series.place("trace");
    const test::Printed printed = test::printedBy(
        folder, "strace", FioTrace::options(prefix) + QStringList{"fio", "stage-0.fio"});
    QVERIFY2(!printed.err.contains("ptrace"), printed.err);
    compare(FioTrace(prefix, files + '/').calls(), tasks.steps());

    for (auto it = tasks.sizes().begin(); it != tasks.sizes().end(); ++it)
        QCOMPARE(test::contentOf(files + '/' + it.key()).size(), it.value());
    for (auto it = tasks.copies().begin(); it != tasks.copies().end(); ++it)
        QVERIFY(test::contentOf(files + '/' + QString(it.key()).replace("[iter]", "0")) ==
                test::contentOf(files + '/' + it.value()));
    // Sources are as they were.
    const test::Snapshot after = test::snapshotOf(files);
    for (auto it = before.begin(); it != before.end(); ++it)
        QCOMPARE(after.value(it.key()), it.value());
}

QTEST_GUILESS_MAIN(TestFioJobs)
#include "tst_fiojobs.moc"
