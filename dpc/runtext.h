#pragma once

#include "engine/runner.h"

// The texts of `dpc run` for people.

/// The size of a plan before anything runs: stages, jobs, files, bytes, and the time that fio
/// idles.
std::string forecastText(const Plan& plan);

/// Bytes, seconds and rates of every job that ran, a table for each stage.
std::string resultsText(const RunResults& results);

/// How the run ended, why, and what stays behind: whole lines.
std::string outcomeText(const RunResults& results, const QString& folder);

/// One line about the moment, at most so many characters.
std::string progressText(const Plan& plan, const RunProgress& progress, int width);
