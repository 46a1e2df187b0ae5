# shellcheck shell=bash
# A test of the program on a real desktop, step by step; sourced by KIND/..._test.sh, whose only argument is the desktop's name: a
# script of tools/desktops/KIND, or `session_of` names one, set before. The programs are those of $BRIMWATCH_BUILD (default
# build/dev). Logs and pictures stay in $BRIMWATCH_LOGS (default build)/KIND/NAME. Prints a line a check and
# `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=$(basename "$0" .sh)
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"

kind=$(basename "$(cd "$(dirname "$0")" && pwd)") desktop=${1:-}
script=$root/tools/desktops/$kind/${session_of:-$desktop}.sh
if [ $# != 1 ] || [ ! -x "$script" ]; then
    say "usage: $PROGRAM.sh NAME, one of tools/desktops/$kind"
    exit 2
fi
build=${BRIMWATCH_BUILD:-$root/build/dev}
out=${BRIMWATCH_LOGS:-$root/build}/$kind/$desktop
program=$build/src/app/brimwatch
ctl=$build/src/cli/brimwatchctl
for file in "$program" "$ctl" "$build/tools/sample-daemon/brimwatch-sample-daemon"; do
    [ -x "$file" ] || die "$file is not built"
done
rm -rf "$out"
mkdir -p "$out/pictures"
out=$(cd "$out" && pwd)
session=$out/session
label=$desktop logs=$out
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
# shellcheck source=../../tools/desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"
clean_up() { "$script" stop "$session"; }
check_failed() { shot "failed-$failed"; }
# Where a test runs unattended, nothing but what it printed is left: so the ends of the logs are told as well.
logs_are()
{
    local log
    echo "Logs and pictures of $desktop: $out"
    for log in "$out"/*.log "$session"/log/*.log; do
        [ -s "$log" ] || continue
        printf -- '--- the end of %s\n' "${log#"$out/"}"
        tail -n 12 "$log" | cut -c1-300
    done
}

shot() { "$root/tools/desktops/lib/shot.sh" "$out/pictures/$1.png" ${2:+"$2"} 2>>"$out/shot.log" || true; }
click() { "$root/tools/desktops/lib/click.sh" "$@"; }
key() { "$root/tools/desktops/lib/key.sh" "$@"; }

# start_session: the desktop; with NO_PANEL=1 without its panel.
start_session() { enter_desktop "$script" "$session" ${NO_PANEL:+--no-panel}; }
start_daemon() { start_sample_daemon "$build" "$@"; }

start_program()
{
    "$program" >>"$out/program.log" 2>&1 &
    program_pid=$!
    disown
}

# A second start, which opens the popover of the first.
second_start() { timeout 30 "$program" 2>"$out/second.log" && grep -q 'its popover is open now' "$out/second.log"; }

# Opened and closed faster than anybody can, it still opens.
toggled_in_a_hurry()
{
    local i
    for ((i = 0; i < 40; ++i)); do timeout 30 "$ctl" toggle || return; done
    second_start && wait_for 30 popover_is_drawn
}

# start_program_to_its_end: as a child of ours, whose status is asked for when it has ended.
start_program_to_its_end()
{
    "$program" >"$out/ended.log" 2>&1 &
    program_pid=$!
}

# As Qt ends a program whose display is gone: with 1, and on Wayland with -1 from some version between 6.4 and 6.8 on.
has_ended_without_display()
{
    local status=0
    wait "$program_pid" 2>/dev/null || status=$?
    [ "$status" = 1 ] || [ "$status" = 255 ]
}

# It said that its display had gone.
says_why() { grep -qE '^The (X11|Wayland) connection broke' "$out/ended.log"; }

# end_at_once NAME: ends a program of the session without a word to it, NAME being what it was spawned as.
end_at_once()
{
    local pid
    pid=$(cat "$session/$1.pid")
    kill -9 "$pid" && wait_for 10 gone "$pid"
}

# An item that is a window of our own: the same before and after the pointer has gone away, as a panel may still be laying out.
embedded_place_settled()
{
    place_of_item=$(embedded_items "$program_pid" | head -n 1)
    click 40 360 0
    [ -n "$place_of_item" ] && [ "$place_of_item" = "$(embedded_items "$program_pid" | head -n 1)" ]
}

click_embedded()
{
    wait_for 30 embedded_place_settled
    # shellcheck disable=SC2046,SC2086
    click $(middle_of $place_of_item) 1
}

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

popover_is_drawn()
{
    local place
    place=$(popover_place)
    # shellcheck disable=SC2046,SC2086
    shot popover "$(geometry_of $place)"
    [ "$(identify -format %k "$out/pictures/popover.png")" -ge 40 ] &&
        [ "$(coloured_pixels "$out/pictures/popover.png" green)" -ge 40 ] &&
        [ "$(coloured_pixels "$out/pictures/popover.png" orange)" -ge 40 ]
}

# Each costs tens of MiB, and the popover is drawn without.
no_driver_is_loaded() { [ -r "/proc/$program_pid/maps" ] && ! grep -qE '/(libLLVM|libEGL_|libGLX_|dri/)' "/proc/$program_pid/maps"; }

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
