#include "dialogs/kvmessagebox.h"

#include "tests/dialogs/messageparts.h"
#include "tests/support/dialoganswer.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QSignalSpy>
#include <QTest>

class TestKvMessageCountdown : public QObject
{
    Q_OBJECT

private slots:
    void showsTheSecondsBehindTheButtonsText_data();
    void showsTheSecondsBehindTheButtonsText();
    void hasNoCountdownBelowOne_data();
    void hasNoCountdownBelowOne();
    void countsEveryTimerEventDown();
    void leavesTheCancelFlagTrueAtItsEnd();
    void runsOnAfterItsEnd();
    void answersTrueAfterItsSeconds();
    void answersTrueAfter45Ticks();
};

namespace {

/// Delivers a tick at once. Its timer is not the dialog's own, which makes no difference to it.
void tick(QDialog& box)
{
    QTimerEvent event(12345);
    QCoreApplication::sendEvent(&box, &event);
}

/// Notes what the first button says whenever a tick of the dialog's own timer is about to change
/// it.
class TextsUntilTicks : public QObject
{
public:
    QStringList shown;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Timer)
            shown << MessageParts(*qobject_cast<QDialog*>(watched)).button1->text();
        return false;
    }
};

} // namespace

void TestKvMessageCountdown::showsTheSecondsBehindTheButtonsText_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("shown");
    QTest::newRow("30") << "Ok" << 30 << "Ok  (30)";
    QTest::newRow("45") << "Ok" << 45 << "Ok  (45)";
    QTest::newRow("1") << "Ok" << 1 << "Ok  (1)";
    QTest::newRow("no text") << "" << 30 << "  (30)";
    QTest::newRow("a place holder in the text") << "%1 %2" << 30 << "%1 %2  (30)";
}

void TestKvMessageCountdown::showsTheSecondsBehindTheButtonsText()
{
    QFETCH(const QString, first);
    QFETCH(const int, seconds);
    MessageSettings settings;
    settings.first = first;
    settings.countdown = seconds;
    settings.second = "Abort";
    const auto box = makeMessage(settings);
    const MessageParts parts(*box);
    QTEST(parts.button1->text(), "shown");
    QCOMPARE(parts.button2->text(), QString("Abort"));
}

void TestKvMessageCountdown::hasNoCountdownBelowOne_data()
{
    QTest::addColumn<int>("seconds");
    for (const int seconds : {0, -1, -30})
        QTest::newRow(qPrintable(QString::number(seconds))) << seconds;
}

void TestKvMessageCountdown::hasNoCountdownBelowOne()
{
    QFETCH(const int, seconds);
    MessageSettings settings;
    settings.countdown = seconds;
    const auto box = makeMessage(settings);
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok"));
    const auto* timers = QAbstractEventDispatcher::instance();
    QVERIFY2(timers->registeredTimers(box.get()).isEmpty(), "a timer runs");
}

void TestKvMessageCountdown::countsEveryTimerEventDown()
{
    MessageSettings settings;
    settings.countdown = 3;
    const auto box = makeMessage(settings);
    const QPushButton* button = MessageParts(*box).button1;
    QSignalSpy accepted(box.get(), &QDialog::accepted);
    for (const auto* shown : {"Ok  (2)", "Ok  (1)"}) {
        tick(*box);
        QCOMPARE(button->text(), QString(shown));
        QCOMPARE(accepted.count(), 0);
    }
    tick(*box);
    QCOMPARE(button->text(), QString("Ok  (0)"));
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(box->result(), int(QDialog::Accepted));
}

void TestKvMessageCountdown::leavesTheCancelFlagTrueAtItsEnd()
{
    bool cancelled = false;
    MessageSettings settings;
    settings.countdown = 1;
    settings.cancelled = &cancelled;
    const auto box = makeMessage(settings);
    tick(*box);
    QCOMPARE(box->result(), int(QDialog::Accepted));
    QVERIFY(cancelled);
}

void TestKvMessageCountdown::runsOnAfterItsEnd()
{
    MessageSettings settings;
    settings.countdown = 1;
    const auto box = makeMessage(settings);
    const auto timers = [&box] {
        return QAbstractEventDispatcher::instance()->registeredTimers(box.get());
    };
    QCOMPARE(timers().size(), 1);
    QCOMPARE(timers().first().interval, 1000);
    QCOMPARE(timers().first().timerType, Qt::CoarseTimer);
    QSignalSpy accepted(box.get(), &QDialog::accepted);
    tick(*box);
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok  (0)"));
    QCOMPARE(timers().size(), 1);
    tick(*box);
    QCOMPARE(accepted.count(), 2);
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok  (-1)"));
}

// Asks the clock only whether the answer came too early: how late it is says how busy the machine
// is.
void TestKvMessageCountdown::answersTrueAfterItsSeconds()
{
    bool cancelled = false;
    TextsUntilTicks texts;
    DialogAnswers answers(std::chrono::minutes(4));
    answers.answerNext([&texts](QDialog& box) { box.installEventFilter(&texts); });
    QElapsedTimer clock;
    clock.start();
    QVERIFY(kvMessageInformation(nullptr, "text", "Ok", 3, {}, &cancelled, false));
    // A coarse timer may be 5 % early on every tick, and whole milliseconds are rounded on top.
    QVERIFY2(clock.elapsed() >= 2800, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(texts.shown.last(), QString("Ok  (1)"));
    QCOMPARE(texts.shown,
             (QStringList{"Ok  (3)", "Ok  (2)", "Ok  (1)"}).mid(3 - texts.shown.size()));
    QVERIFY(cancelled);
}

void TestKvMessageCountdown::answersTrueAfter45Ticks()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) {
        const QPushButton* button = MessageParts(box).button1;
        QCOMPARE(button->text(), QString("Ok  (45)"));
        for (int left = 44; left >= 1; --left) {
            tick(box);
            QCOMPARE(button->text(), QStringLiteral("Ok  (%1)").arg(left));
            QVERIFY(box.isVisible());
        }
        tick(box);
        QVERIFY(!box.isVisible());
    });
    QVERIFY(kvMessageWarning(nullptr, "Unable to load line", "Ok", 45, {}, nullptr, false));
}

QTEST_MAIN(TestKvMessageCountdown)
#include "tst_kvmessagecountdown.moc"
