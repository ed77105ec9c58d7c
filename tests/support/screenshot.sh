# Starts a program, waits until its picture stands still, saves the screen and ends the program.
# usage, inside an X server: sh screenshot.sh FILE.png PROGRAM [ARGUMENTS...]
set -eu
file=$1
shift

"$@" &
program=$!
trap 'kill "$program" 2>/dev/null' EXIT
previous=none
for _ in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do
    sleep 0.5
    kill -0 "$program" 2>/dev/null || { echo "$1 ended before it was shown" >&2; exit 1; }
    import -silent -window root "$file"
    picture=$(cksum <"$file")
    # One colour only: nothing is drawn yet.
    [ "$(identify -format %k "$file")" -gt 1 ] && [ "$picture" = "$previous" ] && exit 0
    previous=$picture
done
echo "the picture never stood still" >&2
exit 1
