# Saves a series of one task through the editor's window, by keys as a person without a mouse would.
# usage, inside an X server: [ROOT=where the editor's root is] save_through_window.sh FILE EDITOR...
set -eu
file=$1
shift

"$@" &
editor=$!
trap 'kill "$editor" 2>/dev/null' EXIT

# There is no window manager here that would give windows the keyboard. Keys that follow come to the
# window after the focus, however long it takes to get to both.
focus() {
    window=$(xdotool search --sync --onlyvisible --name "$1" | head -1)
    xdotool windowfocus --sync "$window"
}

# The window has given its desktop an icon, in the format of the X protocol.
focus '^twDiskProbe UI$'
xprop -id "$window" _NET_WM_ICON | grep -q 'Icon (48 x 48)' || { echo "no icon" >&2; exit 1; }
xdotool key ctrl+Return
xdotool key ctrl+s
focus '^Destination File'
xdotool type --delay 20 "$file"
xdotool key Return
# The _init file is the last one that is written. Who waits for nothing is ended by the test's limit.
until [ -e "${ROOT:-}${file%.dpc}_init.dpc" ]; do
    kill -0 "$editor" || exit 1
    sleep 0.2
done
