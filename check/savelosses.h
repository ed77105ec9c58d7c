#pragma once

#include "check/seriesfacts.h"

#include <string>

/// Why a load and a save in the editor would not keep the series as it is: half a sentence that
/// names the first place, such as "mytest.dpc:4 does not load". Empty if they would keep it.
std::string lossOfSave(const SeriesFacts& facts);

/// What to do if the "_init" file does not fit the series. A load and a save are advised only if
/// they keep the series.
std::string adviceToRenewInit(const SeriesFacts& facts);
