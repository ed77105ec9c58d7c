#pragma once

#include <cstdio>
#include <cstdlib>

// Tests of what a machine can't do, such as mounting in a container, are left out by name.

namespace test {

/// Ends the program as one that did not run: ctest lists it as skipped, and script/test says why.
/// With TWDP_LEAVE_NOTHING_OUT in the environment it fails instead.
[[noreturn]] inline void leaveOut(const char* reason)
{
    constexpr int skipped = 77; // SKIP_RETURN_CODE in cmake/Tests.cmake
    const bool mustRun = std::getenv("TWDP_LEAVE_NOTHING_OUT") != nullptr;
    std::fprintf(stderr, "%s: %s\n", mustRun ? "FAIL" : "LEFT OUT", reason);
    std::exit(mustRun ? EXIT_FAILURE : skipped);
}

} // namespace test
