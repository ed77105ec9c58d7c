#include "dpc/commandline.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <unistd.h>

namespace {

/// File names are decoded by the locale. A scheduled job often has none, and the files UTF-8 names.
void setLocale()
{
    const char* const name = std::setlocale(LC_CTYPE, "");
    if (name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0)
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool wantsColour()
{
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool refused = noColour != nullptr && *noColour != '\0';
    const bool isDumb = terminal == nullptr || std::strcmp(terminal, "dumb") == 0;
    return ::isatty(STDOUT_FILENO) == 1 && !refused && !isDumb;
}

} // namespace

int main(int count, char** arguments)
{
    setLocale();
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> typed(arguments + 1, arguments + count);
    const int code = runDpc(typed, {std::cout, std::cerr, wantsColour()});
    std::cout.flush();
    // A full disk must not look like a clean series.
    return std::cout.good() ? code : int(exitUsage);
}
