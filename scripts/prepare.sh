# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# What the scripts here and .ci/run have in common. Sourced, never run.

root=$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")/..")

# fail LINE...: says why and ends the script.
fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

# quietly COMMAND...: shows what the command prints only when it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1 </dev/null) || status=$?
    ((status == 0)) || printf '%s\n' "$output" >&2
    return "$status"
}

# listed_packages LIST...: the names in these lists, which stand in scripts, one a line.
listed_packages() {
    (cd -- "$root/scripts" && sed 's/#.*//; s/[[:space:]]//g; /^$/d' "$@")
}

# The packages on this system, one a line; none where there is no dpkg-query.
installed_packages() {
    dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' 2>/dev/null |
        sed -n 's/^installed //p'
}

# missing_packages LIST...: the listed packages that are not installed, one a line.
missing_packages() {
    comm -23 <(listed_packages "$@" | sort -u) <(installed_packages | sort)
}

# install_missing LIST...: installs what is missing. Leaves the package manager alone when nothing is.
install_missing() {
    local missing apt
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]})) || return 0

    command -v apt-get >/dev/null ||
        fail "Missing packages (their names in Debian): ${missing[*]}" \
            "There is no apt-get here. Install them by hand; CONTRIBUTING.md tells how to go on."
    # Another package manager may hold the lock on a machine that has just started.
    apt=(env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=120)
    if [[ $(id -u) != 0 ]]; then
        command -v sudo >/dev/null ||
            fail "Missing packages: ${missing[*]}" \
                "Installing them takes root's rights, and there is no sudo here."
        apt=(sudo "${apt[@]}")
    fi

    printf 'Installing %s\n' "${missing[*]}"
    # A foreign source that cannot be reached need not matter: the installation decides.
    quietly "${apt[@]}" update || printf 'Going on with the package lists that are there.\n' >&2
    quietly "${apt[@]}" install --yes --no-install-recommends "${missing[@]}"
}

# configure PRESET [NAME=VALUE...]: lets CMake write build/PRESET, unless it was last written with
# the same presets and settings. (Changes in CMakeLists.txt are noticed by the build itself.)
configure() {
    local preset=$1 written=$root/build/$1/configured
    shift
    local settings=("${@/#/-D}" "-DCMAKE_COMPILE_WARNING_AS_ERROR=${CI:+ON}")

    if [[ ! -e $written || $root/CMakePresets.json -nt $written ||
        $(<"$written") != "${settings[*]}" ]]; then
        cmake -S "$root" --preset "$preset" "${settings[@]}"
        printf '%s\n' "${settings[*]}" >"$written"
    fi
}
