#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int longestQuote = 160;

bool isControl(QChar c)
{
    // Besides the control characters, those that reorder or end a line.
    return c.unicode() < 32 || (c.unicode() >= 127 && c.unicode() < 160) ||
           (c.unicode() >= 0x2028 && c.unicode() <= 0x202E) ||
           (c.unicode() >= 0x2066 && c.unicode() <= 0x2069);
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

} // namespace

std::string printable(const QString& text)
{
    std::string result;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (isControl(c)) {
            result += fmt::format("\\x{:02X}", c.unicode());
        } else if (c.isHighSurrogate() && i + 1 < text.size()) {
            result += text.mid(i, 2).toStdString();
            ++i;
        } else {
            result += QString(c).toStdString();
        }
    }
    return result;
}

std::string quoted(const QString& text)
{
    if (text.size() <= longestQuote)
        return '\'' + printable(text) + '\'';
    constexpr int half = longestQuote / 2;
    return '\'' + printable(text.left(half)) + "..." + printable(text.right(half)) + '\'';
}

std::string quoted(const QByteArray& latin1)
{
    return quoted(QString::fromLatin1(latin1));
}

std::string counted(long long count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

const char* closest(const std::string& word, const char* const* candidates, int count)
{
    constexpr int mostLettersOff = 2;
    // Long words are no slips of the finger, and comparing them costs.
    if (word.size() > 30)
        return nullptr;
    const char* best = nullptr;
    int bestDistance = mostLettersOff + 1;
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
