#include "check/text.h"

#include <QTest>

namespace {

const char* const words[] = {"Posix", "System", "flush", "ab"};

QString hintFor(const std::string& word)
{
    return QString::fromStdString(didYouMean(closest(word, words)));
}

} // namespace

/// The pieces of which messages are made.
class TestText : public QObject
{
    Q_OBJECT

private slots:
    void hintIsTheClosestWord_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("meant");
        const auto row = [](const char* word, const char* meant) {
            QTest::newRow(word) << QString(word) << QString(meant);
        };
        row("Posix", "Posix");
        row("POSIX", "Posix");
        row("Posx", "Posix");
        row("Posixx", "Posix");
        row("Pozix", "Posix");
        row("Posi", "Posix");
        row("osix", "Posix");
        row("Psoix", "Posix");
        row("Pzzix", "Posix");
        row("Pzzzx", "");
        row("Pozixyz", "");
        row("flsh", "flush");
        row("flhsu", "flush");
        row("SYSTEN", "System");
        // Short words are close to everything.
        row("ab", "ab");
        row("ac", "");
        row("abc", "ab");
        row("abcd", "");
        row("a", "");
        row("", "");
        row("Po", "");
        row("Pos", "");
        row("Posz", "");
    }

    void hintIsTheClosestWord()
    {
        QFETCH(const QString, word);
        QFETCH(const QString, meant);
        const char* const found = closest(word.toStdString(), words);
        QCOMPARE(QString(found), meant);
        QCOMPARE(hintFor(word.toStdString()),
                 meant.isEmpty() ? QString() : " (did you mean " + meant + "?)");
    }

    void nearerWordWinsAndThenTheFirst()
    {
        const char* const candidates[] = {"abcdxx", "abcdex", "abcdey"};
        QCOMPARE(QString(closest("abcdef", candidates)), QString("abcdex"));
        QVERIFY(closest("abcdef", nullptr, 0) == nullptr);
    }

    void longWordsGetNoHint()
    {
        const std::string thirty(30, 'x');
        const char* const candidates[] = {thirty.c_str()};
        QVERIFY(closest(thirty, candidates) == candidates[0]);
        QVERIFY(closest(thirty + 'x', candidates) == nullptr);
    }

    void oneIsNotMany()
    {
        QCOMPARE(QString::fromStdString(counted(0, "task")), QString("0 tasks"));
        QCOMPARE(QString::fromStdString(counted(1, "task")), QString("1 task"));
        QCOMPARE(QString::fromStdString(counted(2, "task")), QString("2 tasks"));
        QCOMPARE(QString::fromStdString(counted(-1, "task")), QString("-1 tasks"));
        QCOMPARE(QString::fromStdString(counted(4294967297LL, "byte")),
                 QString("4294967297 bytes"));
    }

    void onlyWhatIsSafeIsShownAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char* name, uint code, const char* shown) {
            const QString text = code > 0xFFFF ? QString(QChar(QChar::highSurrogate(code))) +
                                                     QChar(QChar::lowSurrogate(code))
                                               : QString(QChar(code));
            QTest::newRow(name) << text << QString::fromUtf8(shown);
        };
        row("line feed", 0x0A, "\\x0A");
        row("escape", 0x1B, "\\x1B");
        row("last control", 0x1F, "\\x1F");
        row("blank", 0x20, " ");
        row("tilde", 0x7E, "~");
        row("delete", 0x7F, "\\x7F");
        row("first of C1", 0x80, "\\x80");
        row("last of C1", 0x9F, "\\x9F");
        row("no-break space", 0xA0, "\xC2\xA0");
        row("soft hyphen", 0xAD, "\\xAD");
        row("umlaut", 0xFC, "\xC3\xBC");
        row("Arabic mark", 0x61C, "\\x61C");
        row("zero width", 0x200B, "\\x200B");
        row("line separator", 0x2028, "\\x2028");
        row("paragraph separator", 0x2029, "\\x2029");
        row("right to left", 0x202E, "\\x202E");
        row("byte order mark", 0xFEFF, "\\xFEFF");
        row("not assigned", 0xFFFF, "\\xFFFF");
        row("beyond 16 bits", 0x1F600, "\xF0\x9F\x98\x80");
        row("tag beyond 16 bits", 0xE0041, "\\xE0041");
    }

    void onlyWhatIsSafeIsShownAsItIs()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, shown);
        QCOMPARE(QString::fromStdString(printable(text)), shown);
        QCOMPARE(QString::fromStdString(printable("a" + text + "b")), "a" + shown + "b");
    }

    void loneSurrogatesAreBytesOrCodes()
    {
        const auto shown = [](std::initializer_list<ushort> units) {
            return QString::fromStdString(printable(
                QString::fromUtf16(std::vector<ushort>(units).data(), int(units.size()))));
        };
        QCOMPARE(shown({0xDC80}), QString("\\x80"));
        QCOMPARE(shown({0xDCFF}), QString("\\xFF"));
        QCOMPARE(shown({0xDC7F}), QString("\\xDC7F"));
        QCOMPARE(shown({0xDD00}), QString("\\xDD00"));
        QCOMPARE(shown({0xD83D}), QString("\\xD83D"));
        QCOMPARE(shown({0xD83D, 'a'}), QString("\\xD83Da"));
        QCOMPARE(shown({0xD83D, 0xD83D}), QString("\\xD83D\\xD83D"));
    }

    void longTextsAreShortenedInTheMiddle()
    {
        const auto shown = [](int length) {
            return QString::fromStdString(quoted('<' + QString(length - 2, 'x') + '>'));
        };
        QCOMPARE(shown(160), "'<" + QString(158, 'x') + ">'");
        QCOMPARE(shown(161), "'<" + QString(79, 'x') + "..." + QString(79, 'x') + ">'");
        QCOMPARE(QString::fromStdString(quoted(QByteArray("\xFC\n"))),
                 QString::fromUtf8("'\xC3\xBC\\x0A'"));
    }

    void utf8IsKnownByItsBytes_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isUtf8");
        const auto row = [](const char* bytes, bool isUtf8) {
            QTest::newRow(QByteArray(bytes).toHex().constData()) << QByteArray(bytes) << isUtf8;
        };
        row("", false);
        row("plain", false);
        row("a\x7F", false);
        // One more byte: from C2 to DF.
        row("\xC1\x80", false);
        row("\xC2\x80", true);
        row("\xC2\xBF", true);
        row("\xC2\x7F", false);
        row("\xC2\xC0", false);
        row("\xC2", false);
        row("\xC2"
            "a",
            false);
        row("\xDF\xBF", true);
        row("\x80", false);
        row("\xBF\xBF", false);
        row("\xC0\x80", false);
        // Two more: from E0.
        row("\xE0\xA0\x80", true);
        row("\xE0\xA0", false);
        row("\xE0\xA0"
            "a",
            false);
        row("\xEF\xBF\xBF", true);
        // Three more: from F0 to F4.
        row("\xF0\x9F\x98\x80", true);
        row("\xF0\x9F\x98", false);
        row("\xF4\x8F\xBF\xBF", true);
        row("\xF5\x80\x80\x80", false);
        row("\xFF\x80\x80\x80", false);
        // All of a text must be UTF-8.
        row("a\xC3\xBC"
            "b\xE2\x82\xAC"
            "c",
            true);
        row("\xC3\xBC\xFC", false);
        row("\xFC\xC3\xBC", false);
        row("\xC3\xBC\x80", false);
    }

    void utf8IsKnownByItsBytes()
    {
        QFETCH(const QByteArray, text);
        QTEST(looksLikeUtf8(text), "isUtf8");
    }

    /// Texts of all lengths, with the letter in all places.
    void utf8IsFoundAnywhere()
    {
        for (int length = 2; length < 20; ++length) {
            for (int place = 0; place + 2 <= length; ++place) {
                QByteArray text(length, 'a');
                QVERIFY(!looksLikeUtf8(text));
                text.replace(place, 2, "\xC3\xBC");
                QVERIFY(looksLikeUtf8(text));
            }
        }
    }

    void variablesAreCountedByTheirBrackets()
    {
        QCOMPARE(maxVariables(""), 0);
        QCOMPARE(maxVariables("[a]/[b"), 2);
        QVERIFY(holds("a[host]b", "[host]") && !holds("a[hosts]b", "[host]"));
        QCOMPARE(QString::fromStdString(utf8(QByteArray("\xFC"))), QString::fromUtf8("\xC3\xBC"));
    }
};

QTEST_APPLESS_MAIN(TestText)
#include "tst_text.moc"
