#pragma once

#include <QJsonValue>

#include <optional>

// Numbers in files that anybody may have written.

/// Beyond this, 2^53, a double no longer holds every whole number.
constexpr double maxExactNumber = 9007199254740992.0;

/// A number from 0 to maxExactNumber; nothing for any other value.
std::optional<double> numberOf(const QJsonValue& value);

/// The whole part of such a number.
std::optional<qint64> wholeNumberOf(const QJsonValue& value);
