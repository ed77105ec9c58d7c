# Measures dpc check on a series of many tasks, beside wc on the same files and the compiler's front
# end on a file of as many lines. Prints elapsed and processor seconds.
# usage: sh benchmarks/checkspeed.sh DPC [TASKS]; script/bench --time runs it
set -eu
dpc=$1
tasks=${2:-10000}

folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
mkdir "$folder/_wait"

# Four files, each task with a source of its own, and an _init file that makes all of them.
awk -v tasks="$tasks" -v folder="$folder" 'BEGIN {
    line = "Stream;NOflush;NOprealloc;  0;    0; -1; %d;1;0;  MEMORY;  [cfgPath]/%s;  ;  ;  true;\n"
    init = folder "/big_init.dpc"
    for (number = 0; number < 4; ++number) {
        file = folder "/_wait/big" (number ? number : "") ".dpc"
        for (task = 0; task < tasks / 4; ++task) {
            print "Posix ;flush  ;NOprealloc;  0;   64;  1; 1024;3;2;  " \
                "[cfgPath]/src_[cfgName]-[cfgID]-[cfgTaskID].dat;  [cfgPath]/out/[host]_[cfgID]-[cfgTaskID].dat;  " \
                "[cfgPath]/[cfgName]/[host].txt;  [cfgPath]/[cfgName]-[host]_results.csv;  true;" >file
            printf line, 1024, "src_big-" number "-" task ".dat" >init
        }
        if (number < 3)
            print folder "/_wait/big" (number + 1) ".dpc" >file
        close(file)
    }
    printf line line line, 0, "out/dummyFile", 0, "big/dummyFile", 0, "dummyFile" >init
    for (i = 0; i < tasks; ++i)
        print "int f" i "(int a, int b) { return a * " i " + (b > " i " ? b : a); }" >(folder "/lines.cpp")
}'

measure() {
    name=$1
    shift
    /usr/bin/time --format "$name: %e s elapsed, %U s user, %S s system, %M KiB" "$@" >/dev/null
}
# The files are longer than a save may be, and the disk may be smaller than the series.
measure 'dpc check' "$dpc" check --hosts pc01,pc02,pc03 --no-rule long-file --no-rule disk-space "$folder"
measure 'wc' wc "$folder"/_wait/big.dpc "$folder"/_wait/big?.dpc
measure 'g++ -fsyntax-only' g++ -fsyntax-only "$folder/lines.cpp"
