#include "dialogs/messagetext.h"

#include <QStringList>

namespace {

constexpr int lineFeedsToShorten = 46;
constexpr int linesKeptAtStart = 4;
constexpr int linesKeptAtEnd = 41;

QString shortcutKey(const QString& buttonText)
{
    const int position = buttonText.startsWith(QLatin1Char('&')) ? 1 : 0;
    if (position >= buttonText.size())
        return {};
    // QChar's own conversion: QString's turns some capitals into two characters.
    return {buttonText.at(position).toLower()};
}

} // namespace

QString shortenMessage(const QString& text)
{
    const QLatin1Char lineFeed('\n');
    if (text.count(lineFeed) < lineFeedsToShorten)
        return text + lineFeed;

    const QStringList lines = text.split(lineFeed);
    QStringList shown = lines.mid(0, linesKeptAtStart);
    shown += QStringLiteral("[...SNIP (Message dialog size exceeded) ...]");
    shown += lines.mid(lines.size() - linesKeptAtEnd);
    shown += QStringLiteral(" ");
    return shown.join(lineFeed);
}

ShortcutKeys shortcutKeys(const QString& firstButtonText, const QString& secondButtonText)
{
    ShortcutKeys keys{shortcutKey(firstButtonText), shortcutKey(secondButtonText)};
    if (keys.first == keys.second)
        return {};
    return keys;
}
