# What a Windows program is built from: the cross compiler of Debian, and Qt and SQLite built from Debian's source
# packages. Both lie in the user's cache folder under the versions that they were made from.
# To be sourced after .ci/steps.sh; $arch is i686 or x86_64.

readonly cacheFolder="${XDG_CACHE_HOME:-$HOME/.cache}/quorvane-windows"
readonly toolchainPackages=(
    g++-mingw-w64-"${arch/_/-}"-posix  # the compiler; std::thread needs the -posix flavour
    binutils-mingw-w64-"${arch/_/-}"
    dpkg-dev xz-utils                  # unpacking source packages
    g++ cmake ninja-build ccache
    qt6-base-dev qt6-base-dev-tools    # code generators that run here; the Qt for Windows is of the same version
    qt6-translations-l10n              # the toolkit's own texts in Chinese
    libsqlite3-dev                     # names the version
    tcl perl python3                   # join the sources of SQLite into one file, and Qt's headers
)

# timed WHAT COMMAND...: a step that says how long it took. Its output goes to $build/logs.
timed() {
    local what=$1 log started=$SECONDS
    shift
    log="$build/logs/$1.log"
    step "$what"
    mkdir -p "$build/logs"
    "$@" >"$log" 2>&1 </dev/null || {
        tail -n 30 "$log" >&2
        die "failed while: $what; all that was said is in $log"
    }
    printf '%s:     took %d s\n' "$scriptName" $((SECONDS - started))
}

sourceVersion() {
    # shellcheck disable=SC2016
    dpkg-query --show --showformat '${source:Version}' "$1"
}

# Sets the folders of the tool chain; the packages must be there.
locateToolchain() {
    qtVersion=$(sourceVersion qt6-base-dev)
    sqliteVersion=$(sourceVersion libsqlite3-dev)
    local compiler options
    compiler=$("$arch-w64-mingw32-g++-posix" -dumpfullversion)
    options=$(cat .ci/windows/qt-options cmake/windows.cmake | sha256sum)
    toolchain="$cacheFolder/$arch-qt$qtVersion-sqlite$sqliteVersion-gcc$compiler-${options:0:8}"
    sources="$cacheFolder/sources"
    qtHost=(-DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -dumpmachine)/cmake")
}

# Own lists of Debian's source packages; those of the machine may have none and are left alone.
sourceApt() {
    local program=$1 lists="$sources/apt"
    shift
    mkdir -p "$lists/lists/partial" "$lists/cache/archives/partial"
    if [[ ! -e $lists/sources.list ]]; then
        local codename suite
        codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
        for suite in "debian $codename" "debian $codename-updates" "debian-security $codename-security"; do
            printf 'deb-src http://deb.debian.org/%s main\n' "$suite"
        done >"$lists/sources.list"
    fi
    "$program" --quiet -o Dir::Etc::SourceList="$lists/sources.list" -o Dir::Etc::SourceParts=/dev/null \
        -o Dir::State::Lists="$lists/lists" -o Dir::Cache="$lists/cache" -o APT::Sandbox::User= \
        -o APT::Update::Post-Invoke= -o APT::Update::Post-Invoke-Success= -o Acquire::Retries=3 "$@"
}

fetchSources() {
    sourceApt apt-get update
    (cd "$sources" && sourceApt apt-get source --download-only "qt6-base=$qtVersion" "sqlite3=$sqliteVersion")
}

# unpack PACKAGE VERSION INTO: with Debian's patches.
unpack() {
    rm -rf "$3"
    dpkg-source --no-check --extract "$sources/$1_${2#*:}.dsc" "$3"
}

buildSqlite() {
    local folder="$work/sqlite"
    unpack sqlite3 "$sqliteVersion" "$folder"
    (
        cd "$folder"
        ./configure --disable-readline --disable-tcl
        make sqlite3.c
        # Column names come with their tables; the rest is what Debian's own library is built with.
        "$arch-w64-mingw32-gcc-posix" -O2 -msse2 -mstackrealign -c sqlite3.c -o sqlite3.o \
            -DSQLITE_ENABLE_COLUMN_METADATA -DSQLITE_SECURE_DELETE -DSQLITE_THREADSAFE=1 \
            -DSQLITE_ENABLE_DBSTAT_VTAB -DSQLITE_MAX_VARIABLE_NUMBER=250000 -DSQLITE_USE_URI
        mkdir -p "$toolchain.new/include" "$toolchain.new/lib"
        "$arch-w64-mingw32-ar" rcs "$toolchain.new/lib/libsqlite3.a" sqlite3.o
        cp sqlite3.h sqlite3ext.h "$toolchain.new/include"
    )
}

buildQt() {
    unpack qt6-base "$qtVersion" "$work/qt"
    local options
    mapfile -t options <.ci/windows/qt-options
    cmake -S "$work/qt" -B "$work/qt-build" -G Ninja "${options[@]}" \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-$arch.cmake" -DCMAKE_INSTALL_PREFIX="$toolchain.new" \
        -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache \
        "${qtHost[@]}"
    cmake --build "$work/qt-build"
    cmake --install "$work/qt-build"
}

# The tool chain is built beside its place and renamed at the end, so what stands there is whole.
prepareToolchain() {
    installPackages "${toolchainPackages[@]}"
    locateToolchain
    if [[ -d $toolchain ]]; then
        step "Qt and SQLite for Windows are in $toolchain"
        return
    fi
    work="$cacheFolder/work-$arch"
    rm -rf "$work" "$toolchain.new"
    mkdir -p "$work" "$sources"
    timed "fetching the sources of Qt $qtVersion and SQLite $sqliteVersion" fetchSources
    timed "building SQLite ($arch)" buildSqlite
    timed "building Qt ($arch), once" buildQt
    mv "$toolchain.new" "$toolchain"
    rm -rf "$work"
}
