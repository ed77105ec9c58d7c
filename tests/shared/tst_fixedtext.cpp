#include "shared/kvtext.h"
#include "tests/shared/capacity.h"

#include <QTest>

#include <limits>

// Every operation is compared with the same operation on a byte array, cut at the capacity.

namespace {

template <class Text>
Text make(const QByteArray& bytes)
{
    Text text;
    text.add(bytes.constData(), bytes.size());
    return text;
}

template <class Text>
QByteArray bytesOf(const Text& text)
{
    return kvToQString(text).toLatin1();
}

template <class Text>
bool isTerminated(const Text& text)
{
    return text.length >= 0 && text.length <= capacity<Text> && text.text[text.length] == 0;
}

/// Texts of length 0, 1, capacity - 1, capacity and capacity + 1 in a pattern without repetition
/// over short distances.
QList<QByteArray> textsAround(int capacity)
{
    QList<QByteArray> texts;
    for (const int length : {0, 1, capacity - 1, capacity, capacity + 1}) {
        QByteArray text;
        for (int i = 0; i < length; ++i)
            text += static_cast<char>('a' + i % 23);
        texts += text;
    }
    return texts;
}

QByteArray replaced(const QByteArray& text, const QByteArray& what, const QByteArray& with,
                    int capacity)
{
    return text.left(capacity).replace(what, with).left(capacity);
}

#define VERIFY_TEXT(actual, expected)                                                              \
    do {                                                                                           \
        const auto& verified = (actual);                                                           \
        QVERIFY(isTerminated(verified));                                                           \
        QCOMPARE(bytesOf(verified), QByteArray(expected));                                         \
    } while (false)

template <class Text>
void construction()
{
    for (const QByteArray& bytes : textsAround(capacity<Text>)) {
        VERIFY_TEXT(Text(bytes.constData()), bytes.left(capacity<Text>));
        Text text(bytes.constData());
        text.clear();
        VERIFY_TEXT(text, "");
        QCOMPARE(int(text.text[0]), 0);
    }
    VERIFY_TEXT(Text(nullptr), "");
}

template <class Text>
void appending()
{
    constexpr int N = capacity<Text>;
    for (const QByteArray& start : textsAround(N)) {
        for (const QByteArray& added : textsAround(N)) {
            const QByteArray expected = (start.left(N) + added).left(N);
            Text text = make<Text>(start);
            text.add(added.constData());
            VERIFY_TEXT(text, expected);
            text = make<Text>(start);
            text.add(make<Text>(added));
            VERIFY_TEXT(text, expected);
        }
        Text text = make<Text>(start);
        text.addChar('!');
        VERIFY_TEXT(text, (start.left(N) + '!').left(N));
        const Text before = text;
        text.add("ignored", -1);
        QVERIFY(text.isEqual(before));
    }
}

template <class Text>
void settingTheLength()
{
    constexpr int N = capacity<Text>;
    for (const QByteArray& bytes : textsAround(N)) {
        for (const int length : {-1, 0, 1, N - 1, N, N + 1}) {
            const int expected = qBound(0, length, N);
            Text text = make<Text>(bytes);
            text.setLength(static_cast<short>(length));
            QVERIFY(isTerminated(text));
            QCOMPARE(int(text.length), expected);
            QCOMPARE(bytesOf(text).left(bytes.size()), bytes.left(expected));
        }
    }
}

template <class Text>
void comparing()
{
    constexpr int N = capacity<Text>;
    for (const QByteArray& bytes : textsAround(N)) {
        const QByteArray held = bytes.left(N);
        const Text text = make<Text>(bytes);
        QCOMPARE(text.isEmpty(), held.isEmpty());
        QCOMPARE(text.hasData(), !held.isEmpty());
        QVERIFY(text.endsWith("") && text.endsWith(held.constData()));
        QVERIFY(!text.endsWith((held + 'x').constData()));
        QVERIFY(!text.endsWith("A") && !text.contains("A") && !text.contains(""));
        QCOMPARE(text.contains(held.constData()), !held.isEmpty());
        for (const QByteArray& other : textsAround(N)) {
            QCOMPARE(text.isEqual(make<Text>(other)), held == other.left(N));
            QCOMPARE(text.isEqual(other.constData()), held == other);
        }
        if (!held.isEmpty()) {
            QByteArray upper = held;
            upper[0] = 'A';
            QVERIFY(!text.isEqual(make<Text>(upper)));
            QVERIFY(text.endsWith(held.right(1).constData()));
        }
    }
}

template <class Text>
void replacing()
{
    constexpr int N = capacity<Text>;
    const QByteArray withs[] = {"", "Z", "ZZZ", QByteArray(N, 'Z')};
    for (const QByteArray& bytes : textsAround(N)) {
        const QByteArray whats[] = {"a", "ab", "w", "absent", bytes.right(3), QByteArray("a?")};
        for (const QByteArray& what : whats) {
            for (const QByteArray& with : withs) {
                const QByteArray heldWhat = what.left(N);
                Text text = make<Text>(bytes);
                text.replace(make<Text>(what), make<Text>(with));
                VERIFY_TEXT(text, heldWhat.isEmpty() ? bytes.left(N)
                                                     : replaced(bytes, heldWhat, with, N));
            }
            Text text = make<Text>(bytes);
            text.remove(make<Text>(what));
            VERIFY_TEXT(text,
                        what.isEmpty() ? bytes.left(N) : replaced(bytes, what.left(N), "", N));
        }
    }
    Text overlapping("aaa");
    overlapping.replace(Text("aa"), Text("a"));
    VERIFY_TEXT(overlapping, "aa");
    Text itself("ab");
    itself.replace(itself, itself);
    VERIFY_TEXT(itself, "ab");
}

template <class Text>
void everyLatin1Character()
{
    for (int code = 0; code < 256; ++code) {
        const QByteArray single(1, static_cast<char>(code));
        Text text = make<Text>("x" + single);
        text.addChar(static_cast<std::remove_reference_t<decltype(text.text[0])>>(code));
        VERIFY_TEXT(text, "x" + single + single);
        QVERIFY(text.isEqual(make<Text>("x" + single + single)));
        QVERIFY(!text.isEqual(make<Text>("x" + single + static_cast<char>(code ^ 1))));
        QCOMPARE(text.endsWith(single.constData()), true);
        QCOMPARE(text.contains(single.constData()), code != 0);
        text.replace(make<Text>(single), make<Text>("<" + single + ">"));
        QByteArray expected("x" + single + single);
        VERIFY_TEXT(text, expected.replace(single, QByteArray("<" + single + ">")));
        text.remove(make<Text>(single));
        VERIFY_TEXT(text, QByteArray(expected).replace(single, ""));
    }
}

template <class Text>
void allSharedOperations()
{
    construction<Text>();
    appending<Text>();
    settingTheLength<Text>();
    comparing<Text>();
    replacing<Text>();
    everyLatin1Character<Text>();
}

template <int N>
void addingNumbers()
{
    using Text = _kvString8_allSize<N>;
    const qint64 numbers[] = {0,
                              7,
                              -7,
                              10,
                              std::numeric_limits<int>::max(),
                              std::numeric_limits<int>::min(),
                              std::numeric_limits<qint64>::max(),
                              std::numeric_limits<qint64>::min()};
    for (const QByteArray& start : textsAround(N)) {
        for (const long long number : numbers) {
            const QByteArray digits = QByteArray::number(number);
            Text text = make<Text>(start);
            text.addNr(number);
            VERIFY_TEXT(text, (start.left(N) + digits).left(N));
            text = make<Text>(start);
            text.addNr(static_cast<int>(number));
            VERIFY_TEXT(text,
                        (start.left(N) + QByteArray::number(static_cast<int>(number))).left(N));
            for (const int width : {0, 1, 2, 5, N - 1, N, N + 1, 255}) {
                const auto narrow = static_cast<unsigned char>(width);
                text = make<Text>(start);
                text.addNr(number, narrow);
                VERIFY_TEXT(text, (start.left(N) + digits.rightJustified(narrow, ' ')).left(N));
            }
        }
    }
}

template <class Text>
void prefixes()
{
    for (const QByteArray& bytes : textsAround(capacity<Text>)) {
        const QByteArray held = bytes.left(capacity<Text>);
        const Text text = make<Text>(bytes);
        QVERIFY(text.startsWith("") && text.startsWith(held.constData()));
        QVERIFY(!text.startsWith((held + 'x').constData()));
        QVERIFY(!text.startsWith("A"));
    }
}

} // namespace

