#!/bin/bash
# panel_test.sh PANEL   drives the program on a real panel with real clicks and looks at the screen.
#
# PANEL is a script of tools/panels: xfce4, trayer, mate, lxqt, sway, plasma, gnome. The program and the
# sample daemon are those of $BRIMWATCH_BUILD (default build/dev). Logs and pictures stay in
# $BRIMWATCH_PANEL_LOGS (default build/panels)/PANEL. Prints a line a check and `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=panel_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"

panel=${1:-}
script=$root/tools/panels/$panel.sh
if [ $# != 1 ] || [ ! -x "$script" ]; then
    sed -n '2,6s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2
    exit 2
fi

# How the item is drawn there, and what its panel can do.
case $panel in
    xfce4 | trayer | mate) protocol=xembed form=wide restarts=yes ;;
    gnome) protocol=xembed form=wide restarts=no ;;
    lxqt | plasma) protocol=sni form=badge restarts=yes ;;
    sway) protocol=sni form=wide restarts=yes ;;
    *) die "it is not known how $panel shows our item" ;;
esac

build=${BRIMWATCH_BUILD:-$root/build/dev}
out=${BRIMWATCH_PANEL_LOGS:-$root/build/panels}/$panel
desktop=$panel
# shellcheck source=../support/desktop_test.sh
. "$root/tests/support/desktop_test.sh"

start_program()
{
    "$program" >>"$out/program.log" 2>&1 &
    program_pid=$!
    disown
}

end_program()
{
    end_process "$program_pid"
    program_pid=
}

program_runs() { alive "$program_pid"; }

requests() { grep -c '^request ' "$out/daemon.log"; }
asked_more_than() { [ "$(requests)" -gt "$1" ]; }

# Where the item is -------------------------------------------------------------------------------
# On panels that draw the item themselves, it is what changed on the screen since the picture `without`.
drawn_item()
{
    shot now
    largest_difference "$out/pictures/without.png" "$out/pictures/now.png" "$panel_strip"
}

# The same twice in a row: a panel may still be laying out.
item_settled()
{
    local first second
    first=$(item_place) && second=$(item_place) && [ -n "$first" ] && [ "$first" = "$second" ]
}

