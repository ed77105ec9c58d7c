# On a clean Debian the packages install with what they say they need, the programs work, an older
# version in one package is replaced, and after removal nothing is left. The command alone needs no
# desktop's libraries.
#
# The clean systems are made once, in the build folder; each run works on a layer above one that is
# in memory and gone with the test's own mounts.
. "$(dirname "$0")/own_mounts.sh"
. "$(dirname "$0")/common.sh"

release=$(. /etc/os-release && echo "$VERSION_CODENAME")
command_package=$(package dpc)
editor_package=$(package twdiskprobe)

# The packages that one of ours needs, without ours.
needs_of() {
    dpkg-deb --field "$1" Depends | tr ',' '\n' | grep -v '^ *dpc ' | paste -sd,
}

# clean_system NAME NEEDS COMMAND...: a Debian that the command makes, with what is needed.
clean_system() {
    clean=$build/$1 needs=$2
    shift 2
    [ "$(cat "$clean.needs" 2>/dev/null)" != "$needs" ] || return 0
    rm -rf "$clean"
    "$@" "$clean" >"$clean.log" 2>&1 || fail "see $clean.log"
    chroot "$clean" apt-get satisfy -y -qq --no-install-recommends "$needs" >>"$clean.log" 2>&1 ||
        fail "what a package needs can't be had, see $clean.log"
    echo "$needs" >"$clean.needs"
}

clean_system clean-server "$(needs_of "$command_package")" debootstrap --variant=minbase "$release"
clean_system clean-desktop "$(needs_of "$editor_package")" cp -a "$build/clean-server"

root=$scratch/root
mkdir "$scratch/layer" "$root"
trap 'umount -R "$root" "$scratch/layer" 2>/dev/null; rm -rf "$scratch"' EXIT

# begin SYSTEM: a fresh layer above it, as the root of what follows.
begin() {
    ! mountpoint -q "$root" || umount -R "$root" "$scratch/layer"
    mount -t tmpfs layer "$scratch/layer"
    mkdir "$scratch/layer/upper" "$scratch/layer/work"
    mount -t overlay overlay "$root" \
        -o "lowerdir=$build/$1,upperdir=$scratch/layer/upper,workdir=$scratch/layer/work"
    mount --rbind /dev "$root/dev"
    mount -t proc proc "$root/proc"
    mount -t tmpfs tmp "$root/tmp"
    mkdir -m 777 "$root/tmp/series" "$root/tmp/home"
    everything >"$scratch/before"
}

# Every file, and every package in whatever state. The installer's own memory of the last change is
# no trace of the package.
everything() {
    (cd "$root" && find . -xdev -path ./tmp -prune -o -path ./proc -prune -o -path ./dev -prune -o \
        -path ./var/log -prune -o ! -name '*-old' -print | sort)
    chroot "$root" dpkg-query --show
}

install_packages() {
    for file in "$@"; do
        cp "$file" "$root/tmp/"
    done
    # As apt does it if one package takes files over from another.
    chroot "$root" sh -c 'dpkg --auto-deconfigure --install /tmp/*.deb' >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
    rm "$root"/tmp/*.deb
}

remove_and_compare() {
    chroot "$root" dpkg --purge "$@" >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
    everything >"$scratch/after"
    left=$(diff "$scratch/before" "$scratch/after") || fail "the packages leave: $left"
}

# The command alone, as an ordinary user.
as_user='chroot --userspec=nobody:nogroup'
begin clean-server
install_packages "$command_package"
mkdir -m 777 "$root/tmp/series/_wait"
echo 'Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;1;0;  MEMORY;  /tmp/a;  /tmp/l;  /tmp/c;  true;' \
    >"$root/tmp/series/_wait/mytest.dpc"
# shellcheck disable=SC2086 # the command and its options
$as_user "$root" dpc show /tmp/series/_wait/mytest.dpc | grep -q Stream ||
    fail "dpc does not show a series without a desktop"
# All examples are there, and have no fault where they lie.
examples=$root/usr/share/doc/dpc/examples
(cd "$source/examples" && find . -name '*.dpc' -o -name README.md) | while read -r file; do
    cmp "$source/examples/$file" "$examples/$file" || fail "example $file is not as in the sources"
done
# shellcheck disable=SC2086
found=$($as_user "$root" dpc check /usr/share/doc/dpc/examples 2>&1) && [ -z "$found" ] ||
    fail "dpc check of the examples: $found"
remove_and_compare dpc

# Both.
begin clean-desktop
install_packages "$command_package" "$editor_package"
everything >"$scratch/installed"
grep -q "^\./usr/bin/twDiskProbe$" "$scratch/installed" ||
    fail "the editor was not installed"
# The X server is outside; its socket has no place in the file system.
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
# shellcheck disable=SC2086
$as_user "$root" dpc show /tmp/series/_wait/mytest.dpc | grep -q Stream ||
    fail "dpc does not show the series"
# shellcheck disable=SC2086
$as_user "$root" dpc check /tmp/series/mytest.dpc && code=0 || code=$?
[ "$code" -le 1 ] || fail "dpc can't check the series"
broken=$(chroot "$root" find /usr/share/doc/dpc /usr/share/doc/twdiskprobe -xtype l)
[ -z "$broken" ] || fail "links that lead nowhere: $broken"
remove_and_compare twdiskprobe dpc

# An older version, which was one package with all files, is replaced.
begin clean-desktop
old=$scratch/old
for file in "$command_package" "$editor_package"; do
    dpkg-deb --extract "$file" "$old"
done
rm -r "$old/usr/share/doc/dpc"
mkdir "$old/DEBIAN"
cat >"$old/DEBIAN/control" <<END
Package: twdiskprobe
Version: 0.1.0
Architecture: $(dpkg --print-architecture)
Maintainer: twDiskProbe authors <maintainers@twdiskprobe.home.arpa>
Description: as it was before 0.2.0, in one package
END
dpkg-deb --build "$old" "$scratch/twdiskprobe_old.deb" >/dev/null
install_packages "$scratch/twdiskprobe_old.deb"
install_packages "$command_package" "$editor_package"
chroot "$root" dpkg --search /usr/bin/dpc | grep -q '^dpc:' ||
    fail "the command still belongs to the old package"
# shellcheck disable=SC2086
$as_user "$root" dpc --version | grep -q "$(dpkg-deb --field "$command_package" Version)" ||
    fail "dpc is not the new one"
remove_and_compare twdiskprobe dpc
