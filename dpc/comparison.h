#pragma once

#include "check/seriesfacts.h"

#include <string>

/// What is different in two series, by task and field; empty where nothing is. Settings are
/// compared as the editor loads them, paths as they are written, and the names of next files not at
/// all.
std::string differencesOf(const SeriesFacts& first, const SeriesFacts& second);
