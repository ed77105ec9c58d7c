#pragma once

#include "check/finding.h"
#include "engine/plan.h"

#include <QJsonArray>

#include <optional>
#include <string>
#include <vector>

// The file plan.json of an export: the plan as values, for programs, and for a run of the export.

/// Version of the format; a reader refuses others.
constexpr int planFileVersion = 1;

/// Findings as objects, as `dpc check --format=json` has them.
QJsonArray lossesAsJson(const std::vector<Finding>& findings);

/// The plan and what is lost, as indented JSON.
QByteArray planAsJson(const Plan& plan, const QJsonArray& losses);

/// The content that was read back.
struct PlanFileContent
{
    Plan plan;
    QJsonArray losses;
};

/// Reads a plan back. Nothing, and the end of a sentence, if the text does not hold one of this
/// version.
std::optional<PlanFileContent> planFromJson(const QByteArray& json, std::string& problem);