// Checked by the compiler: these operations need no run at all.
constexpr bool holdsTheSmallestNumber()
{
    _kvString8_allSize<15> text;
    text.addNr(std::numeric_limits<int>::min());
    return text.isEqual("-2147483648") && text.length == 11;
}
static_assert(holdsTheSmallestNumber());

constexpr bool cutsAtTheSemicolon()
{
    _kvString<1000> text("a;b");
    const auto left = text.leftNCut(';', false);
    return left.isEqual("a") && text.isEqual("b");
}
static_assert(cutsAtTheSemicolon());

class TestFixedText : public QObject
{
    Q_OBJECT

private slots:
    void sharedOperationsAtEveryCapacity()
    {
        allSharedOperations<_kvString8_allSize<15>>();
        allSharedOperations<_kvString8_allSize<20>>();
        allSharedOperations<_kvString8_allSize<50>>();
        allSharedOperations<_kvString8_allSize<250>>();
        allSharedOperations<_kvString8_allSize<500>>();
        allSharedOperations<_kvString8_allSize<5000>>();
        allSharedOperations<_kvString<500>>();
        allSharedOperations<_kvString<1000>>();
    }

    void clearingAWideTextClearsItsReserveToo()
    {
        _kvString<500> text("a");
        text.reserved = 7;
        text.clear();
        QCOMPARE(int(text.reserved), 0);
    }

