#!/bin/bash
# panel_test.sh PANEL   drives the program on a real panel with real clicks and looks at the screen. The panel crashes and
# comes back $BRIMWATCH_PANEL_RESTARTS times (default 5).
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

end_program()
{
    end_process "$program_pid"
    program_pid=
}

program_runs() { alive "$program_pid"; }

# The item ---------------------------------------------------------------------------------------
item_is_there_once()
{
    if [ "$protocol" = xembed ]; then
        embedded_once "$program_pid"
    else
        registered_once "$program_pid"
    fi
}

item_is_gone()
{
    if [ "$protocol" = xembed ]; then
        nothing_embedded "$program_pid"
    else
        [ -z "$(registered_items "$program_pid")" ]
    fi
}

published_in_one_way_only()
{
    if [ "$protocol" = xembed ]; then
        embedded_once "$program_pid" && [ -z "$(registered_items "$program_pid")" ]
    else
        registered_once "$program_pid" && { [ -n "${BRIMWATCH_LAYERS:-}" ] || nothing_embedded "$program_pid"; }
    fi
}

registered_under_its_own_name()
{
    dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.NameHasOwner "string:org.kde.StatusNotifierItem-$program_pid-1" | grep -q true
}

# The label --------------------------------------------------------------------------------------
# What is drawn ends before the edges of its place: nothing is cut off there.
nothing_is_clipped() { crop_item && [ "$(coloured_at_edges "$out/pictures/item.png")" = 0 ]; }

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
    if [ -n "${SWAYSOCK:-}" ]; then
        ! swaymsg -t get_tree | grep -qE "\"pid\": $program_pid,?$"
    else
        window_list_is_kept && [ -z "$(managed_windows "$program_pid")" ]
    fi
}

no_window_is_open() { hidden && { [ "$windows" != listed ] || no_window_is_listed; } && [ -z "$(windows_of "$program_pid" toplevel)" ]; }

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

# It begins in the row below the panel with a line, under which is its background.
touches_the_panel()
{
    local x width line below within
    read -r x _ width _ < <(popover_place)
    shot open
    read -r line below within < <(convert "$out/pictures/open.png" -crop "1x9+$((x + width / 2))+$panel_end" +repage -depth 8 \
        txt:- | awk '/^0,[018]:/ { print $3 }' | xargs)
    echo "        the rows below the panel: $line $below ... $within"
    [ "$line" != "$below" ] && [ "$below" = "$within" ]
}

# A click that closed the popover must not open it again, so the program ignores clicks for a
# quarter of a second; a person's next click comes later than that.
past_the_guard() { sleep 0.4; }

# Presses just within its edges, where nothing is to be pressed: they must not count as presses elsewhere. Where it is
# only known from a picture, its shadow cannot be told from it.
click_its_edges()
{
    local x y width height
    [ -z "${BRIMWATCH_LAYERS:-}" ] || return 0
    read -r x y width height < <(popover_place)
    click $((x + 3)) $((y + height / 2))
    click $((x + width - 4)) $((y + 30))
    click $((x + width / 2)) $((y + 4))
    click $((x + width / 4)) $((y + height - 4))
}

# shoot_popover NAME: as it is, wherever it is.
shoot_popover()
{
    # shellcheck disable=SC2046
    shot "$1" "$(geometry_of $(popover_place))"
}

# looks_other_than NAME: more of the popover than the time since the last update.
looks_other_than()
{
    local changed
    shoot_popover keys
    # A number of many digits has an exponent.
    changed=$(compare -metric AE -fuzz 8% "$out/pictures/$1.png" "$out/pictures/keys.png" null: 2>&1)
    [ "$(printf '%.0f' "$changed")" -ge 3000 ]
}

looks_as() { ! looks_other_than "$1"; }

# Coming and going -------------------------------------------------------------------------------
restarts_wanted=${BRIMWATCH_PANEL_RESTARTS:-5}
# What the program may have grown by then, in KiB of what it alone has written to. The allocator keeps some of what was
# freed; a presentation that stays behind costs more than that within a hundred restarts.
growth_allowed=1024

memory() { awk '$1 == "Private_Dirty:" { print $2 }' "/proc/$program_pid/smaps_rollup"; }

restart_panel()
{
    "$script" crash "$session" && "$script" panel "$session" && wait_for 30 item_is_there_once
}

# crash_panel_again_and_again: the first crash is not measured, because it loads what later ones find loaded.
crash_panel_again_and_again()
{
    local i before after
    restart_panel || return
    before=$(memory)
    for ((i = 2; i <= restarts_wanted; ++i)); do
        if ! restart_panel; then
            echo "$desktop: no item after crash $i of the panel"
            return 1
        fi
    done
    after=$(memory)
    echo "$desktop: $restarts_wanted crashes of the panel, memory $before KiB after the first and $after KiB after the last" |
        tee "$out/restarts.txt"
    growth=$((after - before))
}

