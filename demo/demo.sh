# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# shellcheck disable=SC2154 # root: prepare.sh
# Opens and closes the made-up home that scripts/run --demo and scripts/pictures work in. Sourced
# after scripts/prepare.sh.

# start_agent NAME FOLDER WORK: a stand-in with its working folder in a project of the demo.
start_agent() {
    # Descriptor 9 is the leash's other end: an agent that held it would never be let go.
    (cd -- "$demo_folder/home/code/$2" && exec -a "$1" "$BASH" "$root/demo/agent" "$3") \
        <"$demo_folder/leash" >/dev/null 2>&1 9>&- &
}

# The same, the way an agent looks that a script runtime runs.
start_agent_script() {
    (cd -- "$demo_folder/home/code/$2" &&
        exec -a node "$BASH" "$demo_folder/home/.local/bin/$1" "$3") \
        <"$demo_folder/leash" >/dev/null 2>&1 9>&- &
}

start_agents() {
    mkfifo -- "$demo_folder/leash"
    # The window inherits this, so that the agents go when script and window are gone, however
    # they went.
    exec 9<>"$demo_folder/leash"
    mkdir -p -- "$demo_folder/home/.local/bin"
    ln -s -- "$root/demo/agent" "$demo_folder/home/.local/bin/gemini"
    start_agent claude anchorage 9000
    start_agent codex anchorage/src 3500
    start_agent_script gemini anchorage/i18n 1200
    start_agent claude ledgerline 5000
    start_agent cursor-agent night-sky 600
}

# open_demo: makes the home and starts its agents. Everything goes with close_demo, which is called
# at the script's end.
open_demo() {
    # The same path every time makes the same pictures; in use, it gives way.
    demo_folder=${TMPDIR:-/tmp}/plinthar-demo
    mkdir -m 700 -- "$demo_folder" 2>/dev/null ||
        demo_folder=$(mktemp -d -- "$demo_folder.XXXXXX")
    trap close_demo EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
    mkdir -m 700 -- "$demo_folder/runtime"
    "$root/demo/make-home" "$demo_folder/home"
    start_agents
}

close_demo() {
    local running
    # Not by numbers noted down: who was stopped in the Live tab may have left his to a stranger.
    mapfile -t running <<<"$(jobs -pr)"
    [[ ! ${running[0]} ]] || kill -- "${running[@]}" 2>/dev/null || true
    wait
    exec 9>&-
    rm -rf -- "$demo_folder"
}

# in_demo COMMAND...: runs a program that takes the made-up home for the user's, and waits for it.
in_demo() {
    local home=$demo_folder/home
    # X looks for its key in the home folder, Wayland for its socket in the runtime folder.
    env HOME="$home" XAUTHORITY="${XAUTHORITY:-${HOME:-}/.Xauthority}" \
        XDG_DATA_HOME="$home/.local/share" XDG_CONFIG_HOME="$home/.config" \
        XDG_CACHE_HOME="$home/.cache" XDG_STATE_HOME="$home/.local/state" \
        XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$demo_folder/runtime}" \
        GIT_CONFIG_GLOBAL="$home/.gitconfig" GIT_CONFIG_NOSYSTEM=1 "$@" &
    wait "$!"
}
