# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# shellcheck disable=SC2154,SC2164 # demo: make-home, which also ends at the first failure
# The repository of the made-up home, with a change of every kind. Sourced by make-home. Its files
# are in demo/anchorage: the first commit, what the two branches change in it, what is staged and
# what is not.

# commit DAYS-AGO MESSAGE
commit() {
    local date
    printf -v date '%(%Y-%m-%dT%H:%M:%S%z)T' "$((EPOCHSECONDS - $1 * 86400))"
    git add --all
    GIT_AUTHOR_DATE=$date GIT_COMMITTER_DATE=$date git commit --quiet --message "$2"
}

# stations PHASE: the tide office's constants of forty stations, on one line as it sends them.
stations() {
    local i
    printf '['
    for ((i = 1; i <= 40; ++i)); do
        ((i == 1)) || printf ','
        printf '{"station":%d,"mean":%d.%02d,"M2":[%d.%03d,%d],"S2":[0.%03d,%d],"K1":[0.%03d,%d]}' \
            "$i" $((i % 4 + 1)) $((i * 37 % 100)) $((i % 2 + 1)) $((i * 619 % 1000)) \
            $((i * 83 % 360)) $((i * 271 % 1000)) $((i * 47 % 360)) $((i * 113 % 1000)) \
            $(((i * 29 + (i % 9 == 4 ? $1 : 0)) % 360))
    done
    printf ']\n'
}

# logo PIXELS: a small picture of one colour.
logo() {
    base64 --decode <<<"iVBORw0KGgoAAAANSUhEUgAAABAAAAAQCAIAAACQkWg2AAAAFklEQVR42m$1"
}

# lay FOLDER: puts the files of demo/anchorage/FOLDER over those that are there.
lay() {
    cp -R -- "$demo/anchorage/$1/." .
}

write_history() {
    lay first
    mkdir assets data
    logo MQieohCTGMahjVMHw1AABxcvoBhNujYgAAAABJRU5ErkJggg== >assets/logo.png
    stations 0 >data/stations.json
    commit 34 'Predict tides and find a berth'

    git switch --quiet --create winter-hours
    lay winter-hours
    commit 6 'Shorter hours in winter, as the harbour masters asked'
    git switch --quiet main
    lay main
    commit 3 'Close an hour earlier in winter'
}

# write_repository FOLDER
write_repository() {
    cd -- "$1"
    git init --quiet
    write_history

    # Both branches changed the same line.
    git merge --quiet winter-hours >/dev/null 2>&1 || true

    mkdir src/text
    git mv src/format.ts src/text/format.ts
    lay staged
    git add src/berths.ts src/notify/tide-alarm.ts src/text/format.ts docs/harbour-guide.md

    lay unstaged
    logo M4ESBHEmIY1TCqYfhqAAB45TYQRHAf+gAAAABJRU5ErkJggg== >assets/logo.png
    stations 5 >data/stations.json
    rm src/legacy/almanac.ts
}
