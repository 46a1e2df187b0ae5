#!/bin/bash
# screens-x11_test.sh screens-x11   drives the program on X11 with two monitors of unequal size, and on a small one. A panel
# stands at each edge of each monitor in turn.
session_of=trayer
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

panel_size=32
# What is left of it to windows: `free LEFT TOP RIGHT BOTTOM`, the last two behind its last pixel.
panel_at() # panel_at EDGE MONITOR LEFT TOP RIGHT BOTTOM: of that monitor
{
    edge=$1 free=("$3" "$4" "$5" "$6")
    case $edge in
        left) free[0]=$((free[0] + panel_size)) ;;
        top) free[1]=$((free[1] + panel_size)) ;;
        right) free[2]=$((free[2] - panel_size)) ;;
        bottom) free[3]=$((free[3] - panel_size)) ;;
    esac
    WIDTH_TYPE=percent PANEL_SIZE=$panel_size PANEL_POS=$edge MONITOR=$2 "$script" panel "$session" && wait_for 30 embedded_once "$program_pid"
}

# Any window of its own outside of panels: on a small screen the popover is smaller than elsewhere.
window_place() { windows_of "$program_pid" toplevel | head -n 1; }
window_shown() { [ -n "$(window_place)" ]; }
window_hidden() { ! window_shown; }

within() # within LEFT TOP RIGHT BOTTOM
{
    local x y width height
    read -r x y width height < <(window_place)
    [ "$x" -ge "$1" ] && [ "$y" -ge "$2" ] && [ $((x + width)) -le "$3" ] && [ $((y + height)) -le "$4" ]
}

# It touches the panel, and has the item before it along the panel.
at_the_item()
{
    local x y width height ix iy iw ih
    read -r x y width height < <(window_place)
    read -r ix iy iw ih < <(embedded_items "$program_pid" | head -n 1)
    case $edge in
        left) [ "$x" = "${free[0]}" ] ;;
        top) [ "$y" = "${free[1]}" ] ;;
        right) [ $((x + width)) = "${free[2]}" ] ;;
        bottom) [ $((y + height)) = "${free[3]}" ] ;;
    esac || return
    case $edge in
        left | right) [ "$y" -le $((iy + ih)) ] && [ $((y + height)) -ge "$iy" ] ;;
        *) [ "$x" -le $((ix + iw)) ] && [ $((x + width)) -ge "$ix" ] ;;
    esac
}

monitors_are() { [ "$(xrandr --listmonitors | head -n 1)" = "Monitors: $1" ]; }

the_wheel_scrolls_it()
{
    local place
    place=$(window_place)
    # shellcheck disable=SC2046,SC2086
    shot before "$(geometry_of $place)"
    # shellcheck disable=SC2046,SC2086
    click $(middle_of $place) 5
    wait_for 10 scrolled_in "$place"
}

scrolled_in()
{
    # shellcheck disable=SC2046,SC2086
    shot after "$(geometry_of $1)"
    differ "$out/pictures/before.png" "$out/pictures/after.png"
}

# The play ---------------------------------------------------------------------------------------
NO_PANEL=1 SIZE=2560x1440 start_session

{
    xrandr --setmonitor left 1280/340x1440/380+0+0 screen
    xrandr --setmonitor right 1280/340x720/190+1280+0 none
} >/dev/null
needed "there are two monitors" monitors_are 2

start_daemon --speed 0
start_program

left=(0 0 1280 1440) right=(1280 0 2560 720)
for monitor in left right; do
    declare -n place=$monitor
    number=0
    [ $monitor = left ] || number=1
    for edge in top bottom left right; do
        where="$edge of the $monitor monitor"
        needed "a panel at the $where has the item" panel_at $edge $number "${place[@]}"
        click_embedded
        if check "a click there opens the popover" wait_for 30 window_shown; then
            check "at the item, where the panel ends" at_the_item
            check "on what is left of that monitor" within "${free[@]}"
            shot "$monitor-$edge"
            key Escape
            wait_for 30 window_hidden
        fi
        "$build/src/cli/brimwatchctl" toggle
        if check "opened without a click" wait_for 30 window_shown; then
            check "it stands there as well" at_the_item
            click $((place[0] + 500)) $((place[1] + 100))
            check "a click elsewhere closes it" wait_for 30 window_hidden
        fi
        "$script" crash "$session"
        wait_for 30 nothing_embedded "$program_pid"
    done
done

needed "a panel on the right monitor has the item" panel_at top 1 "${right[@]}"
click_embedded
needed "a click opens the popover" wait_for 30 window_shown
xrandr --delmonitor right
check "the popover goes with its monitor" wait_for 30 window_hidden
# The panel does not know yet, and the item is where nobody sees it.
"$build/src/cli/brimwatchctl" toggle
check "opened again" wait_for 30 window_shown
check "it is on the monitor that is left" within "${left[@]}"
key Escape
wait_for 30 window_hidden
"$script" crash "$session"
wait_for 30 nothing_embedded "$program_pid"

xrandr --delmonitor left
xrandr --setmonitor small 640/170x400/105+0+0 screen >/dev/null
needed "a panel on a small monitor has the item" panel_at top 0 0 0 640 400
click_embedded
if check "a click opens the popover" wait_for 30 window_shown; then
    check "on what is left of the monitor" within "${free[@]}"
    check "where the panel ends" at_the_item
    check "and what has no room scrolls" the_wheel_scrolls_it
    shot small
    key Escape
    check "Escape closes it" wait_for 30 window_hidden
fi
check "the program has run all the while" alive "$program_pid"