item_place()
{
    local place
    if [ "$protocol" = xembed ] && [ "$panel" != gnome ]; then
        place=$(embedded_items "$program_pid" | head -n 1)
    else
        place=$(drawn_item)
    fi
    # shellcheck disable=SC2086
    set -- $place
    [ $# = 4 ] && [ "$3" -ge 8 ] && [ "$4" -ge 8 ] || return
    # What is much wider than high on a panel of square icons is not ours alone.
    [ "$form" = wide ] || [ "$3" -le $((2 * $4)) ] || return
    echo "$place"
}

# locate_item: remembers where it is. The pointer goes away first: a panel lights up what it is over.
locate_item()
{
    click 40 $((screen_height - 60)) 0
    wait_for 30 item_settled && place_of_item=$(item_place)
}

item_is_there_once()
{
    if [ "$protocol" = xembed ]; then
        embedded_once "$program_pid"
    else
        registered_once
    fi
}

item_is_gone()
{
    if [ "$protocol" = xembed ]; then
        nothing_embedded "$program_pid"
    else
        [ -z "$(registered_items)" ]
    fi
}

published_in_one_way_only()
{
    if [ "$protocol" = xembed ]; then
        embedded_once "$program_pid" && [ -z "$(registered_items)" ]
    else
        registered_once && { [ "$panel" = sway ] || nothing_embedded "$program_pid"; }
    fi
}

registered_under_its_own_name()
{
    dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.NameHasOwner "string:org.kde.StatusNotifierItem-$program_pid-1" | grep -q true
}

# The label --------------------------------------------------------------------------------------
crop_item()
{
    # shellcheck disable=SC2086
    shot item "$(geometry_of $place_of_item)"
}

label_has() { crop_item && [ "$(coloured_pixels "$out/pictures/item.png" "$1")" -ge 8 ]; }

label_is_wide()
{
    # shellcheck disable=SC2086
    set -- $place_of_item
    [ "$3" -ge $((3 * $4)) ]
}

# The popover ------------------------------------------------------------------------------------
# What a taskbar or a window switcher would show.
no_window_is_listed()
{
    if [ "$panel" = sway ]; then
        ! swaymsg -t get_tree | grep -qE "\"pid\": $program_pid,?$"
    else
        window_list_is_kept && [ -z "$(managed_windows "$program_pid")" ]
    fi
}

no_window_is_open() { hidden && no_window_is_listed && [ -z "$(windows_of "$program_pid" toplevel)" ]; }

click_item() # click_item BUTTON
{
    # shellcheck disable=SC2046,SC2086
    click $(middle_of $place_of_item) "$1"
}

# For one second after it closed; a panel that sends the same click twice would open it again.
stays_hidden()
{
    wait_for 30 hidden || return 1
    ! wait_for 1 shown
}

on_the_screen()
{
    local x y width height
    read -r x y width height < <(popover_place)
    [ "$x" -ge 0 ] && [ "$y" -ge 0 ] && [ $((x + width)) -le "$screen_width" ] && [ $((y + height)) -le "$screen_height" ]
}

# It overlaps the item's columns, or touches the edge of the screen beside them, and begins at the panel.
beside_the_item()
{
    local x y width height ix iy iw ih
    read -r x y width height < <(popover_place)
    read -r ix iy iw ih <<<"$place_of_item"
    [ "$x" -le $((ix + iw)) ] && [ $((x + width)) -ge "$ix" ] && [ "$y" -ge $((iy - 2)) ] && [ "$y" -le $((iy + ih + 48)) ]
}

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

# A click that closed the popover must not open it again, so the program is deaf for a quarter of a
# second; a person's next click comes later than that.
past_the_guard() { sleep 0.4; }

# The play ---------------------------------------------------------------------------------------
CLOCK=off "$script" start "$session" >/dev/null 2>"$out/session.log" || {
    cat "$out/session.log" >&2
    die "$panel does not start, logs in $session/log"
}
# shellcheck source=/dev/null
. "$session/env"
HELPERS=$("$root/tools/panels/helpers.sh")
PANELS=$root/tools/panels
# shellcheck source=../../tools/panels/item.sh
. "$root/tools/panels/item.sh"

shot screen
read -r screen_width screen_height < <(identify -format '%w %h' "$out/pictures/screen.png")
# Panels are at the top and hold the tray on their right; GNOME announces things in the middle.
panel_strip=$((screen_width / 3))x40+$((screen_width - screen_width / 3))+0

"$daemon" --speed 0 --log >"$out/daemon.log" 2>&1 &
daemon_pid=$!
disown
wait_for 30 grep -q '^ready ' "$out/daemon.log" || die "the sample daemon did not start, see $out/daemon.log"

shot without
start_program
needed "an item appears" wait_for 30 item_is_there_once
needed "the item has a place on the panel" locate_item
check "it is published in one way only" wait_for 30 published_in_one_way_only
check "the start opens no window" no_window_is_open
check "the start makes no entry in a taskbar" no_window_is_listed
check "it shows a healthy quota in green" wait_for 30 label_has green
check "it shows a low quota in orange" wait_for 30 label_has orange
[ "$form" != wide ] || check "the label is drawn in its whole width" label_is_wide
[ "$protocol" != sni ] || check "the item has its own name on the bus" registered_under_its_own_name
shot label

click_item 1
if check "a left click opens the popover" wait_for 30 shown; then
    shot open
    check "the popover is on the screen as a whole" on_the_screen
    check "the popover is beside the item" beside_the_item
    check "the popover shows the quota" wait_for 30 popover_is_drawn
    check "the popover makes no entry in a taskbar" no_window_is_listed
    click 40 $((screen_height - 60))
    check "a click elsewhere closes it" wait_for 30 hidden
    past_the_guard
    click_item 1
    check "the next click opens it again" wait_for 30 shown
    click_item 1
    check "a click on the item closes it, and it stays closed" stays_hidden
    past_the_guard
    click_item 1
    check "after that a click opens it" wait_for 30 shown
    key Escape
    check "Escape closes it" wait_for 30 hidden
    past_the_guard
fi

click_item 3
check "a right click opens it too" wait_for 30 shown
key Escape
check "and Escape closes it" wait_for 30 hidden
needed "the program has run all the while" program_runs

if [ "$restarts" = yes ]; then
    "$script" unpanel "$session"
    "$script" panel "$session"
    check "the item is back, once, after the panel was restarted" wait_for 30 item_is_there_once
    check "and has a place there again" locate_item
    check "it is still published in one way only" wait_for 30 published_in_one_way_only
    click_item 1
    check "and a click opens the popover" wait_for 30 shown
    key Escape
    wait_for 30 hidden
    shot restarted

    end_program
    check "the item goes with the program" wait_for 30 item_is_gone
    "$script" unpanel "$session"
    asked=$(requests)
    start_program
    needed "the program works without a panel" wait_for 30 asked_more_than "$asked"
    check "and waits for one" program_runs
    "$script" panel "$session"
    check "the item appears on a panel that comes later" wait_for 30 item_is_there_once
    check "and has a place there" locate_item
fi
