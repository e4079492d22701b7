#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the scripts in a scratch checkout where every tool that installs or builds is a stub that
# writes down its arguments: nothing is installed and nothing is built.
set -euo pipefail

source_root=$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")/../..")
scratch=$(realpath -- "$(mktemp -d)")
trap 'rm -rf -- "$scratch"' EXIT
failures=0

# stub NAME [BODY]: a program that records its call and then does BODY.
# shellcheck disable=SC2016 # the program expands these
stub() {
    printf '#!%s\nprintf "%%s\\n" "%s${*:+ $*}" >>"%s"\n%s\n' \
        "$BASH" "$1" "$scratch/calls" "${2:-}" >"$scratch/bin/$1"
    chmod +x "$scratch/bin/$1"
}

# A system like Debian, with root's rights, on which everything listed is installed.
set_up() {
    local tool
    rm -rf -- "${scratch:?}"/*
    mkdir "$scratch/bin" "$scratch/checkout" "$scratch/elsewhere"
    cp -R -- "$source_root/scripts" "$source_root/demo" "$scratch/checkout"
    for tool in bash comm dirname env mkdir realpath rm sed sort; do
        ln -s -- "$(command -v "$tool")" "$scratch/bin/$tool"
    done
    # shellcheck disable=SC2016 # the stubs expand these when they run
    {
        stub dpkg-query 'while read -r line; do echo "$line"; done <'"$scratch/installed"
        stub id 'echo 0'
        stub sudo '"$@"'
        stub apt-get 'echo chatter; echo more chatter >&2'
        stub ctest 'echo closing line'
        # Configuring makes the folder; building makes the program.
        stub cmake 'case $1 in
            -S) mkdir -p "$2/build/$4" ;;
            --build)
                mkdir -p "$2/bin"
                printf "#!%s\n%s\n" "$BASH" "$(<'"$scratch/program"')" >"$2/bin/${4:-plinthar}"
                command -p chmod +x "$2/bin/${4:-plinthar}" ;;
            esac'
        stub nproc 'echo 2'
    }
    echo 'echo the window' >"$scratch/program"
    : >"$scratch/agents"
    printf '%s\n' alpha 'g++' gamma-dev >"$scratch/checkout/scripts/packages"
    printf '%s\n' alpha | tee "$scratch/checkout/scripts"/packages-{fuzz,soak} >/dev/null
    printf 'installed %s\n' alpha 'g++' gamma-dev unlisted >"$scratch/installed"
}

# call [NAME=VALUE...] SCRIPT [ARGUMENT...]: leaves its status, out and err, and the calls it made
# of tools that change something.
call() {
    local environment=()
    while [[ $1 == *=* ]]; do
        environment+=("$1")
        shift
    done
    : >"$scratch/calls"
    status=0
    (cd -- "$scratch/elsewhere" &&
        env -i PATH="$scratch/bin" "${environment[@]}" "../checkout/scripts/$1" "${@:2}") \
        >"$scratch/out" 2>"$scratch/err" </dev/null || status=$?
    out=$(<"$scratch/out")
    err=$(<"$scratch/err")
    calls=$(sed "s|$scratch/||g; /^dpkg-query/d; /^id/d" "$scratch/calls")
}

# expect WHAT ACTUAL EXPECTED
expect() {
    [[ $2 == "$3" ]] && return
    printf '%s: %s\n  is:       %s\n  expected: %s\n' "${case#case_}" "$1" "${2//$'\n'/$'\n            '}" \
        "${3//$'\n'/$'\n            '}"
    failures=$((failures + 1))
}

# expect_part WHAT ACTUAL PART: ACTUAL holds PART somewhere.
expect_part() {
    [[ $2 == *"$3"* ]] && return
    expect "$1" "$2" "... $3 ..."
}

configured_dev='cmake -S checkout --preset dev -DPLINTHAR_REAL_LOGS='
as_usual=' -DCMAKE_COMPILE_WARNING_AS_ERROR='
built_dev='cmake --build checkout/build/dev
ctest --preset dev'

case_run_builds_the_program_and_opens_it() {
    local display
    for display in DISPLAY=:0 WAYLAND_DISPLAY=wayland-0; do
        rm -rf "$scratch/checkout/build"
        call "$display" run
        expect "$display: status" "$status" 0
        expect "$display: output" "$out" 'the window'
        expect "$display: calls" "$calls" \
            "cmake -S checkout --preset release$as_usual
cmake --build checkout/build/release --target plinthar"
    done
}

case_run_knows_no_other_option() {
    call DISPLAY=:0 run --dmeo
    expect status "$status" 1
    expect errors "$err" 'Usage: scripts/run [--demo]'
    expect calls "$calls" ''
}

# A user with a home folder, for whom the demo's window notes down what it sees.
set_up_demo() {
    local tool
    for tool in base64 cat cp git ln mkfifo mktemp ps sleep; do
        ln -s -- "$(command -v "$tool")" "$scratch/bin/$tool"
    done
    mkdir "$scratch/tmp" "$scratch/user"
    demo_home=$scratch/tmp/plinthar-demo/home
    in_demo=(DISPLAY=:0 TMPDIR="$scratch/tmp" HOME="$scratch/user"
        XDG_DATA_HOME="$scratch/user/data" GIT_CONFIG_GLOBAL="$scratch/user/gitconfig")
    cat >"$scratch/program" <<END
# The agents have their names a moment after they are started.
for ((i = 0; i < 300; ++i)); do
    mapfile -t agents < <(ps -axo pid=,command= |
        sed -n '\\#$scratch#s!^ *\([0-9]*\) \([^ ]*\) .*/\(agent\|gemini\) [0-9]*\$!\1 \2!p')
    ((\${#agents[@]} < 5)) || break
    sleep 0.1
done
printf '%s\n' "\${agents[@]}" >$scratch/agents
printf '%s\n' "\$HOME" "\$XAUTHORITY" "\$XDG_DATA_HOME" "\$XDG_CONFIG_HOME" \
    "\$GIT_CONFIG_GLOBAL" "\$XDG_RUNTIME_DIR" >$scratch/environment
printf '%s\n' "\$HOME"/.claude/projects/*/ >$scratch/projects
git -C "\$HOME/code/anchorage" -c core.quotePath=false status --short >$scratch/status
printf '%s\n' "\$*" >$scratch/arguments
$1
END
}

# Whether a process runs. One that has ended may still wait for a parent that asks how.
runs() {
    [[ $(ps -o stat= -p "$1") == [!Z]* ]]
}

# Nothing is left of the demo, and nothing has come to the user's folders.
expect_demo_gone() {
    local pid name
    expect 'what is left in the temporary folder' "$(find "$scratch/tmp" -mindepth 1)" ''
    expect "what is in the user's home" "$(find "$scratch/user" -mindepth 1)" ''
    while read -r pid name; do
        ! runs "$pid" || expect 'an agent that is still there' "$pid $name" ''
    done <"$scratch/agents"
}

case_run_demo_shows_a_made_up_home() {
    set_up_demo 'exit 7'
    call "${in_demo[@]}" run --demo
    expect status "$status" 7
    expect errors "$err" ''
    expect environment "$(<"$scratch/environment")" "$demo_home
$scratch/user/.Xauthority
$demo_home/.local/share
$demo_home/.config
$demo_home/.gitconfig
$scratch/tmp/plinthar-demo/runtime"
    expect 'projects with logs' "$(wc -l <"$scratch/projects")" 6
    expect 'kinds of change' "$(cut -c 1-2 "$scratch/status" | sort -u | tr '\n' ,)" \
        ' D, M,??,A ,M ,MM,R ,UU,'
    expect agents "$(cut -d ' ' -f 2 "$scratch/agents" | sort | tr '\n' ' ')" \
        'claude claude codex cursor-agent node '
    expect_demo_gone
}

case_run_demo_forgets_whom_the_user_has_stopped() {
    # shellcheck disable=SC2016
    set_up_demo 'kill "${agents[0]%% *}" "${agents[1]%% *}"; sleep 0.2'
    call "${in_demo[@]}" run --demo
    expect status "$status" 0
    expect output "$out" ''
    expect_demo_gone
}

case_run_demo_leaves_the_callers_repository_alone() {
    set_up_demo ''
    call "${in_demo[@]}" GIT_DIR="$scratch/user/git" GIT_INDEX_FILE="$scratch/user/index" run --demo
    expect status "$status" 0
    expect_demo_gone
}

case_run_demo_gives_way_to_another_one() {
    set_up_demo ''
    mkdir "$scratch/tmp/plinthar-demo"
    call "${in_demo[@]}" run --demo
    expect status "$status" 0
    expect_part home "$(<"$scratch/environment")" "$scratch/tmp/plinthar-demo."
    rmdir "$scratch/tmp/plinthar-demo"
    expect_demo_gone
}

case_run_demo_goes_when_it_is_told_to() {
    # shellcheck disable=SC2016
    set_up_demo 'kill $PPID; for ((i = 0; i < 600; ++i)); do sleep 0.1; done; echo not ended'
    call "${in_demo[@]}" run --demo
    expect status "$status" 143
    expect output "$out" ''
    expect_demo_gone
}

case_run_demo_leaves_no_agents_when_it_is_killed() {
    local i pid name
    # shellcheck disable=SC2016
    set_up_demo 'kill -KILL $PPID'
    call "${in_demo[@]}" run --demo 2>/dev/null # where bash says so
    expect status "$status" 137
    while read -r pid name; do
        for ((i = 0; i < 300; ++i)); do
            runs "$pid" || continue 2
            sleep 0.1
        done
        expect 'an agent that is still there' "$pid $name" ''
    done <"$scratch/agents"
}

case_run_takes_pictures_without_a_display() {
    set_up_demo ''
    call "${in_demo[@]}" DISPLAY= run
    expect status "$status" 0
    expect_part output "$out" 'No display'
    expect_part output "$out" "The pictures are in $scratch/checkout/build/pictures"
    expect_part calls "$calls" \
        'cmake --build checkout/build/release --target plinthar_pictures'
    expect arguments "$(<"$scratch/arguments")" "$scratch/checkout/build/pictures"
    expect_demo_gone
}

case_pictures_go_where_the_caller_says() {
    set_up_demo ''
    mkdir "$scratch/elsewhere/album" "$scratch/checkout/docs" "$scratch/checkout/docs/images"
    call "${in_demo[@]}" pictures album
    expect status "$status" 0
    expect arguments "$(<"$scratch/arguments")" "$scratch/elsewhere/album"
    expect_demo_gone
    call "${in_demo[@]}" pictures
    expect arguments "$(<"$scratch/arguments")" "$scratch/checkout/docs/images"
}

case_pictures_fail_when_there_are_none() {
    set_up_demo 'exit 1'
    mkdir "$scratch/elsewhere/album"
    call "${in_demo[@]}" pictures album
    expect status "$status" 1
    expect output "$out" ''
    expect_demo_gone
    call "${in_demo[@]}" pictures nowhere
    expect status "$status" 1
    expect_part errors "$err" 'There is no folder'
}

case_package_builds_everything_and_packs_it() {
    # shellcheck disable=SC2016
    stub cpack 'echo chatter; mkdir -p "$4"; : >"$4/some.deb"'
    call package
    expect status "$status" 0
    expect output "$out" "The package is $scratch/checkout/build/package/some.deb"
    expect errors "$err" ''
    expect calls "$calls" "cmake -S checkout --preset release$as_usual
cmake --build checkout/build/release
cpack --config checkout/build/release/CPackConfig.cmake -B checkout/build/package"
}

case_package_fails_when_packing_fails() {
    stub cpack 'echo the reason; exit 1'
    call package
    expect status "$status" 1
    expect output "$out" ''
    expect errors "$err" 'the reason'
}

case_test_builds_everything_and_runs_ctest() {
    call test
    expect status "$status" 0
    expect output "$out" 'closing line'
    expect calls "$calls" "$configured_dev$as_usual"$'\n'"$built_dev"
}

case_test_passes_its_arguments_on() {
    call test -R 'Store|two words'
    expect_part calls "$calls" 'ctest --preset dev -R Store|two words'
}

case_test_fails_when_ctest_fails() {
    stub ctest 'exit 8'
    call test
    expect status "$status" 8
}

case_sanitize_runs_the_tests_with_both() {
    call test --sanitize -R 'two words'
    expect status "$status" 0
    expect calls "$calls" "cmake -S checkout --preset asan -DPLINTHAR_REAL_LOGS=$as_usual
cmake --build checkout/build/asan
ctest --preset asan -R two words
cmake -S checkout --preset tsan -DPLINTHAR_REAL_LOGS=$as_usual
cmake --build checkout/build/tsan
ctest --preset tsan -R two words"
}

case_sanitize_fails_with_the_first() {
    stub ctest 'exit 8'
    call test --sanitize
    expect status "$status" 8
    expect_part calls "$calls" 'ctest --preset asan'
    expect 'calls for tsan' "$(grep tsan <<<"$calls")" ''
}

# Three fuzz targets, which take what they are told to and find nothing.
set_up_targets() {
    local name
    mkdir -p "$scratch/checkout/build/fuzz/fuzz"
    # shellcheck disable=SC2016
    for name in Dates Diff Logs; do
        stub "$name" 'echo "stat::number_of_executed_units: 1234" >&2'
        stub "${name}Replay" 'mkdir -p "$2"; : >"$3"'
        mv "$scratch/bin/$name" "$scratch/bin/${name}Replay" "$scratch/checkout/build/fuzz/fuzz"
    done
}

case_fuzz_wants_a_number_of_seconds() {
    local wrong
    for wrong in '' 0 -5 1.5 Diff; do
        call fuzz $wrong
        expect "status of '$wrong'" "$status" 1
        expect_part "message of '$wrong'" "$err" 'Usage: scripts/fuzz SECONDS'
        expect "calls of '$wrong'" "$calls" ''
    done
}

case_fuzz_runs_every_target() {
    set_up_targets
    call fuzz 7
    expect status "$status" 0
    expect errors "$err" ''
    expect_part calls "$calls" "cmake -S checkout --preset fuzz$as_usual
cmake --build checkout/build/fuzz --target fuzz"
    expect 'the runs' "$(sed -n 's/^\([A-Z][a-z]*\) -max_total_time=7 .*/\1/p' <<<"$calls" | sort | tr '\n' ' ')" \
        'Dates Diff Logs '
    expect table "$(sed -n '/^target/,$p' <<<"$out" | sed 's/  *[0-9] / S /')" \
        'target                 runs  seconds  findings
Dates                  1234 S         0
Diff                   1234 S         0
Logs                   1234 S         0'
}

case_fuzz_runs_the_targets_named() {
    set_up_targets
    call fuzz 7 Logs
    expect status "$status" 0
    expect 'other runs' "$(grep -E '^(Dates|Diff) ' <<<"$calls")" ''
    call fuzz 7 Store
    expect 'status without it' "$status" 1
    expect_part message "$err" 'no target Store'
}

case_fuzz_fails_with_a_finding() {
    set_up_targets
    printf '#!%s\necho "  what():  rows are lost"\nexit 77\n' "$BASH" \
        >"$scratch/checkout/build/fuzz/fuzz/Diff"
    call fuzz 7
    expect status "$status" 1
    expect 'lines with a finding' "$(grep -cE '^(Dates|Diff|Logs) .* 1$' <<<"$out")" 1
    expect_part output "$out" 'Diff found something'
    expect_part output "$out" 'rows are lost'
    expect 'the others' "$(grep -cE '^(Dates|Diff|Logs) .* 0$' <<<"$out")" 2
}

case_fuzz_installs_its_own_packages_too() {
    set_up_targets
    echo clang >>"$scratch/checkout/scripts/packages-fuzz"
    call test
    expect 'calls of apt-get by test' "$(grep apt-get <<<"$calls")" ''
    call fuzz 7
    expect_part calls "$calls" 'install --yes --no-install-recommends clang'
}

# A soak that tells how it was called and does BODY.
set_up_soak() {
    local tool
    for tool in mkfifo mktemp sleep; do
        ln -s -- "$(command -v "$tool")" "$scratch/bin/$tool"
    done
    mkdir "$scratch/tmp"
    # shellcheck disable=SC2016 # the program expands these
    printf '%s\n' 'echo "$* on $QT_QPA_PLATFORM${DISPLAY:-}"; echo text >"$TMPDIR/file"' "${1:-}" \
        >"$scratch/program"
}

case_soak_wants_a_number_of_minutes() {
    local wrong
    for wrong in '' 0 1.5 --seed=3 '7 --sed=3' '7 --seed=x' '7 8'; do
        # shellcheck disable=SC2086 # these are several words
        call soak $wrong
        expect "status of '$wrong'" "$status" 1
        expect_part "message of '$wrong'" "$err" 'Usage: scripts/soak MINUTES'
        expect "calls of '$wrong'" "$calls" ''
    done
}

case_soak_runs_on_a_display_of_its_own() {
    set_up_soak
    stub Xvfb 'echo 42 >&3; exec sleep 600'
    call TMPDIR="$scratch/tmp" soak 7 --seed=3 --verbose
    expect status "$status" 0
    expect errors "$err" ''
    expect output "${out##*$'\n'}" '--minutes=7 --seed=3 --verbose on xcb:42'
    expect 'what is left' "$(find "$scratch/tmp" -mindepth 1)" ''
    expect calls "${calls%%$'\nXvfb'*}" "${configured_dev%% -D*}$as_usual
cmake --build checkout/build/dev --target plinthar_soak"
}

case_soak_keeps_everything_for_a_finding() {
    set_up_soak 'exit 3'
    call TMPDIR="$scratch/tmp" QT_QPA_PLATFORM=offscreen soak 7 --seed=3
    expect status "$status" 1
    expect_part output "$out" '--minutes=7 --seed=3 on offscreen'
    expect_part 'the way back' "$out" 'scripts/soak 7 --seed=3'
    expect_part 'the folder' "$out" "$(find "$scratch/tmp" -name tmp -mindepth 1)"
    expect 'what is left' "$(cat "$scratch"/tmp/*/tmp/file)" text
}

case_a_failed_build_ends_it() {
    # shellcheck disable=SC2016
    stub cmake 'if [[ $1 == --build ]]; then exit 3; else mkdir -p "$2/build/$4"; fi'
    call test
    expect status "$status" 3
    expect calls "$calls" "$configured_dev$as_usual"$'\n''cmake --build checkout/build/dev'
}

case_second_call_does_not_configure() {
    call test
    call test
    expect status "$status" 0
    expect calls "$calls" "$built_dev"
}

case_a_failed_configuration_is_tried_again() {
    local cmake
    cmake=$(<"$scratch/bin/cmake")
    stub cmake 'exit 3'
    call test
    expect status "$status" 3
    printf '%s\n' "$cmake" >"$scratch/bin/cmake"
    call test
    expect calls "$calls" "$configured_dev$as_usual"$'\n'"$built_dev"
}

case_changed_presets_or_settings_configure_again() {
    call test
    touch -d tomorrow "$scratch/checkout/CMakePresets.json"
    call test
    expect 'after the presets changed' "$calls" "$configured_dev$as_usual"$'\n'"$built_dev"

    rm "$scratch/checkout/CMakePresets.json"
    call CI=true test
    expect 'with CI set' "$calls" "$configured_dev${as_usual}ON"$'\n'"$built_dev"
    call test
    expect 'with CI unset again' "$calls" "$configured_dev$as_usual"$'\n'"$built_dev"
}

case_real_logs_are_found_from_the_callers_folder() {
    mkdir "$scratch/elsewhere/logs"
    call PLINTHAR_REAL_LOGS=logs test
    expect_part calls "$calls" "${configured_dev}elsewhere/logs"
}

case_nothing_missing_leaves_apt_alone() {
    call test
    expect status "$status" 0
    expect 'calls of apt-get' "$(grep apt-get "$scratch/calls")" ''
}

case_nothing_missing_needs_no_apt() {
    rm "$scratch/bin/apt-get"
    call test
    expect status "$status" 0
    expect output "$out" 'closing line'
}

case_the_list_may_hold_comments_and_blank_lines() {
    printf '%s\n' '# heading' '' alpha '   ' '  # indented' 'g++   # why' $'\tgamma-dev' \
        'alpine#close' >"$scratch/checkout/scripts/packages"
    printf 'no-newline' >>"$scratch/checkout/scripts/packages"
    : >"$scratch/installed"
    call test
    expect_part calls "$calls" ' alpha alpine g++ gamma-dev no-newline'
}

case_root_installs_only_what_is_missing() {
    printf '%s\n' 'installed alpha' 'config-files g++' >"$scratch/installed"
    call test
    expect status "$status" 0
    expect output "$out" $'Installing g++ gamma-dev\nclosing line'
    expect errors "$err" ''
    expect calls "$calls" \
        "apt-get -o DPkg::Lock::Timeout=120 update
apt-get -o DPkg::Lock::Timeout=120 install --yes --no-install-recommends g++ gamma-dev
$configured_dev$as_usual
$built_dev"
}

case_others_install_with_sudo() {
    stub id 'echo 1000'
    echo 'installed alpha' >"$scratch/installed"
    call test
    expect status "$status" 0
    expect_part calls "$calls" "sudo env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=120 \
install --yes --no-install-recommends g++ gamma-dev"
}

# stops_with MESSAGE: the script names what is missing and has built nothing.
stops_with() {
    expect status "$status" 1
    expect_part message "$err" "$1"
    expect calls "$calls" ''
}

case_without_root_and_sudo_it_stops() {
    stub id 'echo 1000'
    rm "$scratch/bin/sudo"
    echo 'installed alpha' >"$scratch/installed"
    call test
    stops_with 'Missing packages: g++ gamma-dev'
}

case_without_apt_it_names_what_is_missing() {
    rm "$scratch/bin/apt-get"
    echo 'installed alpha' >"$scratch/installed"
    call DISPLAY=:0 run
    stops_with 'Missing packages (their names in Debian): g++ gamma-dev'
}

case_without_dpkg_it_names_the_whole_list() {
    rm "$scratch/bin/apt-get" "$scratch/bin/dpkg-query"
    call test
    stops_with 'Missing packages (their names in Debian): alpha g++ gamma-dev'
}

case_a_failed_installation_ends_it() {
    # shellcheck disable=SC2016
    stub apt-get 'if [[ $* == *install* ]]; then echo the reason; exit 100; fi'
    : >"$scratch/installed"
    call test
    expect status "$status" 100
    expect errors "$err" 'the reason'
    expect 'calls of cmake' "$(grep ^cmake "$scratch/calls")" ''
}

case_a_failed_update_is_shown_and_survived() {
    # shellcheck disable=SC2016
    stub apt-get 'if [[ $* == *update* ]]; then echo unreachable; exit 100; fi'
    : >"$scratch/installed"
    call test
    expect status "$status" 0
    expect_part errors "$err" unreachable
    expect output "${out##*$'\n'}" 'closing line'
}

case_the_lists_name_each_package_once() {
    local names
    names=$(sed 's/#.*//; s/[[:space:]]*$//; /^$/d' "$source_root"/scripts/packages*)
    expect 'lines that are no package name' "$(grep -vE '^[a-z0-9][a-z0-9+.-]+$' <<<"$names")" ''
    expect duplicates "$(sort <<<"$names" | uniq -d)" ''
    expect_part list "$names" 'g++'
}

mapfile -t cases < <(compgen -A function case_)
for case in "${cases[@]}"; do
    set_up
    "$case"
done
printf '%d cases, %d failures\n' "${#cases[@]}" "$failures"
((failures == 0))
