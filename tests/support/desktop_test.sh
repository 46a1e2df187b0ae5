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
label=$desktop
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
clean_up() { "$script" stop "$session"; }
check_failed() { shot "failed-$failed"; }
logs_are() { echo "Logs and pictures of $desktop: $out"; }

shot() { "$root/tools/panels/shot.sh" "$out/pictures/$1.png" ${2:+"$2"} 2>>"$out/shot.log" || true; }
click() { "$root/tools/panels/click.sh" "$@"; }
key() { "$root/tools/panels/key.sh" "$@"; }

# start_session: the desktop, in whose session everything is from then on; with NO_PANEL=1 without its panel.
start_session()
{
    "$script" start "$session" ${NO_PANEL:+--no-panel} >/dev/null 2>"$out/session.log" || {
        cat "$out/session.log" >&2
        die "$desktop does not start, logs in $session/log"
    }
    # shellcheck source=/dev/null
    . "$session/env"
    HELPERS=$("$root/tools/panels/helpers.sh")
    PANELS=$root/tools/panels
    # shellcheck source=../../tools/panels/item.sh
    . "$root/tools/panels/item.sh"
}

start_daemon() # start_daemon OPTION...
{
    "$daemon" "$@" >"$out/daemon.log" 2>&1 &
    daemon_pid=$!
    disown
    wait_for 30 grep -q '^ready ' "$out/daemon.log" || die "the sample daemon did not start, see $out/daemon.log"
}

start_program()
{
    "$program" >>"$out/program.log" 2>&1 &
    program_pid=$!
    disown
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
