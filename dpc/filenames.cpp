#include "dpc/filenames.h"

#include <QTextCodec>

#include <algorithm>

namespace {

constexpr uint foreignByte = 0xDC00; ///< a byte stands beyond it

/// How many bytes of a valid sequence of UTF-8 begin a text; 0 if none do.
int validLength(const uchar* bytes, int size)
{
    const uint first = bytes[0];
    const int length = first < 0x80                     ? 1
                       : first >= 0xC2 && first <= 0xDF ? 2
                       : first >= 0xE0 && first <= 0xEF ? 3
                       : first >= 0xF0 && first <= 0xF4 ? 4
                                                        : 0;
    if (length == 0 || length > size)
        return 0;
    for (int i = 1; i < length; ++i) {
        if ((bytes[i] & 0xC0U) != 0x80)
            return 0;
    }
    // Longer than needed, a surrogate, or beyond the last character.
    const uint second = length > 1 ? bytes[1] : 0;
    const bool isWrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                         (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isWrong ? 0 : length;
}

bool isForeign(QChar unit)
{
    return unit.unicode() >= foreignByte + 0x80 && unit.unicode() <= foreignByte + 0xFF;
}

class FileNameCodec : public QTextCodec
{
public:
    QByteArray name() const override { return "UTF-8 with foreign bytes"; }
    int mibEnum() const override { return -1; }

protected:
    QString convertToUnicode(const char* text, int size, ConverterState* /*state*/) const override
    {
        const auto* const bytes = reinterpret_cast<const uchar*>(text);
        QString result;
        for (int i = 0; i < size;) {
            const int length = validLength(bytes + i, size - i);
            if (length == 0)
                result += QChar(foreignByte + bytes[i]);
            else
                result += QString::fromUtf8(text + i, length);
            i += std::max(length, 1);
        }
        return result;
    }

    QByteArray convertFromUnicode(const QChar* text, int size,
                                  ConverterState* /*state*/) const override
    {
        QByteArray result;
        int written = 0;
        for (int i = 0; i < size; ++i) {
            const bool isSecondOfPair = i > 0 && text[i - 1].isHighSurrogate();
            if (!isForeign(text[i]) || isSecondOfPair)
                continue;
            result += QString::fromRawData(text + written, i - written).toUtf8();
            result += static_cast<char>(text[i].unicode() - foreignByte);
            written = i + 1;
        }
        return result + QString::fromRawData(text + written, size - written).toUtf8();
    }
};

} // namespace

void keepForeignBytesInFileNames()
{
    constexpr int mibOfUtf8 = 106;
    if (QTextCodec::codecForLocale()->mibEnum() == mibOfUtf8)
        // Qt owns every codec.
        QTextCodec::setCodecForLocale(new FileNameCodec);
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): see above
}
