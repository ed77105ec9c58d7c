#include "dpc/commandline.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sys/ioctl.h>
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

/// Of the terminal that is written to; 0 if it is none.
int lineWidth()
{
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0;
    return ::isatty(STDOUT_FILENO) == 1 && isKnown ? size.ws_col : 0;
}

} // namespace

int main(int count, char** arguments)
{
    setLocale();
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> typed(arguments + 1, arguments + count);
    Output output{std::cout, std::cerr, wantsColour(), ::isatty(STDOUT_FILENO) == 1,
                  ::isatty(STDERR_FILENO) == 1};
    output.width = lineWidth();
    const int code = runDpc(typed, output);
    std::cout.flush();
    // A full disk must not look like a clean series.
    return std::cout.good() ? code : int(exitUsage);
}
