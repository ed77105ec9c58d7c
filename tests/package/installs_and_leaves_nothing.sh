# On a clean Debian the package installs with what it says it needs, its programs work, and when it
# is removed nothing of it is left.
#
# The clean Debian is made once, in the build folder; each run works on a layer above it that is in
# memory and gone with the test's own mounts.
if [ "${3:-}" != inside ]; then
    [ "$(id -u)" -eq 0 ] || { echo "FAIL: run this as root: it makes a root of its own" >&2; exit 1; }
    exec unshare --mount sh "$0" "$1" "$2" inside
fi
. "$(dirname "$0")/common.sh"

package=$(package)
needs=$(dpkg-deb --field "$package" Depends)
clean=$build/clean-debian
if [ "$(cat "$clean.needs" 2>/dev/null)" != "$needs" ]; then
    rm -rf "$clean"
    debootstrap --variant=minbase bookworm "$clean" >"$clean.log" || fail "see $clean.log"
    chroot "$clean" apt-get satisfy -y -qq --no-install-recommends "$needs" >>"$clean.log" 2>&1 ||
        fail "what the package needs can't be had, see $clean.log"
    echo "$needs" >"$clean.needs"
fi

root=$scratch/root
mkdir "$scratch/layer" "$root"
mount -t tmpfs layer "$scratch/layer"
mkdir "$scratch/layer/upper" "$scratch/layer/work"
mount -t overlay overlay "$root" \
    -o "lowerdir=$clean,upperdir=$scratch/layer/upper,workdir=$scratch/layer/work"
trap 'umount -R "$root" "$scratch/layer"; rm -rf "$scratch"' EXIT
mount --rbind /dev "$root/dev"
mount -t proc proc "$root/proc"
mount -t tmpfs tmp "$root/tmp"
mkdir -m 777 "$root/tmp/series" "$root/tmp/home"

# Every file, and every package in whatever state. The installer's own memory of the last change is
# no trace of the package.
everything() {
    (cd "$root" && find . -xdev -path ./tmp -prune -o -path ./proc -prune -o -path ./dev -prune -o \
        -path ./var/log -prune -o ! -name '*-old' -print | sort)
    chroot "$root" dpkg-query --show
}

everything >"$scratch/before"
cp "$package" "$root/tmp/package.deb"
chroot "$root" dpkg --install /tmp/package.deb >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
everything >"$scratch/installed"
grep -q "^\./usr/bin/twDiskProbe$" "$scratch/installed" ||
    fail "the editor was not installed"

# As an ordinary user. The X server is outside; its socket has no place in the file system.
as_user='chroot --userspec=nobody:nogroup'
cat >"$scratch/editor" <<END
#!/bin/sh
cp "\$XAUTHORITY" "$root/tmp/xauthority"
chmod 644 "$root/tmp/xauthority"
exec env -i DISPLAY="\$DISPLAY" XAUTHORITY=/tmp/xauthority HOME=/tmp/home LC_ALL=C.UTF-8 \
    PATH=/usr/sbin:/usr/bin:/sbin:/bin $as_user "$root" twDiskProbe
END
chmod +x "$scratch/editor"
export ROOT="$root"
in_x sh "$source/tests/package/save_through_window.sh" /tmp/series/mytest.dpc "$scratch/editor"
[ "$(grep -c '^Stream;' "$root/tmp/series/_wait/mytest.dpc")" -eq 1 ] || fail "no task was saved"
# shellcheck disable=SC2086 # the command and its options
$as_user "$root" dpc show /tmp/series/_wait/mytest.dpc | grep -q Stream ||
    fail "dpc does not show the series"
# shellcheck disable=SC2086
$as_user "$root" dpc check /tmp/series/mytest.dpc && code=0 || code=$?
[ "$code" -le 1 ] || fail "dpc can't check the series"

chroot "$root" dpkg --purge twdiskprobe >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
everything >"$scratch/after"
left=$(diff "$scratch/before" "$scratch/after") || fail "the package leaves: $left"
