#include "dialogs/kvmessagebox.h"

#include "tests/dialogs/messageparts.h"
#include "tests/support/dialoganswer.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

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
    QSignalSpy finished(box.get(), &QDialog::finished);
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok"));
    QVERIFY2(!finished.wait(1500), "a timer runs");
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok"));
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
    QSignalSpy accepted(box.get(), &QDialog::accepted);
    QVERIFY(accepted.wait(3000));
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok  (0)"));
    QVERIFY2(accepted.wait(3000), "the timer was stopped");
    QCOMPARE(MessageParts(*box).button1->text(), QString("Ok  (-1)"));
}

void TestKvMessageCountdown::answersTrueAfterItsSeconds()
{
    bool cancelled = false;
    QStringList shown;
    DialogAnswers answers(std::chrono::seconds(10));
    answers.answerNext([&](QDialog& box) {
        // Looks ten times a second at what a person can see; ends with the dialog.
        auto* watch = new QTimer(&box);
        const auto look = [&shown, &box, button = MessageParts(box).button1] {
            if (box.isVisible() && (shown.isEmpty() || shown.last() != button->text()))
                shown << button->text();
        };
        connect(watch, &QTimer::timeout, &box, look);
        watch->start(100);
    });
    QElapsedTimer clock;
    clock.start();
    QVERIFY(kvMessageInformation(nullptr, "text", "Ok", 3, {}, &cancelled, false));
    // A coarse timer may be 5 % early on every tick, and a busy machine late.
    QVERIFY2(clock.elapsed() >= 2850, qPrintable(QString::number(clock.elapsed())));
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(shown, (QStringList{"Ok  (3)", "Ok  (2)", "Ok  (1)"}));
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
