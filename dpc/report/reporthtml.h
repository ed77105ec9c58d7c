#pragma once

#include "dpc/report/reporttables.h"

/// One page, complete in itself: it asks nothing of the network, and its tables need no script. The
/// pictures show the first run; each other run is compared with it.
std::string reportAsHtml(const std::vector<ReportedRun>& runs);
