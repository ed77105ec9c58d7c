#pragma once

#include "engine/runner.h"

// What `dpc run` tells people.

/// What is known before anything runs: stages, jobs, files, bytes, and what fio idles.
std::string forecastText(const Plan& plan);

/// Bytes, seconds and rates of every job that ran, a table for each stage.
std::string resultsText(const RunResults& results);

/// How the run ended, why, and what stays behind: whole lines.
std::string outcomeText(const RunResults& results, const QString& folder);

/// One line about the moment, at most so many characters.
std::string progressText(const Plan& plan, const RunProgress& progress, int width);
