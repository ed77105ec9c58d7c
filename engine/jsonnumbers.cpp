#include "engine/jsonnumbers.h"

std::optional<double> numberOf(const QJsonValue& value)
{
    const double number = value.toDouble(-1);
    return number >= 0 && number <= maxExactNumber ? std::optional(number) : std::nullopt;
}

std::optional<qint64> wholeNumberOf(const QJsonValue& value)
{
    const std::optional<double> number = numberOf(value);
    return number ? std::optional(qint64(*number)) : std::nullopt;
}
