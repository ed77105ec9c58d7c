#include "shared/kvfileglobal.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

#include <cstring>
#include <new>

namespace {

/// Where the settings lie; the class has virtual operations, so the addresses are asked for.
template <class Member>
std::ptrdiff_t offsetOf(const _fileGLobal& object, const Member& member)
{
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object);
}

/// A pointer to a virtual member function holds one more than its offset in the virtual table.
template <class Function>
std::ptrdiff_t virtualSlot(Function function)
{
    std::ptrdiff_t code = 0;
    std::memcpy(&code, &function, sizeof code);
    return (code - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

} // namespace

static_assert(std::is_polymorphic_v<_fileGLobal> && !std::has_virtual_destructor_v<_fileGLobal>);
static_assert(std::is_same_v<decltype(_fileGLobal::ioChunkWait), std::uint16_t>);
static_assert(std::is_same_v<decltype(_fileGLobal::fileSize), std::int32_t>);

class TestFileGlobal : public QObject
{
    Q_OBJECT

private slots:
    void membersStandInTheirOrder()
    {
        const _fileGLobal io;
        const std::ptrdiff_t offsets[] = {
            offsetOf(io, io.errorText),   offsetOf(io, io.sysBufferMode),
            offsetOf(io, io.chunkWait),   offsetOf(io, io.chunkSize),
            offsetOf(io, io.preallocate), offsetOf(io, io.flush),
            offsetOf(io, io.cacheMode),   offsetOf(io, io.fileSize),
            offsetOf(io, io.unused),      offsetOf(io, io.ioChunkWait),
            offsetOf(io, io.generation),  offsetOf(io, io.ioBufferSize),
            offsetOf(io, io.timer)};
        QVERIFY(std::is_sorted(std::begin(offsets), std::end(offsets)));
        QCOMPARE(offsets[0], static_cast<std::ptrdiff_t>(sizeof(void*)));
    }

    void hasTwoVirtualOperationsInTheirOrder()
    {
        QCOMPARE(virtualSlot(&_fileGLobal::preallocateFile), std::ptrdiff_t(0));
        QCOMPARE(virtualSlot(&_fileGLobal::clearInvalidSettings), std::ptrdiff_t(1));
    }

    void constructorSetsItsDefaults()
    {
        alignas(_fileGLobal) unsigned char memory[sizeof(_fileGLobal)];
        std::memset(memory, 0xAA, sizeof memory);
        auto* io = new (memory) _fileGLobal;
        QVERIFY(io->errorText.isEmpty());
        QCOMPARE(io->sysBufferMode, -1);
        QCOMPARE(io->chunkWait, 0);
        QCOMPARE(io->chunkSize, 0);
        QVERIFY(!io->preallocate && !io->flush);
        QCOMPARE(io->ioChunkWait, std::uint16_t(0));
        QCOMPARE(io->generation, std::int64_t(1));
        QCOMPARE(io->ioBufferSize, 1048576);
        io->_fileGLobal::~_fileGLobal();
    }

    void blockIsZeroedWithItsGaps()
    {
        alignas(_fileGLobal) unsigned char memory[sizeof(_fileGLobal)];
        std::memset(memory, 0xAA, sizeof memory);
        auto* io = new (memory) _fileGLobal;
        const auto start = offsetOf(*io, io->ioChunkWait);
        const auto end = offsetOf(*io, io->timer) + static_cast<std::ptrdiff_t>(sizeof io->timer);
        QByteArray block(reinterpret_cast<const char*>(memory) + start, int(end - start));
        const auto blank = [&](std::ptrdiff_t offset, std::size_t size) {
            block.replace(int(offset - start), int(size), QByteArray(int(size), '\0'));
        };
        blank(offsetOf(*io, io->generation), sizeof io->generation);
        blank(offsetOf(*io, io->ioBufferSize), sizeof io->ioBufferSize);
        QCOMPARE(block, QByteArray(int(end - start), '\0'));
        io->_fileGLobal::~_fileGLobal();
    }

    void baseSupportsNoPreallocation()
    {
        _fileGLobal io;
        QVERIFY(!io.preallocateFile());
        QVERIFY(io.errorText.isEqual("ERROR: Preallocation not supported!"));
        io.clearInvalidSettings();
        QVERIFY(io.errorText.isEqual("ERROR: clearInvalidSettings not supported!"));
    }

    void errorTextRunsItsPartsTogetherAndIsCut()
    {
        _fileGLobal io;
        using Text = _kvString8_allSize<500>;
        io.setErrorText(Text("a"), Text("b"), Text("c"), Text("d"), Text("e"));
        QVERIFY(io.errorText.isEqual("ERROR: abcde"));
        for (const int length : {492, 493, 494, 500}) {
            const QByteArray text(length, 'x');
            io.setErrorText(Text(text.constData()), Text("yz"));
            QCOMPARE(kvToQString(io.errorText).toLatin1(), ("ERROR: " + text + "yz").left(500));
            QCOMPARE(int(io.errorText.text[500]), 0);
        }
    }

    void errorTextMayHoldWhatItHeldBefore()
    {
        _fileGLobal io;
        io.setErrorText(_kvString8_allSize<500>("a"));
        io.setErrorText(io.errorText, io.errorText);
        QCOMPARE(kvToQString(io.errorText), QStringLiteral("ERROR: ERROR: aERROR: a"));
    }

    void timeTextSortsAndIsSafeInFileNames()
    {
        const QString before = QDateTime::currentDateTime().toString(Qt::ISODate);
        const QString now = _kvTime(true).asStringFileName_TruncSec();
        const QString after = QDateTime::currentDateTime().toString(Qt::ISODate);
        QVERIFY2(
            QRegularExpression("^\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d-\\d\\d$").match(now).hasMatch(),
            qPrintable(now));
        const QString iso = now.left(10) + 'T' + now.mid(11).replace('-', ':');
        QVERIFY2(before <= iso && iso <= after, qPrintable(iso));
    }

    void timeWithoutNowIsTheStartOf1970()
    {
        qputenv("TZ", "UTC");
        tzset();
        QCOMPARE(_kvTime(false).asStringFileName_TruncSec(), QStringLiteral("1970-01-01_00-00-00"));
    }
};

QTEST_APPLESS_MAIN(TestFileGlobal)
#include "tst_fileglobal.moc"