# A second start that finds no bus: it says why, and leaves the first alone.
a_second_start_finds_the_lock()
{
    timeout 20 "$program" >"$out/second.log" 2>&1 && grep -q '^brimwatch: already running; ' "$out/second.log"
}

has_not_grown() { [ -n "${growth:-}" ] && [ "$growth" -le "$growth_allowed" ]; }

# The play ---------------------------------------------------------------------------------------
CLOCK=off start_session

# shellcheck source=../../tools/desktops/lib/on-panel.sh
. "$root/tools/desktops/lib/on-panel.sh"
look_at_screen

start_daemon --speed 0 --log

shot without
start_program
needed "an item appears" wait_for 30 item_is_there_once
needed "the item has a place on the panel" locate_item
check "it is published in one way only" wait_for 30 published_in_one_way_only
check "the start opens no window" no_window_is_open
[ "$windows" != listed ] || check "the start makes no entry in a taskbar" no_window_is_listed
check "it shows a healthy quota in green" wait_for 30 label_has green
check "it shows a low quota in orange" wait_for 30 label_has orange
[ "$form" != wide ] || check "the label is drawn in its whole width" label_is_wide
# Where the panel draws a wide label itself, or a copy of our window, a clipped one cannot be told from a whole one.
if item_is_a_window || { [ "$form" = badge ] && [ "$protocol" = sni ]; }; then
    check "nothing of the label is cut off" wait_for 30 nothing_is_clipped
fi
[ "$protocol" != sni ] || check "the item has its own name on the bus" registered_under_its_own_name
shot label

click_item 1
if check "a left click opens the popover" wait_for 30 shown; then
    shot open
    check "the popover is on the screen as a whole" on_the_screen
    check "the popover is beside the item" beside_the_item
    [ -z "$panel_end" ] || check "and touches the panel, to the pixel" touches_the_panel
    check "the popover shows the quota" wait_for 30 popover_is_drawn
    check "and no driver of a graphics card was loaded for it" no_driver_is_loaded
    [ "$windows" != listed ] || check "the popover makes no entry in a taskbar" no_window_is_listed
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
    click_its_edges
    check "clicks within its edges leave it open" shown
    asked=$(requests)
    check "it has the keyboard: Ctrl+R refreshes" wait_for 30 refreshed
    shoot_popover dashboard
    key Down
    key Down
    check "the arrows scroll" wait_for 10 looks_other_than dashboard
    key Up
    key Up
    check "back and forth" wait_for 10 looks_as dashboard
    # Past "Refresh" to the gear.
    key Tab
    key Tab
    key Return
    check "Tab and Return open the settings" wait_for 10 looks_other_than dashboard
    shoot_popover settings
    key Escape
    check "Escape goes back to the dashboard" wait_for 10 looks_other_than settings
    check "and leaves the popover open" shown
    key Escape
    check "Escape closes it" wait_for 30 hidden
    past_the_guard
fi

click_item 3
if check "a right click opens it too" wait_for 30 shown; then
    check "on the screen as a whole" on_the_screen
    check "beside the item" beside_the_item
    click 40 $((screen_height - 60))
    check "and a click elsewhere closes it" wait_for 30 hidden
    past_the_guard
fi
if [ -n "${BRIMWATCH_LAYERS:-}" ]; then
    check "after quick toggling it still opens" toggled_in_a_hurry
    key Escape
    check "and closes" wait_for 30 hidden
fi
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

    check "the item is back, once, after each of $restarts_wanted crashes of the panel" crash_panel_again_and_again
    check "the program has not grown by them" has_not_grown
    check "it has a place there still" locate_item
    check "and is published in one way only" wait_for 30 published_in_one_way_only
    click_item 1
    check "and a click still opens the popover" wait_for 30 shown
    key Escape
    wait_for 30 hidden

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
    end_program
fi

# Last, what the session does not come back from.
if [ "$restarts" = yes ]; then
    wait_for 30 item_is_gone
    start_program_to_its_end
    needed "the item appears again" wait_for 30 item_is_there_once
    needed "in its place" locate_item
    if [ "$bus" = unused ]; then
        end_at_once dbus-bus
        click_item 1
        check "without the session bus a click opens the popover still" wait_for 30 shown
        asked=$(requests)
        check "and it refreshes" wait_for 30 refreshed
        key Escape
        wait_for 30 hidden
        check "a second start finds the first without the bus" a_second_start_finds_the_lock
        check "and a panel that comes back has the item, once" restart_panel
        check "which shows the quota" locate_item && wait_for 30 label_has green
    fi
fi
end_at_once "$display"
check "when the display goes, the program ends" wait_for 5 gone "$program_pid"
if [ "$restarts" = yes ]; then
    check "with the status that Qt gives it, not by a crash" has_ended_without_display
    check "and a line that says why" says_why
fi
program_pid=
