# Sourced by ./package windows: the setup file and the archive, of what the preset `windows` builds.
# shellcheck shell=bash

# The folder that is installed, with one date for all files: the same tree gives the same packages.
make_stage() {
    stage=$PWD/build/windows/stage/Zavelik
    rm -rf "${stage%/*}"
    cmake --install build/windows --strip --prefix "$stage" >/dev/null &&
        x86_64-w64-mingw32-strip "$stage"/*.dll &&
        find "$stage" -exec touch -h -d "@$date" {} +
}

# What the uninstaller takes away: files, then folders from the innermost.
# shellcheck disable=SC2016 # the uninstaller fills $INSTDIR in
list_for_uninstaller() {
    (
        cd "$stage" || exit
        find . -type f | LC_ALL=C sort | sed 's#^\./##; s#/#\\#g; s#.*#Delete "$INSTDIR\\&"#'
        find . -mindepth 1 -type d | LC_ALL=C sort -r | sed 's#^\./##; s#/#\\#g; s#.*#RMDir "$INSTDIR\\&"#'
    )
}

package_windows() {
    local version date stage
    version=$(sed -n 's/^project(Zavelik VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
    date=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || echo 1000000000)}
    export SOURCE_DATE_EPOCH=$date TZ=UTC LC_ALL=C.UTF-8
    install_missing packages packages-windows || return
    make_kit || return
    say 'Building the program'
    configure_windows OFF && cmake --build build/windows --target zavelik guide || return
    say 'Making the packages'
    make_stage && list_for_uninstaller >build/windows/files.nsh &&
        makensis -V2 -INPUTCHARSET UTF8 -DVERSION="$version" -DSTAGE="$stage" -DOUT="$PWD/build/Zavelik-$version-setup.exe" \
            -DICON="$PWD/packaging/icons/zavelik.ico" -DPICTURE="$PWD/packaging/windows/wizard.bmp" -DFILES="$PWD/build/windows/files.nsh" -DOWNER="$(owner ZAVELIK_OWNER)" \
            -DHOMEPAGE="$(owner ZAVELIK_HOMEPAGE)" packaging/windows/setup.nsi &&
        rm -f "build/Zavelik-$version-windows.zip" &&
        (cd "$stage/.." && find Zavelik -type f | sort | zip -q -X -9 "$OLDPWD/build/Zavelik-$version-windows.zip" -@) &&
        ls -sh "build/Zavelik-$version-setup.exe" "build/Zavelik-$version-windows.zip"
}

# owner NAME: what the owner has chosen, as the build knows it.
owner() { sed -n "s/^$1:[A-Z]*=//p" build/windows/CMakeCache.txt; }
