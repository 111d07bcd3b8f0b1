# Sourced by ./check windows: the tests, made by the cross compiler and run under Wine without a screen.
# shellcheck shell=bash disable=SC2154 # set in kit.sh

# A Windows of its own for the tests, with the libraries that they load on its search path.
make_wine() {
    export WINEPREFIX=$PWD/build/windows/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;mapi32=n,b' LC_ALL=C.UTF-8
    local compiler
    compiler=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
    WINEPATH=$(printf 'Z:%s;' "$kit/bin" "$compiler" /usr/x86_64-w64-mingw32/lib)
    export WINEPATH QT_PLUGIN_PATH="Z:$kit/plugins"
    [ -d "$WINEPREFIX" ] || "$wine" winecfg -v win10 >/dev/null 2>&1
}

# The names of the tests that stand aside, as one pattern for ctest.
stand_aside() { grep '^[^#]' tests/aside-on-windows.txt | paste -s -d'|'; }

check_windows() {
    install_missing packages packages-windows || return
    make_kit || return
    say 'Building the tests'
    configure_windows ON && cmake --build build/windows || return
    make_wine || return
    say "Running them; $(grep -c '^[^#]' tests/aside-on-windows.txt) names stand aside, see tests/aside-on-windows.txt"
    # What the first program starts keeps its output open; none of the tests shall be the first.
    "${wine%/*}/wineserver64" -p
    "$wine" cmd /c exit </dev/null >/dev/null 2>&1
    local status=0
    ctest --preset windows -j "$(processors)" --output-on-failure --no-tests=error -E "^($(stand_aside))" || status=$?
    "${wine%/*}/wineserver64" -k
    return $status
}
