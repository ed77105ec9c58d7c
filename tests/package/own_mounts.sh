# Goes on in mounts of its own, as root, or leaves the test out if the system does not permit that.
# To be read first, with the arguments of the test.
if [ "${3:-}" != inside ]; then
    [ "$(id -u)" -eq 0 ] || { echo "FAIL: run this as root: it installs packages" >&2; exit 1; }
    if ! unshare --mount true 2>/dev/null && [ -z "${TWDP_LEAVE_NOTHING_OUT:-}" ]; then
        echo "LEFT OUT: can't mount a system to install on"
        exit 77
    fi
    exec unshare --mount sh "$0" "$1" "$2" inside
fi
