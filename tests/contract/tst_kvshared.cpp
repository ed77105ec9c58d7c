#include "tests/contract/kvshared.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

// Every operation of the library, as a program finds it that knows the interface only.

namespace {

template <int N>
QByteArray bytesOf(const _kvString8_allSize<N>& text)
{
    return {text.text, text.length};
}

template <int N>
QString textOf(const _kvString<N>& text)
{
    return QString::fromUtf16(text.text, text.length);
}

template <int N>
bool canBeCleared()
{
    _kvString8_allSize<N> text;
    text.length = 1;
    text.text[0] = 'x';
    text.clear();
    return text.length == 0 && text.text[0] == 0;
}

template <int N>
bool wideCanBeCleared()
{
    _kvString<N> text;
    text.length = 1;
    text.reserved = 7;
    text.text[0] = 'x';
    text.clear();
    return text.length == 0 && text.reserved == 0 && text.text[0] == 0;
}

/// The operations that both capacities of the wide strings have.
template <int N>
bool wideOperationsWork()
{
    _kvString<N> text("a\xFC");
    text.add(".dpc");
    return !text.isEmpty() && textOf(text) == QString::fromLatin1("a\xFC.dpc") &&
           text.endsWith(".dpc") && text.isEqual(_kvString<N>("a\xFC.dpc"));
}

/// The speed test has classes of its own upon the settings.
class DerivedSettings : public _fileGLobal
{
public:
    bool preallocateFile() override { return true; }
};

} // namespace

class TestKvShared : public QObject
{
    Q_OBJECT

private slots:
    void narrowStrings()
    {
        QVERIFY(canBeCleared<15>() && canBeCleared<20>() && canBeCleared<50>());
        QVERIFY(canBeCleared<250>() && canBeCleared<500>() && canBeCleared<5000>());

        _kvString8_allSize<500> text("/a/b/a");
        QVERIFY(text.hasData() && !text.isEmpty());
        QVERIFY(text.startsWith("/a") && text.endsWith("b/a"));
        text.replace(_kvString8_allSize<500>("a"), _kvString8_allSize<500>("xy"));
        QCOMPARE(bytesOf(text), QByteArray("/xy/b/xy"));
        text.remove(_kvString8_allSize<500>("xy"));
        QVERIFY(text.isEqual(_kvString8_allSize<500>("//b/")));
        text.setLength(2);
        text.addNr(std::numeric_limits<long long>::min());
        QCOMPARE(bytesOf(text), QByteArray("//-9223372036854775808"));
    }

    void numbers()
    {
        _kvString8_allSize<15> number;
        number.addNr(std::numeric_limits<int>::min());
        QCOMPARE(bytesOf(number), QByteArray("-2147483648"));
        _kvString8_allSize<20> wide;
        wide.addNr(std::numeric_limits<long long>::max());
        QCOMPARE(bytesOf(wide), QByteArray("9223372036854775807"));
        wide.clear();
        wide.addNr(1024LL, static_cast<unsigned char>(5));
        QCOMPARE(bytesOf(wide), QByteArray(" 1024"));
    }

    void wideStrings()
    {
        QVERIFY(wideCanBeCleared<500>() && wideCanBeCleared<1000>());
        QVERIFY(wideOperationsWork<500>() && wideOperationsWork<1000>());

        _kvString<500> text("[a].[a]");
        QCOMPARE(text.indexOf('.', 0), 3);
        text.replace(_kvString<500>("[a]"), _kvString<500>("b"));
        text.remove(_kvString<500>("."));
        QCOMPARE(textOf(text), QStringLiteral("bb"));
        text.setLength(1);
        QCOMPARE(kvCharLen(text.text), 1);
    }

    void lines()
    {
        _kvString<1000> line(" #a;b\r");
        line.trim();
        QVERIFY(line.startsWith('#'));
        line.remove(0, 1);
        QCOMPARE(textOf(line.leftNCut(';', false)), QStringLiteral("a"));
        QCOMPARE(textOf(line), QStringLiteral("b"));
    }

    void paths()
    {
        const _kvString8_allSize<500> path("/x/../y/name1.dpc");
        QVERIFY(!isRelativePath(path));
        QCOMPARE(bytesOf(kvConvertPDToOS(path)), bytesOf(path));
        QCOMPARE(kvConvertPDToOS(QStringLiteral("/a")), QStringLiteral("/a"));
        QCOMPARE(kvConvertPDToOS(QStringLiteral("/a"), _kvOS::Windows), QStringLiteral("\\a"));
        QCOMPARE(bytesOf(kvGetDirName(path)), QByteArray("/x/../y/"));
        QCOMPARE(kvGetDirName(QStringLiteral("/y/n.dpc"), '/'), QStringLiteral("/y/"));
        QCOMPARE(kvGetDirNameAutoPD(QStringLiteral("C:\\y\\n.dpc")), QStringLiteral("C:\\y\\"));
        QCOMPARE(kvGetFileNameBase(QStringLiteral("/y/n.dpc"), '/'), QStringLiteral("n"));
        QCOMPARE(bytesOf(kvPathResolve(path)), QByteArray("/y/name1.dpc"));
        QCOMPARE(textOf(kvPathResolve(_kvString<500>("a//b"))), QStringLiteral("a/b"));
        QVERIFY(kvIsDigit('7') && !kvIsDigit('a'));
    }

    void files()
    {
        const QTemporaryDir folder;
        QVERIFY(kvCreateFolder(folder.filePath("new/folder"), true));
        const QByteArray name = folder.filePath("new/folder/file").toLatin1();
        const _kvString<500> file(name.constData());
        QVERIFY(!kvFileExists(file));
        // The capacities of a name and of a text to be written have no constructor from a text.
        _kvString8_allSize<250> logFile;
        QVERIFY(name.size() <= 250);
        std::copy(name.begin(), name.end(), logFile.text);
        logFile.length = static_cast<short>(name.size());
        logFile.text[logFile.length] = 0;
        _kvString8_allSize<5000> text;
        text.text[0] = 'x';
        text.text[1] = 0;
        text.length = 1;
        writeToLogFile(logFile, text, true, false);
        QVERIFY(kvFileExists(file));
        QFile written(QString::fromLatin1(name));
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), QByteArray("x"));
        QVERIFY(bytesOf(kvGetTempDir()).startsWith('/'));
        QCOMPARE(copyFile_chunksize(), 1048576);
    }

    void time()
    {
        QCOMPARE(_kvTime(true).asStringFileName_TruncSec().size(), 19);
        [[maybe_unused]] const kvTimer timer;
    }

    void settings()
    {
        _fileGLobal io;
        QCOMPARE(io.sysBufferMode, -1);
        QCOMPARE(io.ioBufferSize, 1048576);
        QVERIFY(!io.preallocateFile());
        QCOMPARE(bytesOf(io.errorText), QByteArray("ERROR: Preallocation not supported!"));
        io.clearInvalidSettings();
        const _kvString8_allSize<500> empty;
        io.setErrorText(_kvString8_allSize<500>("a"), _kvString8_allSize<500>("b"), empty, empty,
                        empty);
        const _fileGLobal copy = io;
        QCOMPARE(bytesOf(copy.errorText), QByteArray("ERROR: ab"));

        DerivedSettings derived;
        _fileGLobal& base = derived;
        QVERIFY(base.preallocateFile());
        base.clearInvalidSettings();
        QCOMPARE(bytesOf(base.errorText), QByteArray("ERROR: clearInvalidSettings not supported!"));
    }
};

QTEST_APPLESS_MAIN(TestKvShared)
#include "tst_kvshared.moc"
