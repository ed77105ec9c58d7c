#include "model/testtask.h"
#include "shared/kvfileglobal.h"
#include "tests/shared/capacity.h"

#include <QTest>

#include <limits>
#include <type_traits>

// The compiler itself proves these: in a constant expression nothing may be read or written outside
// an array, be used before it has a value, overflow, or come from the heap. Each text of a record
// goes through every operation of its kind here, at its capacity too.

namespace {

template <class Text>
constexpr bool isFilledWith(const Text& text, char c)
{
    for (int i = 0; i < text.length; ++i) {
        if (kvdetail::codeUnit(text.text[i]) != kvdetail::codeUnit(c))
            return false;
    }
    return text.length == capacity<Text> && text.text[text.length] == 0;
}

template <class Text>
constexpr Text filled()
{
    Text text;
    while (text.length < capacity<Text>)
        text.addChar('x');
    return text;
}

template <class Text>
constexpr bool staysWithinItsCapacity()
{
    Text text = filled<Text>();
    text.addChar('y');
    text.add("yy");
    text.add("yy", 2);
    text.add(filled<Text>());
    text.setLength(std::numeric_limits<short>::max());
    text.replace(Text("x"), Text("x"));
    return isFilledWith(text, 'x');
}

template <class Text>
constexpr bool growsNoFurtherByReplacing()
{
    Text text = filled<Text>();
    text.replace(Text("x"), Text("zz"));
    return isFilledWith(text, 'z');
}

template <class Text>
constexpr bool losesEverything()
{
    Text removed = filled<Text>();
    removed.remove(Text("x"));
    Text cleared = filled<Text>();
    cleared.clear();
    Text shortened = filled<Text>();
    shortened.setLength(-1);
    return removed.isEmpty() && cleared.isEmpty() && shortened.isEmpty() && removed.text[0] == 0 &&
           cleared.text[0] == 0 && shortened.text[0] == 0 && Text(nullptr).isEmpty();
}

template <class Text>
constexpr bool compares()
{
    const Text text("a\xFC.dpc");
    return text.length == 6 && text.hasData() && text.isEqual("a\xFC.dpc") && !text.isEqual("a") &&
           text.isEqual(Text("a\xFC.dpc")) && !text.isEqual(Text("b\xFC.dpc")) &&
           text.startsWith("a\xFC") && !text.startsWith("a\xFC.dpc2") && text.endsWith(".dpc") &&
           !text.endsWith("xa\xFC.dpc") && text.contains("\xFC.") && !text.contains("") &&
           !text.contains("dpc.");
}

template <class Text>
constexpr bool keepsItsPromises()
{
    return staysWithinItsCapacity<Text>() && growsNoFurtherByReplacing<Text>() &&
           losesEverything<Text>();
}

static_assert(keepsItsPromises<_kvString8_allSize<15>>() && compares<_kvString8_allSize<15>>());
static_assert(keepsItsPromises<_kvString8_allSize<20>>() && compares<_kvString8_allSize<20>>());
static_assert(keepsItsPromises<_kvString8_allSize<50>>() && compares<_kvString8_allSize<50>>());
static_assert(keepsItsPromises<_kvString8_allSize<250>>() && compares<_kvString8_allSize<250>>());
static_assert(keepsItsPromises<_kvString8_allSize<500>>() && compares<_kvString8_allSize<500>>());
// One by one: a compiler takes only so many steps for each.
static_assert(staysWithinItsCapacity<_kvString8_allSize<5000>>());
static_assert(growsNoFurtherByReplacing<_kvString8_allSize<5000>>());
static_assert(losesEverything<_kvString8_allSize<5000>>() && compares<_kvString8_allSize<5000>>());
static_assert(keepsItsPromises<_kvString<500>>() && compares<_kvString<500>>());
static_assert(keepsItsPromises<_kvString<1000>>() && compares<_kvString<1000>>());

template <int N>
constexpr bool writes(long long number, unsigned char width, const char* expected)
{
    _kvString8_allSize<N> text;
    text.addNr(number, width);
    return text.isEqual(expected);
}

constexpr long long smallest = std::numeric_limits<long long>::min();
static_assert(writes<20>(smallest, 0, "-9223372036854775808"));
static_assert(writes<20>(smallest, 255, "                    "));
static_assert(writes<15>(smallest, 0, "-92233720368547"));
static_assert(writes<15>(0, 0, "0") && writes<15>(7, 2, " 7") && writes<15>(-7, 2, "-7"));

constexpr bool wideTextsTakeAndGive()
{
    _kvString<1000> line(" \t a;b\r\n");
    line.trim();
    const _kvString<1000> first = line.leftNCut(';', false);
    const _kvString<1000> rest = line.leftNCut(';', false);
    return first.isEqual("a") && rest.isEqual("b") && line.isEmpty() && first.startsWith('a') &&
           !line.startsWith('a') && first.indexOf('a', -5) == 0 && first.indexOf('a', 1) == -1 &&
           first.indexOf('a', 2000) == -1;
}
static_assert(wideTextsTakeAndGive());

constexpr bool removesWhatIsThere()
{
    _kvString<500> text = filled<_kvString<500>>();
    text.remove(500, 1);
    text.remove(-1, 1);
    text.remove(0, -1);
    const bool isUntouched = isFilledWith(text, 'x');
    text.remove(1, std::numeric_limits<int>::max());
    return isUntouched && text.isEqual("x");
}
static_assert(removesWhatIsThere());

constexpr bool bytesWidenWithAndWithoutSign()
{
    _kvString<500> text("\xFC");
    text.addSignExtended("\xFC"
                         "a",
                         2);
    return text.text[0] == 0xFC && text.text[1] == 0xFFFC && text.text[2] == 'a' &&
           text.text[3] == 0;
}
static_assert(bytesWidenWithAndWithoutSign());

static_assert(kibFromBytes(1535) == 1 && kibFromBytes(-1535) == -1);
static_assert(bytesFromKib(2097151) == 2147482624);
static_assert(bytesFromKib(2097152) == std::numeric_limits<std::int32_t>::min());
static_assert(bytesFromKib(4194304) == 0 && bytesFromKib(-1) == -1024);

// A record can't be made in a constant expression: its settings have a constructor inside the
// library, which leaves two members to their owners and zeroes a block as bytes, and C++17 allows
// neither. The language only shows that it owns nothing, and that copying it can't fail. It is not
// a trivially copyable type, because its settings have virtual operations.
template <class Record>
constexpr bool isAPlainValue()
{
    return std::is_trivially_destructible_v<Record> &&
           std::is_nothrow_copy_constructible_v<Record> &&
           std::is_nothrow_copy_assignable_v<Record> && std::is_nothrow_move_assignable_v<Record>;
}
static_assert(isAPlainValue<TestTask>() && isAPlainValue<_fileGLobal>());
static_assert(std::is_polymorphic_v<_fileGLobal> && !std::has_virtual_destructor_v<_fileGLobal>);
static_assert(std::is_trivially_copyable_v<ResultSlot>);

} // namespace

class TestConstexpr : public QObject
{
    Q_OBJECT

private slots:
    /// Everything above was proven when this file was compiled; code for run time is other code.
    void promisesHoldAtRunTimeToo()
    {
        QVERIFY(keepsItsPromises<_kvString8_allSize<5000>>() && compares<_kvString<1000>>());
        QVERIFY(wideTextsTakeAndGive() && removesWhatIsThere() && bytesWidenWithAndWithoutSign());
    }
};

QTEST_APPLESS_MAIN(TestConstexpr)
#include "tst_constexpr.moc"
