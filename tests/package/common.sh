# Functions that the package tests share. Each test is called with the folders of sources and build.
set -eu
source=$1
build=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' INT TERM
export LC_ALL=C.UTF-8

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

# Installs the build in a folder of the test, as a user of the prefix would.
install_to() {
    cmake --install "$build" --prefix "$1" >/dev/null
}

# Runs a command in a real X server of its own.
in_x() {
    xvfb-run --auto-servernum --server-args='-screen 0 1920x1080x24' "$@"
}

# The package of a name, as script/package made it.
package() {
    ls "$build/$1"_*.deb || fail "script/package has made no package $1"
}
