#include "dpc/json.h"

#include "check/text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <fmt/format.h>

QJsonObject jsonOutput(const std::vector<std::string>& problems)
{
    QJsonArray list;
    for (const std::string& problem : problems)
        list.append(QString::fromStdString(problem));
    return {{"version", 1}, {"problems", list}};
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
    return safeText(QString::fromUtf8(QJsonDocument(object).toJson()), escape);
}
