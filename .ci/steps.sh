# What ./run and ./test share: one line a step, one clear line on failure, and the packages they need.
# To be sourced by bash from the root of the repository.

set -euo pipefail

readonly scriptName="${0##*/}"
currentStep="starting"

step() {
    currentStep="$1"
    printf '%s: %s\n' "$scriptName" "$1"
}

# die LINE: says why and ends. The one line that a failure leaves last on standard error.
die() {
    trap - EXIT
    printf '%s: %s\n' "$scriptName" "$1" >&2
    exit 1
}

onExit() {
    local status=$?
    if ((status == 130 || status == 143)); then
        printf '%s: stopped while: %s\n' "$scriptName" "$currentStep" >&2
    elif ((status != 0)); then
        printf '%s: failed while: %s\n' "$scriptName" "$currentStep" >&2
    fi
}
trap onExit EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# File names and texts are Chinese; a machine without any locale set up would not let them through.
[[ $(locale charmap 2>/dev/null) == UTF-8 ]] || export LC_ALL=C.UTF-8

# Debian's own Python, because its modules are installed for that one alone.
readonly python=/usr/bin/python3
export PYTHONDONTWRITEBYTECODE=1

readonly buildPackages=(
    g++ cmake ninja-build ccache   # compiler, build system, a cache that makes the second build quick
    qt6-base-dev                   # the toolkit
    libsqlite3-dev                 # the embedded database
)
readonly runPackages=(
    qt6-qpa-plugins                # the toolkit's door to the screen
    qt6-translations-l10n          # the toolkit's own texts in Chinese
    fonts-wqy-microhei             # a Chinese font
    fonts-noto-color-emoji         # what a maker may put into a name
)
readonly screenPackages=(
    xvfb xauth openbox             # a screen that needs no hardware, and a window manager on it
    dbus-daemon at-spi2-core       # how the driver learns what the window shows, as a screen reader does
    gir1.2-atspi-2.0               # the driver's way to the same
    python3 python3-gi             # the driver
    xdotool x11-xserver-utils      # keys and mouse; keys for Chinese characters
    xclip                          # another program's clipboard
    scrot                          # pictures
    mdbtools                       # an independent reader of the database file
)
readonly benchPackages=(
    sqlitebrowser                  # the yardstick: a program that shows the same file
)
readonly longPackages=(
    strace                         # kills the program at a chosen system call
    clang libclang-rt-dev          # the fuzzer
)
readonly checkPackages=(
    clang-format clang-tidy
    g++-mingw-w64-i686-posix       # compiles what is for Windows alone
    locales                        # sources of a locale with a decimal comma, for the tests
)

# installPackages NAME...: installs those that are missing, from Debian alone.
installPackages() {
    command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
        die "this needs Debian's package tools; elsewhere install $* and use the presets of CMakePresets.json"
    local present missing=() name
    # dpkg-query fails when it does not know one of the names, and still tells about the others.
    present=" $(dpkg-query --show --showformat '${db:Status-Status}:${Package} ' "$@" 2>/dev/null || true)"
    for name in "$@"; do
        [[ $present == *" installed:$name "* ]] || missing+=("$name")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi

    local asRoot=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            die "these packages are missing and neither root nor sudo is here to install them: ${missing[*]}"
        asRoot=(sudo)
    fi
    step "installing from Debian: ${missing[*]}"
    mkdir -p build
    local log=build/packages.log
    local aptGet=("${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet --yes
        -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)
    # A foreign package source that does not answer fails the update, yet the install may well succeed.
    "${aptGet[@]}" update >"$log" 2>&1 </dev/null || true
    "${aptGet[@]}" install --no-install-recommends "${missing[@]}" >>"$log" 2>&1 </dev/null || {
        tail -n 20 "$log" >&2
        die "installing packages failed; all that was said is in $log"
    }
}

# build PRESET [TARGET...]: configures and builds the targets, or everything.
build() {
    local preset=$1 log="build/configure-$1.log"
    shift
    step "configuring ($preset)"
    mkdir -p build
    cmake --preset "$preset" >"$log" 2>&1 || {
        cat "$log" >&2
        die "configuring failed; the reason stands above"
    }
    step "building ($preset)"
    cmake --build --preset "$preset" ${1:+--target "$@"} || die "building failed; the reason stands above"
}

# useTestLocales: the tests find a locale with a decimal comma, made without touching the machine's own list.
useTestLocales() {
    if [[ ! -d build/locale/de_DE.UTF-8 ]]; then
        step "making a locale with a decimal comma"
        mkdir -p build/locale
        localedef --inputfile=de_DE --charmap=UTF-8 build/locale/de_DE.UTF-8
    fi
    export LOCPATH="$PWD/build/locale"
}
