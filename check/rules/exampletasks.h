#pragma once

#include "check/rule.h"

// Lines that many examples of rules share.

/// A task in which nothing is wrong.
constexpr std::string_view plainTask =
    "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out_[host].dat;  "
    "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n";

/// The same, and the marker that leads to mytest1.dpc.
constexpr std::string_view plainTaskAndMarker =
    "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out_[host].dat;  "
    "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
    "[cfgPath]/mytest1.dpc\n";

/// The "_init" file that a save writes for them.
constexpr ExampleFile plainInit = {"mytest_init.dpc",
                                   "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                                   "[cfgPath]/dummyFile;  ;  ;  true;\n"};
