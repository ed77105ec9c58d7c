#pragma once

#include "check/fileuses.h"

#include <string>

/// Why a load and a save in the editor would not keep the series as it is: half a sentence that
/// names the first place, such as "mytest.dpc:4 does not load". Empty if they would keep it.
std::string lossOfSave(const SeriesFacts& facts);

/// Advice for an "_init" file that does not fit the series. It recommends a load and a save only if
/// they keep the series, and if the "_init" file that they write destroys nothing.
std::string adviceToRenewInit(const SeriesFacts& facts, const FileUses& uses);
