# Sourced by the commands in the root and in tools/: installs what is missing and builds. Expects to stand in the
# project's root.
# shellcheck shell=bash

processors() { getconf _NPROCESSORS_ONLN; }

# install_missing LIST...: the packages of these lists, tools/LIST.txt; where they cannot be installed it names the command
# and goes on, since what is needed may be there from elsewhere.
install_missing() {
    local wanted missing=() name as_root=()
    wanted=$(for name in "$@"; do grep -v '^#' "tools/$name.txt"; done)
    if ! command -v dpkg-query >/dev/null; then
        command -v cmake >/dev/null && command -v ninja >/dev/null && return 0
        echo "Install a C++20 compiler, CMake 3.22, Ninja, Qt 6.4 and SQLite 3.37, and GoogleTest for the tests, with this" >&2
        echo "system's package manager. On Debian and Ubuntu the packages are:" "${wanted//$'\n'/ }" >&2
        return 1
    fi
    for name in $wanted; do
        dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Not installed as packages; if the build fails, install them as root:" >&2
            echo "    apt-get install --no-install-recommends ${missing[*]}" >&2
            return 0
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    (
        set -o pipefail
        "${as_root[@]}" apt-get update -qq &&
            "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" |
            sed -unE '/^(Get:|Setting up|E:)/p'
    ) || return
    rm -f build/*/.configured # what was not found before may be there now
}

# configure PRESET [OPTION...]: where the preset was not configured yet, or for another place, other presets or other
# options.
configure() {
    local preset=$1 state
    state="$PWD $(cksum <CMakePresets.json) $*"
    [ "$(cat "build/$preset/.configured" 2>/dev/null)" = "$state" ] && [ -f "build/$preset/build.ninja" ] && return
    if [ -f "build/$preset/CMakeCache.txt" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "build/$preset/CMakeCache.txt"; then
        rm -rf "build/$preset/CMakeCache.txt" "build/$preset/CMakeFiles" # the tree has moved
    fi
    cmake --preset "$@" >/dev/null && echo "$state" >"build/$preset/.configured"
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    configure "$preset" || return
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
