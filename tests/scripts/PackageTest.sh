#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the Debian package of a build and looks at it: what it holds and needs, what the validators
# say, and whether the program starts from its files in a fresh root folder.
#
#   PackageTest.sh BUILD-FOLDER        with the program and the test plugins built in it
set -euo pipefail

build=$(realpath -- "$1")
scratch=$(realpath -- "$(mktemp -d)")
trap 'rm -rf -- "$scratch"' EXIT
id=io.github.plinthar.Plinthar
files=$scratch/root/usr
failures=0

# check WHAT COMMAND...: the command succeeds; else what it says is shown.
check() {
    local what=$1 output
    shift
    output=$("$@" 2>&1) && return
    printf '%s\n%s\n' "failed: $what" "$output"
    failures=$((failures + 1))
}

# skip WHY: tells CTest that this machine cannot run the test.
skip() {
    printf '%s\n' "$1"
    exit 77
}

# The tools are in the list of packages; elsewhere than on Debian they may be missing.
for tool in dpkg-deb dpkg-shlibdeps lintian appstreamcli desktop-file-validate man; do
    command -v "$tool" >/dev/null || skip "$tool is not installed."
done

make_package() {
    cpack --config "$build/CPackConfig.cmake" -B "$scratch/package" >"$scratch/log" 2>&1 || {
        cat "$scratch/log"
        exit 1
    }
    package=$(echo "$scratch"/package/*.deb)
    dpkg-deb -x "$package" "$scratch/root"
}

# The field of the package that says so holds the word.
says() {
    local value
    value=$(dpkg-deb --field "$package" "$1")
    echo "$1: $value"
    [[ ", $value," == *", $2"[\ ,]* ]]
}

check_relations() {
    local name
    # Qt's SVG library draws the icons and the xcb platform comes with its Gui library.
    for name in git procps libqt6svg6 libqt6gui6 libqcustomplot2.1-qt6; do
        check "it needs $name" says Depends "$name"
    done
    for name in lsof qt6-wayland; do
        check "it recommends $name" says Recommends "$name"
    done
}

# is_png WIDTH HEIGHT FILE
is_png() {
    local is expected
    is=$(od -An -tu1 -j16 -N8 "$3" | tr -s ' \n' ' ')
    expected=" 0 0 $(($1 / 256)) $(($1 % 256)) 0 0 $(($2 / 256)) $(($2 % 256)) "
    echo "$3: the bytes of width and height are$is"
    [[ $is == "$expected" ]]
}

check_files() {
    local size icons=$files/share/icons/hicolor
    for size in 48 128 256; do
        check "icon of $size pixels" is_png "$size" "$size" "$icons/${size}x$size/apps/$id.png"
    done
    check 'scalable icon' test -s "$icons/scalable/apps/$id.svg"
    check 'symbolic icon' test -s "$icons/symbolic/apps/$id-symbolic.svg"
    check 'the desktop entry names the icon' \
        grep -qx "Icon=$id" "$files/share/applications/$id.desktop"
    check 'the desktop entry starts the program' \
        test -x "$files/bin/$(sed -n 's/^Exec=//p' "$files/share/applications/$id.desktop")"
    check 'the metadata name the desktop entry' grep -q \
        "<launchable type=\"desktop-id\">$id.desktop</launchable>" \
        "$files/share/metainfo/$id.metainfo.xml"
    check 'every screenshot is in the checkout' screenshots_exist
}

screenshots_exist() {
    local source name names
    source=$(dirname -- "${BASH_SOURCE[0]}")/../..
    mapfile -t names < <(sed -n 's|.*/main/\(docs/images/.*\)</image>|\1|p' \
        "$files/share/metainfo/$id.metainfo.xml")
    ((${#names[@]} >= 3)) || return 1
    for name in "${names[@]}"; do
        is_png 1440 810 "$source/$name" || return 1
    done
}

# quiet COMMAND...: it succeeds and prints nothing.
quiet() {
    local output
    output=$("$@" 2>&1 >/dev/null) || return 1
    printf '%s\n' "$output"
    [[ ! $output ]]
}

check_with_validators() {
    check lintian lintian --allow-root --fail-on error,warning "$package"
    check appstreamcli appstreamcli validate --no-net "$files/share/metainfo/$id.metainfo.xml"
    check desktop-file-validate quiet desktop-file-validate "$files/share/applications/$id.desktop"
    check 'man page' quiet man --warnings=w --encoding=UTF-8 --local-file \
        "$files/share/man/man1/plinthar.1.gz"
}

# Opens the window and presses Ctrl+Q in it.
start() {
    mkdir -m 700 "$scratch/home" "$scratch/runtime"
    env -i PATH="$files/bin:$PATH" HOME="$scratch/home" LC_ALL=C.UTF-8 \
        XDG_DATA_HOME="$scratch/home/data" XDG_CONFIG_HOME="$scratch/home/config" \
        XDG_CACHE_HOME="$scratch/home/cache" GIT_CONFIG_GLOBAL="$scratch/home/gitconfig" \
        XDG_RUNTIME_DIR="$scratch/runtime" DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere \
        QT_QPA_PLATFORM=offscreen QT_PLUGIN_PATH="$build/tests/plugins" \
        QT_QPA_GENERIC_PLUGINS=KeyPresser:Ctrl+Q \
        timeout 120 plinthar
}

make_package
check_relations
check_files
check_with_validators
check 'the program starts from its place and ends when it is told to' start
printf '%d failures\n' "$failures"
((failures == 0))