    void numbersAppendInDecimalAndPadOnTheLeft()
    {
        addingNumbers<15>();
        addingNumbers<20>();
        addingNumbers<50>();
        addingNumbers<250>();
        addingNumbers<500>();
        addingNumbers<5000>();
    }

    void prefixesAreExact()
    {
        prefixes<_kvString8_allSize<15>>();
        prefixes<_kvString8_allSize<5000>>();
        prefixes<_kvString<500>>();
        prefixes<_kvString<1000>>();
    }

    void smallestIntFitsIntoFifteenCharacters()
    {
        _kvString8_allSize<15> text;
        text.addNr(std::numeric_limits<int>::min());
        QCOMPARE(bytesOf(text), QByteArray("-2147483648"));
        QCOMPARE(int(text.length), 11);
    }

    void appendingToAFullTextChangesNothing()
    {
        _kvString8_allSize<15> text("123456789012345");
        text.add("6");
        text.addNr(7);
        text.addChar('8');
        VERIFY_TEXT(text, "123456789012345");
    }

    void leftNCutReturnsWhatIsBeforeTheCharacter()
    {
        for (const QByteArray& bytes : textsAround(1000)) {
            auto text = make<_kvString<1000>>(bytes);
            VERIFY_TEXT(text.leftNCut(';', false), bytes.left(1000));
            VERIFY_TEXT(text, "");
            text = make<_kvString<1000>>(";" + bytes);
            VERIFY_TEXT(text.leftNCut(';', true), "");
            VERIFY_TEXT(text, bytes.left(999));
        }
        auto text = make<_kvString<1000>>("a;b;;c");
        VERIFY_TEXT(text.leftNCut(';', false), "a");
        VERIFY_TEXT(text.leftNCut(';', false), "b");
        VERIFY_TEXT(text.leftNCut(';', false), "");
        VERIFY_TEXT(text.leftNCut(';', false), "c");
        VERIFY_TEXT(text.leftNCut(';', false), "");
    }

    void trimRemovesAsciiWhiteSpaceOnly()
    {
        for (int code = 0; code < 256; ++code) {
            const QByteArray single(1, static_cast<char>(code));
            const bool blank = QByteArray(" \t\r\n\v\f").contains(static_cast<char>(code));
            auto text = make<_kvString<1000>>(single + single + "a" + single + "b" + single);
            text.trim();
            VERIFY_TEXT(text,
                        blank ? "a" + single + "b" : single + single + "a" + single + "b" + single);
        }
        for (const int length : {0, 1, 999, 1000}) {
            auto text = make<_kvString<1000>>(QByteArray(length, ' '));
            text.trim();
            VERIFY_TEXT(text, "");
        }
        auto full = make<_kvString<1000>>("\r" + QByteArray(998, 'x') + "\n");
        full.trim();
        VERIFY_TEXT(full, QByteArray(998, 'x'));
    }

