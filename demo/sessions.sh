# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# shellcheck disable=SC2154 # demo: make-home
# The session logs of the made-up home. Sourced by make-home.

# shellcheck source=demo/prompts.sh
source "$demo/prompts.sh"

# json_text TEXT: the text as it stands between the quotes of a JSON string.
json_text() {
    local text=${1//\\/\\\\}
    printf '%s' "${text//\"/\\\"}"
}

# random N: sets REPLY to a number from 0 to N - 1. Bash's own RANDOM differs between versions.
seed=20
random() {
    seed=$(((seed * 1103515245 + 12345) & 0x7fffffff))
    REPLY=$(((seed >> 8) % $1))
}

# between LOW HIGH: sets REPLY.
between() {
    random $(($2 - $1 + 1))
    REPLY=$((REPLY + $1))
}

# The beginning of a line that was written at $time.
line_head() {
    TZ=UTC printf '{"parentUuid":null,"sessionId":"%s","cwd":"%s","timestamp":"%(%Y-%m-%dT%H:%M:%S)T.%03dZ",' \
        "$session" "$folder_text" "$time" "$((time * 7 % 1000))"
}

write_prompt() {
    line_head
    printf '"type":"user","message":{"role":"user","content":"%s"}}\n' "$1"
}

# One message of the model; how much it has to read grows with the session.
write_answer() {
    local input output written
    random 60 && input=$((REPLY + 3))
    between 90 1900 && output=$REPLY
    between 500 5200 && written=$REPLY
    line_head
    printf '"type":"assistant","message":{"id":"msg_%s_%d","role":"assistant","model":"%s","usage":{"input_tokens":%d,"output_tokens":%d,"cache_creation_input_tokens":%d,"cache_read_input_tokens":%d},"content":[{"type":"text","text":"Done."}]}}\n' \
        "$session" "$((++messages))" "$model" "$input" "$output" "$written" "$context"
    context=$((context + written))
    ((context < 150000)) || context=24000
}

# write_session FIRST-PROMPT TURNS: one log, from $time on, in the folder $logs.
write_session() {
    local turn answers messages=0 context=14000 session
    printf -v session '%08x-%04x-4%03x-8%03x-%012x' "$((seed))" "$((time & 0xffff))" \
        "$((seed % 4096))" "$((time % 4096))" "$((seed * 9973 + time))"
    {
        write_prompt "$1"
        for ((turn = 1; turn <= $2; ++turn)); do
            between 2 5 && answers=$REPLY
            while ((answers-- > 0)); do
                between 6 75 && time=$((time + REPLY))
                write_answer
            done
            ((turn < $2)) || break
            between 25 400 && time=$((time + REPLY))
            random "${#follow_ups[@]}"
            write_prompt "${follow_ups[REPLY]}"
        done
    } >"$logs/$session.jsonl"
}

# choose_model: sets model. Most work is for the middle one.
choose_model() {
    random 10
    case $REPLY in
    0 | 1 | 2) model=claude-opus-4-1 ;;
    9) model=claude-haiku-4-5 ;;
    *) model=claude-sonnet-4-5 ;;
    esac
}

# write_project FOLDER DAYS-BACK PROMPT...: a session for every prompt, the newest first, spread
# over the days, at hours when people work.
write_project() {
    local folder=$1 days=$2 count=$(($# - 2)) i=0 day prompt folder_text time model turns logs
    shift 2
    folder_text=$(json_text "$folder")
    # As Claude Code names it. In a UTF-8 locale letters of every script stay.
    logs=$home/.claude/projects/${folder//[^[:alnum:]]/-}
    mkdir -p -- "$folder" "$logs"
    for prompt; do
        day=$((i * days / count))
        between $((8 * 3600)) $((18 * 3600)) && time=$((midnight - day * 86400 + REPLY))
        between 2 11 && turns=$REPLY
        # Today's work is over, or the newest session would end in the future.
        ((time < EPOCHSECONDS - 7200)) || time=$((EPOCHSECONDS - 7200 - day * 86400))
        choose_model
        write_session "$prompt" "$turns"
        i=$((i + 1))
    done
}

# write_sessions HOME CODE-FOLDER
write_sessions() {
    local home=$1 code=$2 midnight hour minute second
    printf -v hour '%(%H)T'
    printf -v minute '%(%M)T'
    printf -v second '%(%S)T'
    midnight=$((EPOCHSECONDS - 10#$hour * 3600 - 10#$minute * 60 - 10#$second))
    write_project "$code/anchorage" 33 "${anchorage_prompts[@]}"
    write_project "$code/field-notes" 24 "${field_notes_prompts[@]}"
    write_project "$code/koyomi-暦" 29 "${koyomi_prompts[@]}"
    write_project "$code/ledgerline" 31 "${ledgerline_prompts[@]}"
    write_project "$code/night-sky" 27 "${night_sky_prompts[@]}"
    write_project "$code/orchard-api" 30 "${orchard_api_prompts[@]}"
}
