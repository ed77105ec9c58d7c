# Nobody sees what script/bootstrap's installer prints, so it must not ask: a configuration file that is
# there already, and differs from the package's, stays as it is.
#
# The installation happens on a layer above this system that is in memory, and gone with the test's mounts.
. "$(dirname "$0")/own_mounts.sh"
. "$(dirname "$0")/common.sh"

root=$scratch/root
mkdir "$scratch/layer" "$root"
trap 'umount -R "$root" "$scratch/layer" 2>/dev/null; rm -rf "$scratch"' EXIT
mount -t tmpfs layer "$scratch/layer"
mkdir "$scratch/layer/upper" "$scratch/layer/work"
mount -t overlay overlay "$root" \
    -o "lowerdir=/,upperdir=$scratch/layer/upper,workdir=$scratch/layer/work"
mount --rbind /dev "$root/dev"
mount -t proc proc "$root/proc"
mount -t tmpfs -o mode=1777 tmp "$root/tmp"
# The package lies in a file, so the network is not needed.
rm -f "$root/etc/apt/sources.list.d"/*
: >"$root/etc/apt/sources.list"

mkdir -p "$scratch/package/DEBIAN" "$scratch/package/etc"
echo '/etc/twdp-bootstrap-test' >"$scratch/package/DEBIAN/conffiles"
cat >"$scratch/package/DEBIAN/control" <<END
Package: twdp-bootstrap-test
Version: 1
Architecture: all
Maintainer: twDiskProbe authors <maintainers@twdiskprobe.home.arpa>
Description: a package with a configuration file
END
echo "the package's" >"$scratch/package/etc/twdp-bootstrap-test"
dpkg-deb --build "$scratch/package" "$root/tmp/package.deb" >/dev/null
echo "a person's" >"$root/etc/twdp-bootstrap-test"

cp "$source/script/bootstrap" "$root/tmp/"
chroot "$root" /tmp/bootstrap /tmp/package.deb </dev/null >"$scratch/log" 2>&1 ||
    fail "$(cat "$scratch/log")"
chroot "$root" dpkg --status twdp-bootstrap-test | grep -qx 'Status: install ok installed' ||
    fail "the package is not installed"
[ "$(cat "$root/etc/twdp-bootstrap-test")" = "a person's" ] || fail "the configuration file was replaced"
