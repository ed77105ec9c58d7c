#include "dpc/filenames.h"

#include <QFile>
#include <QTest>
#include <QTextCodec>

#include <clocale>

/// Names of files as bytes and as text. The toolkit's own decoding of UTF-8 says which bytes are
/// letters; every other byte must come back as it was.
class TestFileNames : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void edgesOfUtf8ComeBack_data();
    void edgesOfUtf8ComeBack();
    void foreignBytesAreLoneSurrogates();
    void pairsOfSurrogatesStayLetters();
    void standardUtf8StaysAsItIs();

private:
    QByteArray there(const QByteArray& name) const { return QFile::encodeName(decoded(name)); }
    QString decoded(const QByteArray& name) const { return QFile::decodeName(name); }
};

void TestFileNames::initTestCase()
{
    QVERIFY(std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr);
    keepForeignBytesInFileNames();
}

void TestFileNames::edgesOfUtf8ComeBack_data()
{
    QTest::addColumn<QByteArray>("first");
    for (const int byte : {0x41, 0x7F, 0x80, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1,
                           0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF})
        QTest::newRow(QByteArray::number(byte, 16)) << QByteArray(1, char(byte));
}

/// All texts of up to four bytes at the edges of what a lead byte allows.
void TestFileNames::edgesOfUtf8ComeBack()
{
    QFETCH(QByteArray, first);
    const QByteArray next = "\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2";
    QByteArrayList names = {first};
    for (int begin = 0, length = 1; length < 4; ++length) {
        const int end = names.size();
        for (; begin < end; ++begin) {
            for (const char byte : next)
                names += names[begin] + byte;
        }
    }
    for (const QByteArray& name : names) {
        QVERIFY2(there(name) == name, name.toHex());
        QVERIFY2(there('a' + name + 'z') == 'a' + name + 'z', name.toHex());
        const QString text = QString::fromUtf8(name);
        const bool isUtf8 = text.toUtf8() == name && !text.contains(QChar::ReplacementCharacter);
        QCOMPARE(decoded(name) == text, isUtf8);
    }
}

void TestFileNames::foreignBytesAreLoneSurrogates()
{
    QCOMPARE(decoded("pr\xFC"
                     "fung\x80"),
             QString("pr") + QChar(0xDCFC) + "fung" + QChar(0xDC80));
    // Half a letter at the end.
    QCOMPARE(decoded("\xE2\x82"), QString(QChar(0xDCE2)) + QChar(0xDC82));
    // No byte stands for these.
    for (const ushort unit : {0xDC7F, 0xDD00})
        QVERIFY(decoded(QFile::encodeName(QString(QChar(unit)))) != QString(QChar(unit)));
}

void TestFileNames::pairsOfSurrogatesStayLetters()
{
    // U+100FC, whose second half would stand for a byte if it were alone.
    const QByteArray letter = "\xF0\x90\x83\xBC";
    QCOMPARE(QString::fromUtf8(letter)[1].unicode(), ushort(0xDCFC));
    QCOMPARE(there(letter), letter);
    QCOMPARE(there(letter + '\xFC'), letter + '\xFC');
}

/// Nobody who asks for UTF-8, by its name or its number, gets the decoder of file names.
void TestFileNames::standardUtf8StaysAsItIs()
{
    QTextCodec* const installed = QTextCodec::codecForLocale();
    QCOMPARE(installed->name(), QByteArray("UTF-8 with foreign bytes"));
    QCOMPARE(QTextCodec::codecForName(installed->name()), installed);
    QCOMPARE(installed->mibEnum(), -1);
    constexpr int mibOfUtf8 = 106;
    for (QTextCodec* const utf8 :
         {QTextCodec::codecForName("UTF-8"), QTextCodec::codecForMib(mibOfUtf8)}) {
        QCOMPARE(utf8->mibEnum(), mibOfUtf8);
        QCOMPARE(utf8->toUnicode("\xFC"), QString(QChar::ReplacementCharacter));
    }
    // It is put in place of UTF-8 alone, so once.
    keepForeignBytesInFileNames();
    QCOMPARE(QTextCodec::codecForLocale(), installed);
}

QTEST_APPLESS_MAIN(TestFileNames)
#include "tst_filenames.moc"
