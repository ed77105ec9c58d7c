#include "dpc/help.h"

#include <array>

namespace {

constexpr std::array<HelpPage, 5> pages = {{
    {"dpc", "check and explain the config files of a disk and file server speed test",
     "dpc COMMAND [OPTIONS] PATH...", R"(
    Reads a series of config files (mytest.dpc, mytest1.dpc, ... and
    mytest_init.dpc, in their folder and its subfolder _wait) with the reader of
    the editor twDiskProbe, and says what the editor keeps quiet.

    dpc runs no test and writes no file. Beyond reading config files it only
    asks whether files exist and how much room there is.

    A PATH is any file of a series; the other files are found by its name.)",
     R"(EXIT STATUS
    0   nothing to complain of, nothing different
    1   findings, or a difference
    2   wrong use, or something that can't be read

ENVIRONMENT
    NO_COLOR   if set and not empty, output on a terminal has no colour

EXAMPLES
    dpc check mytest.dpc
    dpc show --expand --host pc07 mytest.dpc
    dpc check --help
)"},
    {"check", "report every mistake in a series, before machines run it",
     "dpc check [OPTIONS] PATH...\n    dpc check --list-rules", R"(
    Checks the series that each PATH belongs to, or all series in a folder, and
    prints one line per finding, as compilers do. A series that several PATHs
    belong to is checked once, and its _init file with it:

        file:line:column: error|warning|note: text [rule]

    An error means that the series does not run, or not as it was meant; a
    warning that there is probably a mistake; a note is good to know. The counts
    follow on the error stream.

    Findings about several machines need their names: --hosts or --hosts-file.)",
     R"(EXIT STATUS
    0   no errors (with --werror: and no warnings)
    1   errors (with --werror: or warnings)
    2   wrong use, or something that can't be read

EXAMPLES
    dpc check mytest.dpc
    dpc check --hosts pc01,pc02,pc03 --werror /srv/speedtests
    dpc check --format=json mytest.dpc > findings.json
    dpc check --no-rule chunk-remainder --no-rule beyond-form mytest.dpc
)"},
    {"show", "show a series as the editor's table shows it", "dpc show [OPTIONS] PATH", R"(
    Prints one line per task and per "next file", and totals: tasks and config
    files, bytes written and read, and the least waiting time, which is chunks x
    chunk wait x iterations. Sizes are KiB, waits ms.

    With --expand every path is resolved as on one machine, and the .csv files
    have a column. [cfgPath] is the folder outside _wait, where files run.)",
     R"(EXIT STATUS
    0   shown
    2   wrong use, or something that can't be read

EXAMPLES
    dpc show mytest.dpc
    dpc show --format=csv mytest.dpc > mytest.csv
    dpc show --expand --host pc07 --iteration 2 mytest.dpc
)"},
    {"diff", "compare two series by task and field", "dpc diff A B", R"(
    Compares the tasks of two series in their order, not the lines of their
    files: blanks, comments and the names of files don't count. Settings are
    compared as the editor loads them, paths as they are written, and the info
    text as a whole. Prints one line per difference:

        fileA:line, fileB:line: field: value in A -> value in B
        fileB:line: only in the second series: task)",
     R"(EXIT STATUS
    0   the same tasks
    1   differences
    2   wrong use, or something that can't be read

EXAMPLES
    dpc diff old/mytest.dpc mytest.dpc
)"},
    {"roundtrip", "tell what a load and a save in the editor would change", "dpc roundtrip PATH",
     R"(
    Loads the series as the editor does, renders in memory what the editor would
    save under the same name, and compares it with the disk, file by file and
    line by line: "-" is what is there now, "+" what would be there. Also tells
    of files that would be made, cut, or left over, and of what is in the way of
    a file. Nothing is written.)",
     R"(EXIT STATUS
    0   a load and a save change nothing
    1   they change something
    2   wrong use, or something that can't be read

EXAMPLES
    dpc roundtrip mytest.dpc
)"},
}};

} // namespace

const HelpPage& helpPage(const std::string& command)
{
    for (const HelpPage& page : pages) {
        if (command == page.command)
            return page;
    }
    return pages.front();
}
