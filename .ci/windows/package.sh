# The installer and the zip: bin\ beside Vexal\, with the licences of what is linked in.
# To be sourced after toolchain.sh.

readonly packagePackages=(
    nsis                               # makes the installer
)

# What the programs are linked with, from the copyright files of the packages and the notes of Qt's own sources.
writeLicences() {
    local qtSource="$sources/qt6-base_${qtVersion%-*}.orig.tar.xz" notes="$build/licences" note
    rm -rf "$notes"
    mkdir -p "$notes"
    tar --extract --file "$qtSource" --directory "$notes" --strip-components=1 --wildcards \
        '*/src/*qt_attribution.json' '*/LICENSES/*' '*/src/3rdparty/*LICENSE*' '*/src/3rdparty/*COPYING*'
    "$python" .ci/windows/licences.py "$notes" "$qtVersion" "$sqliteVersion" "$arch" >"$1"
}

# The objects of the program and the command that links them with Qt, so that others can link them with another one.
packObjects() {
    local into="$build/package/quorvane-objects" link word
    link=$(ninja -C "$build" -t commands quorvane | tail -n 1)
    mkdir -p "$into/bin"
    for word in $link; do
        if [[ $word != /* && -f $build/$word && $word != bin/* ]]; then
            (cd "$build" && cp --parents "$word" "$into")
        fi
    done
    {
        printf '#!/bin/bash\n# relink.sh FOLDER-OF-QT: makes bin/quorvane.exe\ncd "$(dirname "$0")"\n'
        printf '%s\n' "${link//"$toolchain"/\"\$1\"}"
    } >"$into/relink.sh"
    chmod +x "$into/relink.sh"
    (cd "$build/package" && "$python" -m zipfile --create quorvane-objects.zip quorvane-objects)
    "$into/relink.sh" "$toolchain"
    test -s "$into/bin/quorvane.exe"
    rm -r "$into"
}

layOut() {
    local layout=$1
    rm -rf "$layout"
    mkdir -p "$layout/bin" "$layout/Vexal"
    cp "$build"/bin/quorvane.exe "$build"/bin/quorvane-self-check.exe "$layout/bin"
    "$arch-w64-mingw32-strip" "$layout"/bin/*.exe
    cp packaging/windows/说明.txt "$layout"
    writeLicences "$layout/licences.txt"
    # Windows' older editors want both marks.
    local text
    for text in "$layout"/*.txt; do
        printf '\xEF\xBB\xBF' | cat - "$text" | sed 's/\r*$/\r/' >"$text.new"
        mv "$text.new" "$text"
    done
    cp "$build"/sample/* -r "$layout/Vexal"
}

# The sample database is made once for each version of its maker.
makeSample() {
    if [[ $build/sample/灯具数据库.mdb -nt $build/bin/quorvane-sample-database.exe ]]; then
        return
    fi
    rm -rf "$build/sample"
    mkdir -p "$build/sample"
    .ci/windows/in-wine wine "$build/bin/quorvane-sample-database.exe" "Z:$build/sample/灯具数据库.mdb"
}

makePackages() {
    local layout="$build/package/quorvane"
    rm -rf "$build/package"
    layOut "$layout"
    local target=x86-unicode
    [[ $arch == i686 ]] || target=amd64-unicode
    makensis -V2 -INPUTCHARSET UTF8 -DVERSION="$version" -DTARGET="$target" -DLAYOUT="$layout" \
        -DOUTPUT="$build/package/quorvane-setup.exe" packaging/windows/setup.nsi
    # Unpacked over an installation, it must not replace the database.
    mv "$layout/Vexal/灯具数据库.mdb" "$layout/Vexal/样本-灯具数据库.mdb"
    # This one marks Chinese names as UTF-8, which Windows needs.
    (cd "$build/package" && "$python" -m zipfile --create quorvane.zip quorvane)
    packObjects
}
