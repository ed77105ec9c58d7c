#include "dialogs/kvmessagebox.h"

#include <QCoreApplication>
#include <QTest>

/// Runs without any application object: a dialog that is built all the same ends the program.
class TestKvMessageNoApplication : public QObject
{
    Q_OBJECT

private slots:
    void returnsFalseAndLeavesTheFlag_data();
    void returnsFalseAndLeavesTheFlag();
};

using ShowAndWait = decltype(&kvMessageInformation);
Q_DECLARE_METATYPE(ShowAndWait)

void TestKvMessageNoApplication::returnsFalseAndLeavesTheFlag_data()
{
    QTest::addColumn<ShowAndWait>("showAndWait");
    QTest::newRow("information") << &kvMessageInformation;
    QTest::newRow("warning") << &kvMessageWarning;
    QTest::newRow("question") << &kvMessageQuestion;
}

void TestKvMessageNoApplication::returnsFalseAndLeavesTheFlag()
{
    QVERIFY(QCoreApplication::instance() == nullptr);
    QFETCH(const ShowAndWait, showAndWait);
    for (const bool before : {false, true}) {
        bool cancelled = before;
        QVERIFY(!showAndWait(nullptr, "text", "Ok", 1, "No", &cancelled, false));
        QCOMPARE(cancelled, before);
    }
}

QTEST_APPLESS_MAIN(TestKvMessageNoApplication)
#include "tst_kvmessagenoapplication.moc"
