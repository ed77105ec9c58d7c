#include "dialogs/messagetext.h"

#include <QStringList>
#include <QTest>

class TestMessageText : public QObject
{
    Q_OBJECT

private slots:
    void showsShortTextsWholeWithOneMoreLineFeed_data();
    void showsShortTextsWholeWithOneMoreLineFeed();
    void shortensTo47Lines_data();
    void shortensTo47Lines();
    void keepsEmptyLines();
    void countsLineFeedsOnly();
    void takesTheFirstLetterInLowerCase_data();
    void takesTheFirstLetterInLowerCase();
    void givesEachButtonItsOwnLetter();
    void dropsBothLettersWhereTheyAreEqual_data();
    void dropsBothLettersWhereTheyAreEqual();
};

namespace {

/// "line 1" to "line <lineFeeds + 1>", with that many line feeds between them.
QStringList numberedLines(int lineFeeds)
{
    QStringList lines;
    for (int number = 1; number <= lineFeeds + 1; ++number)
        lines << QStringLiteral("line %1").arg(number);
    return lines;
}

} // namespace

void TestMessageText::showsShortTextsWholeWithOneMoreLineFeed_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("one line") << QStringLiteral("Nothing special");
    QTest::newRow("line feed at the end") << QStringLiteral("closed\n");
    for (const int lineFeeds : {44, 45})
        QTest::newRow(qPrintable(QString::number(lineFeeds)))
            << numberedLines(lineFeeds).join('\n');
}

void TestMessageText::showsShortTextsWholeWithOneMoreLineFeed()
{
    QFETCH(const QString, text);
    QCOMPARE(shortenMessage(text), text + '\n');
}

void TestMessageText::shortensTo47Lines_data()
{
    QTest::addColumn<int>("lineFeeds");
    QTest::addColumn<QString>("firstOfTheLast");
    QTest::newRow("46") << 46 << "line 7";
    QTest::newRow("47") << 47 << "line 8";
    QTest::newRow("1000") << 1000 << "line 961";
}

void TestMessageText::shortensTo47Lines()
{
    QFETCH(const int, lineFeeds);
    QFETCH(const QString, firstOfTheLast);
    const QStringList lines = numberedLines(lineFeeds);

    const QStringList shown = shortenMessage(lines.join('\n')).split('\n');
    QCOMPARE(shown.size(), 47);
    QCOMPARE(shown.mid(0, 4), (QStringList{"line 1", "line 2", "line 3", "line 4"}));
    QCOMPARE(shown.at(4), QString("[...SNIP (Message dialog size exceeded) ...]"));
    QCOMPARE(shown.at(5), firstOfTheLast);
    QCOMPARE(shown.mid(5, 41), lines.mid(lineFeeds + 1 - 41));
    QCOMPARE(shown.at(46), QString(" "));
}

void TestMessageText::keepsEmptyLines()
{
    const QStringList shown = shortenMessage(QString(50, '\n')).split('\n');
    QStringList expected;
    for (int line = 0; line < 45; ++line)
        expected << QString();
    expected.insert(4, "[...SNIP (Message dialog size exceeded) ...]");
    expected << " ";
    QCOMPARE(shown, expected);
}

void TestMessageText::countsLineFeedsOnly()
{
    const QString text = QString(100, '\r') + QString(5000, 'x') + QString(100, QChar(0x2028));
    QCOMPARE(shortenMessage(text), text + '\n');
}

void TestMessageText::takesTheFirstLetterInLowerCase_data()
{
    QTest::addColumn<QString>("buttonText");
    QTest::addColumn<QString>("key");
    QTest::newRow("capital") << "Ok"
                             << "o";
    QTest::newRow("small") << "abort"
                           << "a";
    QTest::newRow("after an ampersand") << "&Yes"
                                        << "y";
    QTest::newRow("ampersand further on") << "S&ave"
                                          << "s";
    QTest::newRow("two ampersands") << "&&Yes"
                                    << "&";
    QTest::newRow("digit") << "1 more"
                           << "1";
    QTest::newRow("umlaut") << QStringLiteral("\u00dcber") << QStringLiteral("\u00fc");
    QTest::newRow("capital without a single small one")
        << QStringLiteral("\u0130stanbul") << QStringLiteral("\u0130");
    QTest::newRow("ampersand alone") << "&"
                                     << "";
    QTest::newRow("no text") << ""
                             << "";
}

void TestMessageText::takesTheFirstLetterInLowerCase()
{
    QFETCH(const QString, buttonText);
    QFETCH(const QString, key);
    const ShortcutKeys asFirst = shortcutKeys(buttonText, "#");
    QCOMPARE(asFirst.first, key);
    QCOMPARE(asFirst.second, QString("#"));
    const ShortcutKeys asSecond = shortcutKeys("#", buttonText);
    QCOMPARE(asSecond.first, QString("#"));
    QCOMPARE(asSecond.second, key);
}

void TestMessageText::givesEachButtonItsOwnLetter()
{
    const ShortcutKeys keys = shortcutKeys("Ok", "Abort, do not load file");
    QCOMPARE(keys.first, QString("o"));
    QCOMPARE(keys.second, QString("a"));
}

void TestMessageText::dropsBothLettersWhereTheyAreEqual_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("same capital") << "Ok"
                                  << "Open";
    QTest::newRow("capital and small") << "Ok"
                                       << "open";
    QTest::newRow("one after an ampersand") << "&Ok"
                                            << "Open";
    QTest::newRow("both empty") << ""
                                << "";
}

void TestMessageText::dropsBothLettersWhereTheyAreEqual()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    const ShortcutKeys keys = shortcutKeys(first, second);
    QCOMPARE(keys.first, QString());
    QCOMPARE(keys.second, QString());
}

QTEST_APPLESS_MAIN(TestMessageText)
#include "tst_messagetext.moc"
