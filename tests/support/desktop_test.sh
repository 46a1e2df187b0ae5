# shellcheck shell=bash
# A test of the program on a real desktop, step by step; sourced after common.sh with `root`, `build`, the
# `script` that starts and stops the desktop, its name in `desktop`, and `out`, where logs and pictures stay.
# Prints a line a check and `N passed, N failed` last.

: "${root:?}" "${build:?}" "${script:?}" "${desktop:?}" "${out:?}"
program=$build/src/app/brimwatch
daemon=$build/tools/sample-daemon/brimwatch-sample-daemon
for file in "$program" "$daemon"; do
    [ -x "$file" ] || die "$file is not built"
done
rm -rf "$out"
mkdir -p "$out/pictures"
out=$(cd "$out" && pwd)
session=$out/session
passed=0 failed=0 program_pid='' daemon_pid='' monitor_pid=''

finish()
{
    local status=$?
    trap - EXIT INT TERM
    end_process "$program_pid"
    end_process "$daemon_pid"
    end_process "$monitor_pid"
    "$script" stop "$session"
    if [ "$status" != 0 ] && [ "$failed" = 0 ]; then
        failed=1
    fi
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ] || echo "Logs and pictures of $desktop: $out"
    [ "$failed" = 0 ] && [ "$passed" -gt 0 ]
    exit
}
trap finish EXIT
trap 'exit 130' INT TERM

# check SENTENCE COMMAND...: one result.
check()
{
    local sentence=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
        printf 'ok      %s: %s\n' "$desktop" "$sentence"
    else
        failed=$((failed + 1))
        printf 'FAILED  %s: %s\n' "$desktop" "$sentence"
        shot "failed-$failed"
        return 1
    fi
}

# needed SENTENCE COMMAND...: the same, and nothing that follows makes sense without it.
needed() { check "$@" || exit 1; }

shot() { "$root/tools/panels/shot.sh" "$out/pictures/$1.png" ${2:+"$2"} 2>>"$out/shot.log" || true; }
click() { "$root/tools/panels/click.sh" "$@"; }
key() { "$root/tools/panels/key.sh" "$@"; }

# popover_place: where the popover is; nothing while it is closed. No window of a layer is listed anywhere: there it
# is what changed on the screen since the picture `without`, if that is as large.
popover_place()
{
    local place
    if [ -z "${BRIMWATCH_LAYERS:-}" ]; then
        popover_places "$program_pid" | head -n 1
        return
    fi
    shot now
    place=$(largest_difference "$out/pictures/without.png" "$out/pictures/now.png" \
        "$(identify -format '%wx%h+0+0' "$out/pictures/without.png")")
    # shellcheck disable=SC2086
    set -- $place
    [ $# = 4 ] && [ "$3" -ge $((POPOVER_WIDTH - 2)) ] && [ "$4" -ge $((POPOVER_HEIGHT - 2)) ] && echo "$place"
}

shown() { [ -n "$(popover_place)" ]; }
hidden() { ! shown; }

# What the sample daemon was asked ------------------------------------------------------------------
requests() { grep -c '^request ' "${out:?}/daemon.log"; }
asked_more_than() { [ "$(requests)" -gt "$1" ]; }

# Has the popover refresh by its key, until the daemon was asked more than `asked` times: while a refresh shows, another
# one is not begun, and a window manager gives the keyboard when it has time.
refreshed()
{
    asked_more_than "${asked:?}" && return
    key ctrl+r
    wait_for 1 asked_more_than "$asked"
}
