# Menu entry, metadata, icons and file type are what a desktop expects, and a file that the editor
# saved is recognised.
. "$(dirname "$0")/common.sh"

install_to "$scratch/usr"
share=$scratch/usr/share
for entry in "$share"/applications/*.desktop; do
    desktop-file-validate "$entry"
done
checked=$(appstreamcli validate --pedantic --no-net "$share/metainfo/arpa.home.twdiskprobe.metainfo.xml") ||
    fail "$checked"
case $checked in
    *[EWIP]:\ *) fail "$checked" ;;
esac

# icon_is_drawn KIND NAME
icon_is_drawn() {
    for size in 16 32 48 128; do
        file=$share/icons/hicolor/${size}x$size/$1/$2.png
        [ "$(identify -format '%wx%h' "$file")" = "${size}x$size" ] || fail "$file is not of its size"
        # Drawn anew from the vectors it looks the same.
        rsvg-convert --width $size --height $size "$share/icons/hicolor/scalable/$1/$2.svg" \
            --output "$scratch/$size.png"
        differing=$(compare -metric AE -fuzz 5% "$file" "$scratch/$size.png" null: 2>&1) ||
            fail "$file is out of date: $differing pixels differ; run script/pictures"
    done
}
icon_is_drawn apps "$(sed -n 's/^Icon=//p' "$share/applications/twdiskprobe.desktop")"
icon_is_drawn mimetypes text-x-twdiskprobe

in_x sh "$source/tests/package/save_through_window.sh" "$scratch/mytest.dpc" \
    "$scratch/usr/bin/twDiskProbe"
export XDG_DATA_DIRS="$share:/usr/share" XDG_DATA_HOME="$scratch/home" XDG_CURRENT_DESKTOP=GNOME
update-mime-database "$share/mime"
for file in "$scratch/_wait/mytest.dpc" "$scratch/mytest_init.dpc"; do
    for type in "$(xdg-mime query filetype "$file")" \
        "$(gio info --attributes=standard::content-type "$file" | sed -n 's/.*content-type: //p')"; do
        [ "$type" = text/x-twdiskprobe ] || fail "$file is of type $type"
    done
done
# An _init file that lost its ending is known by its content.
sed 's/^# //' "$scratch/mytest_init.dpc" >"$scratch/unnamed"
type=$(gio info --attributes=standard::content-type "$scratch/unnamed" | sed -n 's/.*content-type: //p')
[ "$type" = text/x-twdiskprobe ] || fail "without its ending the file is of type $type"

# A config file has an icon of its own.
gio info --attributes=standard::icon "$scratch/mytest_init.dpc" | grep -q 'icon: text-x-twdiskprobe,' ||
    fail "a config file has not its own icon"

# "Check series" is offered for a config file, and a text editor opens it.
applications=$share/applications
cat >"$applications/some-editor.desktop" <<END
[Desktop Entry]
Type=Application
Name=Some Editor
Exec=true %f
MimeType=text/plain;
END
update-desktop-database "$applications"
export XDG_DATA_DIRS="$share" XDG_CONFIG_HOME="$scratch/config" XDG_CONFIG_DIRS="$scratch/config"
offered=$(gio mime text/x-twdiskprobe)
case $offered in
    *twdiskprobe-check.desktop*) ;;
    *) fail "the check is not offered but: $offered" ;;
esac
case $offered in
    *Default*some-editor.desktop*Registered*) ;;
    *) fail "a text editor is not the default but: $offered" ;;
esac
default=$(xdg-mime query default text/x-twdiskprobe)
[ "$default" != twdiskprobe-check.desktop ] || fail "the check is the default"
! gio mime text/plain | grep -q twdiskprobe || fail "the check is offered for any text"

# It keeps its terminal open until a key is pressed. The terminal is a stand-in, and the only one that
# the desktop finds: its keyboard is a pipe.
mkdir "$scratch/programs"
cat >"$scratch/programs/xterm" <<END
#!/bin/sh
[ "\$1" != -e ] || shift
"\$@" <"$scratch/keys" >"$scratch/screen" 2>&1
echo closed >>"$scratch/screen"
END
chmod +x "$scratch/programs/xterm"
ln -s "$(command -v bash)" "$scratch/programs/bash"
mkfifo "$scratch/keys"
exec 3<>"$scratch/keys"
echo 'Strem;NOflush;' >"$scratch/a file's \$HOME.dpc"
gio=$(command -v gio)
PATH=$scratch/programs:$scratch/usr/bin \
    "$gio" launch "$applications/twdiskprobe-check.desktop" "$scratch/a file's \$HOME.dpc"
# If it says nothing, the test's own time limit ends the wait.
until grep -q -e bad-line -e closed "$scratch/screen" 2>/dev/null; do
    sleep 0.1
done
! grep -q closed "$scratch/screen" || fail "the terminal closed at once: $(cat "$scratch/screen")"
printf x >&3
until grep -q closed "$scratch/screen"; do
    sleep 0.1
done
# It has taken the key, so that the next one is the first in the pipe.
printf y >&3
[ "$(head -c 1 <&3)" = y ] || fail "the terminal closed before a key was pressed"
