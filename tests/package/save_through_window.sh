# Saves a series of one task through the editor's window, by keys as a person without a mouse would.
# usage, inside an X server: [ROOT=where the editor's root is] save_through_window.sh FILE EDITOR...
set -eu
file=$1
shift

"$@" &
editor=$!
trap 'kill "$editor" 2>/dev/null' EXIT

# There is no window manager here that would give windows the keyboard.
focus() {
    window=$(timeout 30 xdotool search --sync --onlyvisible --name "$1" | head -1)
    xdotool windowfocus --sync "$window"
    sleep 1
}

# The window has given its desktop an icon, in the format of the X protocol.
focus '^twDiskProbe UI$'
xprop -id "$window" _NET_WM_ICON | grep -q 'Icon (48 x 48)' || { echo "no icon" >&2; exit 1; }
# Backwards from the start stand "Overwrite selected task line" and "Create new task line", and
# from there "Save config files..." is the sixth forwards.
xdotool key --delay 100 shift+Tab shift+Tab space
xdotool key --delay 100 Tab Tab Tab Tab Tab Tab space
focus '^Destination File'
xdotool type --delay 20 "$file"
xdotool key Return
# The companion is the last file that is written.
for _ in 1 2 3 4 5 6 7 8 9 10; do
    [ ! -e "${ROOT:-}${file%.dpc}_init.dpc" ] || exit 0
    sleep 1
done
echo "no series was saved" >&2
exit 1
