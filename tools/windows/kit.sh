# Sourced by `./package windows` and `./check windows`, from the project's root: the libraries for Windows, made once from
# the distribution's source packages into a folder that is kept outside the tree.
# shellcheck shell=bash

# What the libraries are made from and how; another answer is another folder.
kit_options() {
    cat <<'OPTIONS'
-DCMAKE_BUILD_TYPE=Release
-DBUILD_SHARED_LIBS=ON
-DQT_QMAKE_TARGET_MKSPEC=win32-g++
-DQT_BUILD_EXAMPLES=OFF
-DQT_BUILD_TESTS=OFF
-DINPUT_opengl=no
-DFEATURE_opengl=OFF
-DFEATURE_sql=OFF
-DFEATURE_network=OFF
-DFEATURE_dbus=OFF
-DFEATURE_printsupport=OFF
-DFEATURE_xml=OFF
-DFEATURE_testlib=ON
-DFEATURE_concurrent=OFF
-DFEATURE_icu=OFF
-DFEATURE_system_zlib=OFF
-DFEATURE_pkg_config=OFF
-DFEATURE_tabletevent=OFF
OPTIONS
}

# As the distribution builds its own: what is deleted is wiped, and a book has the same bytes on every system.
sqlite_options='-DSQLITE_SECURE_DELETE -DSQLITE_ENABLE_MATH_FUNCTIONS -DSQLITE_ENABLE_FTS5 -DSQLITE_ENABLE_DBSTAT_VTAB
-DSQLITE_LIKE_DOESNT_MATCH_BLOBS -DSQLITE_MAX_VARIABLE_NUMBER=250000'

say() { printf '%s  %s\n' "$(date +%T)" "$*"; }

# apt with the source packages of the mirror that this system uses, in folders of its own: the system's set-up stays as it is.
source_apt() {
    local folder=$work/apt file
    if [ ! -d "$folder" ]; then
        mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial" "$folder/parts"
        for file in /etc/apt/sources.list.d/*.sources; do
            [ ! -f "$file" ] || sed 's/^Types:.*/Types: deb-src/' "$file" >"$folder/parts/${file##*/}"
        done
        if [ -f /etc/apt/sources.list ]; then
            sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$folder/parts/system.list"
        fi
        source_apt update -qq || return
    fi
    apt-get -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$folder/parts" -o Dir::State::lists="$folder/lists" \
        -o Dir::Cache="$folder/cache" -o APT::Sandbox::User= "$@"
}

# take PACKAGE VERSION: its sources, into $work/PACKAGE.
take() {
    say "Fetching the sources of $1 $2"
    (cd "$work" && source_apt source -qq --only-source "$1=$2" >/dev/null && mv "$1"-*/ "$1")
}

# The version of the source package that an installed or known package was built from.
source_version() { apt-cache show --no-all-versions "$1" | sed -n 's/^Version: //p' | head -n 1; }

# cross_cmake SOURCE BUILD [OPTION...]
cross_cmake() {
    local source=$1 build=$2
    shift 2
    cmake -G Ninja -S "$source" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/Windows.cmake" \
        -DCMAKE_INSTALL_PREFIX="$kit" -DCMAKE_PREFIX_PATH="$kit" "$@" >"$build.log" 2>&1 ||
        { tail -n 30 "$build.log" >&2; return 1; }
}

# steps BUILD: builds, and tells once a minute how far it is.
steps() {
    local build=$1 line told=$SECONDS
    NINJA_STATUS='[%f/%t] ' ninja -C "$build" 2>&1 | tee -a "$build.log" | while IFS= read -r line; do
        if [ $((SECONDS - told)) -ge 60 ] && [[ $line == \[* ]]; then
            told=$SECONDS
            say "${line%% *}"
        fi
    done
    [ "${PIPESTATUS[0]}" -eq 0 ] || { tail -n 30 "$build.log" >&2; return 1; }
}

make_qt() {
    take qt6-base "$qt_version" || return
    say 'Building Qt for Windows: about half an hour on two cores, once'
    local options
    mapfile -t options < <(kit_options)
    cross_cmake "$work/qt6-base" "$work/qt6" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$host_cmake" "${options[@]}" &&
        steps "$work/qt6" && cmake --install "$work/qt6" --strip >/dev/null &&
        mkdir -p "$kit/licences/qt" && cp "$work"/qt6-base/LICENSES/* "$kit/licences/qt/"
}

# shellcheck disable=SC2086 # several options
make_sqlite() {
    take sqlite3 "$sqlite_version" || return
    say 'Building SQLite for Windows'
    (
        cd "$work/sqlite3" && ./configure --disable-tcl && make sqlite3.c &&
            x86_64-w64-mingw32-gcc-posix -O2 -c sqlite3.c -o sqlite3.o $sqlite_options &&
            x86_64-w64-mingw32-ar rcsD "$kit/lib/libsqlite3.a" sqlite3.o && cp sqlite3.h "$kit/include/"
    ) >"$work/sqlite3.log" 2>&1 || { tail -n 30 "$work/sqlite3.log" >&2; return 1; }
}

make_googletest() {
    take googletest "$googletest_version" || return
    say 'Building GoogleTest for Windows'
    cross_cmake "$work/googletest" "$work/gtest" -DCMAKE_BUILD_TYPE=Release && steps "$work/gtest" &&
        cmake --install "$work/gtest" >/dev/null
}

# Sets `kit`, the folder of the libraries, and makes them if they are not there.
make_kit() {
    local qt_version sqlite_version googletest_version host_cmake cache work part mark
    qt_version=$(source_version qt6-base-dev)
    qt_version=${qt_version%+b[0-9]*}
    sqlite_version=$(source_version libsqlite3-dev)
    sqlite_version=${sqlite_version%+b[0-9]*}
    googletest_version=$(source_version libgtest-dev)
    googletest_version=${googletest_version%+b[0-9]*}
    host_cmake=/usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)/cmake
    cache=${ZAVELIK_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/zavelik-windows}
    kit=$cache/$({
        echo "$qt_version $sqlite_version $googletest_version"
        x86_64-w64-mingw32-g++-posix -dumpfullversion
        kit_options
    } | sha256sum | cut -c 1-16)
    work=$kit.work
    mkdir -p "$kit/lib" "$kit/include" "$kit/made" "$kit/translations" "$work"
    cp /usr/share/qt6/translations/qtbase_ru.qm "$kit/translations/"
    for part in sqlite qt googletest; do
        mark=$kit/made/$part
        [ "$part" != sqlite ] || mark+=-$(cksum <<<"$sqlite_options" | cut -d ' ' -f 1)
        [ ! -f "$mark" ] || continue
        rm -rf "$work"
        mkdir -p "$work"
        "make_$part" || return
        touch "$mark"
    done
    rm -rf "$work"
}

wine=/usr/lib/wine/wine64 # stands on no search path

# configure_windows TESTS: the preset `windows` with the libraries of the kit; TESTS is ON or OFF.
configure_windows() {
    local host
    host=/usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)/cmake
    configure windows -DCMAKE_PREFIX_PATH="$kit" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$host" \
        -DSQLite3_INCLUDE_DIR="$kit/include" -DSQLite3_LIBRARY="$kit/lib/libsqlite3.a" \
        -DCMAKE_CROSSCOMPILING_EMULATOR="$wine" -DZAVELIK_QT_TRANSLATIONS="$kit/translations" -DZAVELIK_QT_LICENCES="$kit/licences" -DZAVELIK_BUILD_TESTS="$1"
}
