#pragma once

#include "check/environment.h"
#include "check/rule.h"
#include "check/seriesfacts.h"

#include <QStringList>

#include <set>
#include <string>

/// The settings of a check that the user chooses.
struct CheckOptions
{
    QStringList hosts;         ///< the machines that run the series; none: this one alone
    std::string repeatedHosts; ///< half a sentence if the user named some of them twice
    int repeatedHostCount = 0;
    std::set<const Rule*> rulesOff;
    Environment environment = realEnvironment();
    ReadLimits limits;
};
