# Wine for the programs built here: a small Debian system, kept in the user's cache folder, because Debian's 32-bit Wine
# does not stand beside the packages of a 64-bit system. Screen, keys and pictures are those of this system.
# To be sourced after toolchain.sh.

readonly winePackages=(
    debootstrap                        # makes that system
    mdbtools                           # reads a database independently of the program
    util-linux                         # gives it places of its own in the tree of folders
)
case $arch in
    i686) readonly wineArch=i386 wineBits=wine32 ;;
    *) readonly wineArch=amd64 wineBits=wine64 ;;
esac
readonly insideWine=(wine "$wineBits" fontconfig fonts-wqy-microhei)

asRoot() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

makeWineSystem() {
    asRoot debootstrap --arch="$wineArch" --variant=minbase "$codename" "$WINE_SYSTEM.new" http://deb.debian.org/debian
    asRoot chroot "$WINE_SYSTEM.new" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 \
        apt-get --quiet --yes install --no-install-recommends "${insideWine[@]}"
    asRoot chroot "$WINE_SYSTEM.new" apt-get clean
    asRoot mv "$WINE_SYSTEM.new" "$WINE_SYSTEM"
    .ci/windows/in-wine wineboot --init
    asRoot "$python" .ci/windows/ado_library.py "$WINE_SYSTEM/prefix"
    .ci/windows/in-wine wine reg add 'HKLM\Software\Classes\Typelib\{2A75196C-D9EB-4129-B803-931327F72D5C}\1.0\0\win32' \
        /ve /d 'C:\Program Files\Common Files\System\ADO\msado10.tlb' /f
    .ci/windows/in-wine wine winecfg -v win10
    .ci/windows/in-wine bash .ci/windows/fonts.sh
    asRoot touch "$WINE_SYSTEM/made"
}

# Sets $WINE_SYSTEM for in-wine; makes it where it is missing.
prepareWine() {
    installPackages "${winePackages[@]}" "${screenPackages[@]}"
    local codename
    codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
    export WINE_SYSTEM="$cacheFolder/wine-$wineArch-$codename"
    if [[ -e $WINE_SYSTEM/made ]]; then
        step "Wine is in $WINE_SYSTEM"
        return
    fi
    asRoot rm -rf "$WINE_SYSTEM.new" "$WINE_SYSTEM"
    timed "making a small system with Wine, once" makeWineSystem
}
