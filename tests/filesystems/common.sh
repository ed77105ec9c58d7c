# Functions that the scripts inside the machine share. Results go to files in /machine/results, one in a line:
# file system|what was tried|what came of it

saver=/machine/saver
results=/machine/results/powercuts

result() {
    echo "$1|$2|$3" >>"$results"
}

# Runs a command that must work before anything can be tried; else the machine says so and ends.
must() {
    "$@" && return
    echo "$*" >/machine/failed
    exit 1
}

# disk NAME MIB: an empty image in memory as a block device; prints the device.
disk() {
    truncate -s "$2M" "/disks/$1"
    losetup --find --show "/disks/$1"
}

must modprobe -a loop fuse
mkdir -p /disks
must mount -t tmpfs -o size=700m disks /disks
must mount -t tmpfs srv /srv
must mount -t tmpfs mnt /mnt
