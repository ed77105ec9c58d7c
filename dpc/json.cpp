#include "dpc/json.h"

#include "check/text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <fmt/format.h>

QJsonObject jsonOutput(const Remarks& remarks)
{
    QJsonArray problems;
    for (const std::string& problem : remarks.problems)
        problems.append(QString::fromStdString(problem));
    QJsonArray notChecked;
    for (const NotChecked& item : remarks.notChecked)
        notChecked.append(QJsonObject{{"what", QString::fromStdString(item.what)},
                                      {"count", item.count},
                                      {"text", QString::fromStdString(item.text)}});
    return {{"version", 1}, {"problems", problems}, {"notChecked", notChecked}};
}

std::string jsonText(const QJsonObject& object)
{
    const auto escape = [](uint character) -> std::string {
        // The only control character outside of the texts.
        if (character == '\n')
            return "\n";
        if (!QChar::requiresSurrogates(character))
            return fmt::format("\\u{:04x}", character);
        return fmt::format("\\u{:04x}\\u{:04x}", QChar::highSurrogate(character),
                           QChar::lowSurrogate(character));
    };
    const QByteArray json = QJsonDocument(object).toJson();
    std::string text;
    text.reserve(size_t(json.size()));
    // Line by line: another copy of a large document would take as much memory as the document.
    for (int start = 0; start < json.size();) {
        const int end = json.indexOf('\n', start) + 1;
        const int length = (end > 0 ? end : json.size()) - start;
        text += safeText(QString::fromUtf8(json.constData() + start, length), escape);
        start += length;
    }
    return text;
}
