#pragma once

#include "check/remarks.h"

#include <QJsonObject>

#include <string>

// The form of all JSON that dpc prints; docs/dpc.schema.json describes it.

/// The object that each JSON output is: "version", "problems" and "notChecked". The keys of a
/// command come beside them.
QJsonObject jsonOutput(const Remarks& remarks);

/// The object as UTF-8. Characters that are not safe to look at are written as "\u001b".
std::string jsonText(const QJsonObject& object);