    void indexOfFindsTheFirstFromAPosition()
    {
        const auto text = make<_kvString<500>>(QByteArray(499, 'a') + ".");
        QCOMPARE(text.indexOf('.', 0), 499);
        QCOMPARE(text.indexOf('.', 499), 499);
        QCOMPARE(text.indexOf('.', 500), -1);
        QCOMPARE(text.indexOf('a', -5), 0);
        QCOMPARE(text.indexOf('a', 7), 7);
        QCOMPARE(text.indexOf('b', 0), -1);
        QCOMPARE(_kvString<500>().indexOf('a', 0), -1);
    }

    void startsWithLooksAtTheFirstCharacter()
    {
        const _kvString<1000> text("#x");
        QVERIFY(text.startsWith('#'));
        QVERIFY(!text.startsWith('x'));
        QVERIFY(!_kvString<1000>().startsWith(ushort(0)));
    }

    void removeAtAPosition()
    {
        struct Row
        {
            int pos, count;
            const char* left;
        };
        for (const Row& row : {Row{0, 1, "bcde"}, Row{4, 1, "abcd"}, Row{1, 3, "ae"},
                               Row{2, 99, "ab"}, Row{2, 4, "ab"}, Row{0, 5, ""}, Row{5, 1, "abcde"},
                               Row{-1, 2, "abcde"}, Row{1, 0, "abcde"}, Row{1, -1, "abcde"}}) {
            _kvString<1000> text("abcde");
            text.remove(row.pos, row.count);
            VERIFY_TEXT(text, row.left);
        }
        auto full = make<_kvString<1000>>(QByteArray(1001, 'x'));
        full.remove(0, 1);
        VERIFY_TEXT(full, QByteArray(999, 'x'));
    }

    void signExtendedBytesComeBackUnchanged()
    {
        for (int code = 0; code < 256; ++code) {
            const char byte = static_cast<char>(code);
            _kvString<500> text;
            text.addSignExtended(&byte, 1);
            QCOMPARE(int(text.text[0]), code < 128 ? code : 0xFF00 + code);
            QCOMPARE(kvToQString(text), QString(QChar(code)));
            VERIFY_TEXT(text, QByteArray(1, byte));
        }
        _kvString<500> full;
        full.addSignExtended(QByteArray(501, '\xFC').constData(), 501);
        VERIFY_TEXT(full, QByteArray(500, '\xFC'));
    }

    void otherCodeUnitsStayAsTheyAre()
    {
        _kvString<500> text;
        for (const int unit : {0x20AC, 0xFF7F, 0xFF80, 0xFFFF})
            text.addChar(static_cast<unsigned short>(unit));
        const ushort expected[] = {0x20AC, 0xFF7F, 0x80, 0xFF, 0};
        QCOMPARE(kvToQString(text), QString::fromUtf16(expected));
    }

    void textsAreCutAndConvertedToLatin1()
    {
        for (const int length : {0, 1, 499, 500, 501, 600}) {
            const QString text(length, QChar(0xFC));
            VERIFY_TEXT(kvToString8<500>(text), QByteArray(qMin(length, 500), '\xFC'));
            VERIFY_TEXT(kvToString16<500>(text), QByteArray(qMin(length, 500), '\xFC'));
        }
        VERIFY_TEXT(kvToString8<500>(QString::fromUtf8("a€b")), "a?b");
        QCOMPARE(int(kvToString16<500>(QString::fromUtf8("€")).text[0]), 0x20AC);
    }

    void charLenCountsUpToTheZero()
    {
        const unsigned short text[] = {'a', 0xFFFC, 0, 'b', 0};
        QCOMPARE(kvCharLen(text), 2);
        QCOMPARE(kvCharLen(text + 2), 0);
    }
};

QTEST_APPLESS_MAIN(TestFixedText)
#include "tst_fixedtext.moc"
