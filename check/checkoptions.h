#pragma once

#include "check/environment.h"
#include "check/rule.h"
#include "check/seriesfacts.h"

#include <QStringList>

#include <set>

/// The settings of a check that the user chooses.
struct CheckOptions
{
    QStringList hosts; ///< the machines that run the series; none: this one alone
    std::set<const Rule*> rulesOff;
    Environment environment = realEnvironment();
    ReadLimits limits;
};
