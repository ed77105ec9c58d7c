# Saves a series of one task through the editor's window, by keys as a person without a mouse would.
# usage, inside an X server: [ROOT=where the editor's root is] save_through_window.sh FILE EDITOR...
set -eu
file=$1
shift

"$@" &
editor=$!
trap 'kill "$editor" 2>/dev/null' EXIT

# Without a window manager, nobody gives the window the keyboard.
focus() {
    window=$(xdotool search --sync --onlyvisible --name "$1" | head -1)
    xdotool windowfocus --sync "$window"
}

# The window has given its desktop an icon, in the format of the X protocol.
focus '^twDiskProbe UI$'
xprop -id "$window" _NET_WM_ICON | grep -q 'Icon (48 x 48)' || { echo "no icon" >&2; exit 1; }
# "Create new task line" and "Save config files...".
xdotool key ctrl+Return
xdotool key ctrl+s
focus '^Destination File'
xdotool type "$file"
xdotool key Return
# The _init file is the last file that is written. If the editor lives and writes none, the test's
# own time limit ends the wait.
until [ -e "${ROOT:-}${file%.dpc}_init.dpc" ]; do
    kill -0 "$editor" 2>/dev/null || { echo "the editor ended without a save" >&2; exit 1; }
    sleep 0.1
done
