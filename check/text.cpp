#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int maxQuoteLength = 160;

/// True for what steers a terminal, reorders or ends a line, or cannot be seen.
bool isUnsafe(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

/// A byte of a file name that is not UTF-8 stands as a lone surrogate, see escapeForeignBytes().
uint shownCode(uint character)
{
    constexpr uint firstByte = 0xDC80;
    constexpr uint lastByte = 0xDCFF;
    return character >= firstByte && character <= lastByte ? character - 0xDC00 : character;
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

/// How many letters must be put in, left out or replaced.
int editDistance(const std::string& a, const std::string& b)
{
    std::vector<int> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = static_cast<int>(j);
    for (size_t i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = static_cast<int>(i);
        for (size_t j = 1; j <= b.size(); ++j) {
            const int replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row[b.size()];
}

bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 128;
}

} // namespace

std::string printable(const QString& text)
{
    return safeText(text,
                    [](uint character) { return fmt::format("\\x{:02X}", shownCode(character)); });
}

std::string safeText(const QString& text, const std::function<std::string(uint)>& escape)
{
    std::string result;
    for (int i = 0; i < text.size(); ++i) {
        uint character = text[i].unicode();
        if (character >= ' ' && character <= '~') {
            result += static_cast<char>(character);
            continue;
        }
        int length = 1;
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            character = QChar::surrogateToUcs4(text[i], text[i + 1]);
            length = 2;
        }
        result += isUnsafe(character) ? escape(character) : text.mid(i, length).toStdString();
        i += length - 1;
    }
    return result;
}

std::string quoted(const QString& text)
{
    if (text.size() <= maxQuoteLength)
        return '\'' + printable(text) + '\'';
    constexpr int half = maxQuoteLength / 2;
    return '\'' + printable(text.left(half)) + "..." + printable(text.right(half)) + '\'';
}

std::string quoted(const QByteArray& latin1)
{
    return quoted(QString::fromLatin1(latin1));
}

bool looksLikeUtf8(const QByteArray& text)
{
    // Most lines have no others.
    if (std::all_of(text.begin(), text.end(), isAscii))
        return false;
    const auto isContinuation = [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
    };
    bool found = false;
    for (int i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int more = lead < 0x80    ? 0
                         : lead >= 0xF0 ? 3
                         : lead >= 0xE0 ? 2
                         : lead >= 0xC2 ? 1
                                        : -1;
        if (more < 0 || lead > 0xF4 || i + more >= text.size())
            return false;
        for (int k = 1; k <= more; ++k) {
            if (!isContinuation(text[i + k]))
                return false;
        }
        found = found || more > 0;
        i += more + 1;
    }
    return found;
}

std::string counted(long long count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

const char* closest(const std::string& word, const char* const* candidates, int count)
{
    constexpr int maxLettersOff = 2;
    // A long word is hardly a typing error, and comparing long words is slow.
    if (word.size() > 30)
        return nullptr;
    const char* best = nullptr;
    int bestDistance = maxLettersOff + 1;
    for (int i = 0; i < count; ++i) {
        const int distance = editDistance(lowered(word), lowered(candidates[i]));
        // Short words are close to everything.
        if (distance < bestDistance && distance * 2 < static_cast<int>(word.size())) {
            best = candidates[i];
            bestDistance = distance;
        }
    }
    return best;
}

std::string didYouMean(const char* candidate)
{
    return candidate == nullptr ? std::string() : fmt::format(" (did you mean {}?)", candidate);
}
