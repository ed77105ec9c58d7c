# Menu entry, metadata, icons and file type are what a desktop expects, and a file that the editor
# saved is recognised.
. "$(dirname "$0")/common.sh"

install_to "$scratch/usr"
share=$scratch/usr/share
desktop-file-validate "$share/applications/twdiskprobe.desktop"
checked=$(appstreamcli validate --pedantic --no-net "$share/metainfo/arpa.home.twdiskprobe.metainfo.xml") ||
    fail "$checked"
case $checked in
    *[EWIP]:\ *) fail "$checked" ;;
esac

icon=$(sed -n 's/^Icon=//p' "$share/applications/twdiskprobe.desktop")
for size in 16 32 48 128; do
    file=$share/icons/hicolor/${size}x$size/apps/$icon.png
    [ "$(identify -format '%wx%h' "$file")" = "${size}x$size" ] || fail "$file is not of its size"
    # Drawn anew from the vectors it looks the same.
    rsvg-convert --width $size --height $size "$share/icons/hicolor/scalable/apps/$icon.svg" \
        --output "$scratch/$size.png"
    differing=$(compare -metric AE -fuzz 5% "$file" "$scratch/$size.png" null: 2>&1) ||
        fail "$file is out of date: $differing pixels differ; run script/pictures"
done

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
