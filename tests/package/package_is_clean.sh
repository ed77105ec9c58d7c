# Debian's own checker has nothing against the packages.
. "$(dirname "$0")/common.sh"

lintian -I --pedantic --allow-root --fail-on error,warning \
    "$(package dpc)" "$(package twdiskprobe)"
