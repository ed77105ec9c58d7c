#pragma once

#include <QJsonObject>

#include <string>
#include <vector>

// The form of all JSON that dpc prints; docs/dpc.schema.json describes it.

/// The object that each JSON output is: "version", and "problems", the sentences that make
/// status 2. The keys of a command come beside them.
QJsonObject jsonOutput(const std::vector<std::string>& problems);

/// The object as UTF-8. Characters that are not safe to look at are written as "\u001b".
std::string jsonText(const QJsonObject& object);
