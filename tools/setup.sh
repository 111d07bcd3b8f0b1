# Sourced by the commands in the root and in tools/: installs what is missing and builds. Expects to stand in the
# project's root.
# shellcheck shell=bash

packages() { grep -v '^#' tools/packages.txt; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else
        echo "Installing packages needs root or sudo. Install these, then start again:" >&2
        packages | tr '\n' ' ' >&2
        echo >&2
        return 1
    fi
}

install_missing() {
    if ! command -v dpkg-query >/dev/null; then
        # No Debian: everything that the build asks for has to be there already.
        if ! command -v cmake >/dev/null || ! command -v ninja >/dev/null; then
            echo "Install a C++20 compiler, CMake 3.22, Ninja, Qt 6.4, SQLite 3.37 and GoogleTest with this system's" >&2
            echo "package manager. On Debian and Ubuntu the packages are:" >&2
            packages | tr '\n' ' ' >&2
            echo >&2
            return 1
        fi
        return 0
    fi
    local missing=()
    local name
    for name in $(packages) "$@"; do
        dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq &&
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null || return 1
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
