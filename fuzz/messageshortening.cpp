// Input: the text of a message in UTF-8.

#include "dialogs/messagetext.h"
#include "fuzz/check.h"

#include <QStringList>

namespace {

/// A second shortening, entry by entry.
QString slowlyShortened(const QString& text)
{
    QStringList lines = text.split('\n');
    if (lines.size() <= 46)
        return text + '\n';
    while (lines.size() > 45)
        lines.removeAt(4);
    lines.insert(4, "[...SNIP (Message dialog size exceeded) ...]");
    lines += " ";
    return lines.join('\n');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString shown = shortenMessage(text);
    fuzz::same("a message is shortened by the rules", shown, slowlyShortened(text));
    fuzz::same("a dialog has at most 47 lines", shown.count('\n') <= 46, true);
    fuzz::same("a message with its own lines only loses none of them",
               text.count('\n') > 45 || shown.startsWith(text), true);
    return 0;
}
