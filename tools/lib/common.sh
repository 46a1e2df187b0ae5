# shellcheck shell=bash
# What all our scripts share; sourced, never run.

# die MESSAGE...: says what failed and ends the script.
die()
{
    printf '%s: %s\n' "${PROGRAM:-${0##*/}}" "$*" >&2
    exit 1
}

say() { printf '%s\n' "$*" >&2; }

# now_ms: milliseconds for deadlines.
now_ms() { echo $(($(date +%s%N) / 1000000)); }

# wait_for SECONDS COMMAND...: true as soon as the command is; false when it never was in that time.
wait_for()
{
    local end=$(($(now_ms) + $1 * 1000))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$(now_ms)" -lt "$end" ] || return 1
        sleep 0.05
    done
}

# alive PID: the process exists and is not a zombie.
alive()
{
    [ -r "/proc/$1/stat" ] || return 1
    local stat
    stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 1
    stat=${stat##*) }
    [ "${stat%% *}" != Z ]
}

gone() { ! alive "$1"; }

# end_process PID: asks it to end, makes it end after five seconds.
end_process()
{
    [ -n "${1:-}" ] && alive "$1" || return 0
    kill "$1" 2>/dev/null || true
    wait_for 5 gone "$1" || kill -9 "$1" 2>/dev/null || true
    wait_for 5 gone "$1"
}

processes=()
# spawn NAME COMMAND...: in the background, until end_processes, with what it says in $logs/NAME.log. Its id is in `spawned`.
spawn()
{
    "${@:2}" >>"${logs:?}/$1.log" 2>&1 &
    spawned=$!
    processes+=("$spawned")
    disown
}

end_processes()
{
    local process
    for process in "${processes[@]}"; do end_process "$process" || say "Process $process does not end"; done
}
