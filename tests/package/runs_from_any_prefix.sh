# An installed tree runs wherever it stands: it finds its library by its own place, and nothing of
# the build tree.
. "$(dirname "$0")/common.sh"

install_to "$scratch/first"
mv "$scratch/first" "$scratch/moved"
bin=$scratch/moved/bin

for program in "$bin"/*; do
    readelf --dynamic "$program" | grep -q 'RUNPATH.*\[\$ORIGIN/\.\./lib[^]]*/twdiskprobe\]' ||
        fail "$program does not look for its library by its own place"
    found=$(ldd "$program" | sed -n 's/.*libkvShared\.so\.1 => \(.*\) (.*/\1/p')
    case $(readlink -f "$found") in
        "$scratch"/moved/lib*/twdiskprobe/*) ;;
        *) fail "$program runs with the library $found" ;;
    esac
done
names=$(find "$scratch/moved" -name '*.so')
[ -z "$names" ] || fail "names to link against: $names"

in_x sh "$source/tests/package/save_through_window.sh" "$scratch/mytest.dpc" "$bin/twDiskProbe"
grep -q '^Stream;.*;  true;$' "$scratch/_wait/mytest.dpc" || fail "the series holds no task"
