#!/bin/bash
# weston_test.sh weston   drives the program on a Wayland compositor with neither a layer shell nor Xwayland nor a place for
# items: the popover is a plain window there, where the compositor wants it.
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

# Weston places windows at random.
click_elsewhere()
{
    local x
    read -r x _ _ _ < <(popover_place)
    if [ "$x" -gt 80 ]; then
        click 40 $((screen_height / 2))
    else
        click $((screen_width - 40)) $((screen_height / 2))
    fi
}

# A picture may be taken between two frames: then there is no popover in it.
place_is_seen() { place=$(popover_place); }
click_within()
{
    local place=''
    # shellcheck disable=SC2046,SC2086
    wait_for 30 place_is_seen && click $(middle_of $place)
}

# The play ---------------------------------------------------------------------------------------
start_session
shot screen
read -r screen_width screen_height < <(identify -format '%w %h' "$out/pictures/screen.png")
# Weston inside an X server follows the pointer by its motions alone, and may have missed where it began: in a corner both agree.
click $((screen_width - 1)) $((screen_height - 1)) 0
click 0 0 0
click 40 $((screen_height - 60))
shot without
start_daemon --speed 0 --log
start_program_to_its_end

needed "the program works without a place for its item" wait_for 30 asked_more_than 0
check "it shows nothing by itself" hidden
check "a second start opens the popover, and ends well" second_start
check "it is shown" wait_for 30 shown
check "with the quota" wait_for 30 popover_is_drawn
check "and no driver of a graphics card was loaded for it" no_driver_is_loaded
shot open
asked=$(requests)
check "it has the keyboard: Ctrl+R refreshes" wait_for 30 refreshed
click_within
check "a click within leaves it open" wait_for 5 shown
key Escape
check "Escape closes it" wait_for 30 hidden

"$ctl" toggle
check "brimwatchctl opens it" wait_for 30 shown
click_elsewhere
check "a click on another window closes it" wait_for 30 hidden
check "after quick toggling it still opens" toggled_in_a_hurry
"$ctl" toggle
check "and closes" wait_for 30 hidden
"$ctl" settings
check "brimwatchctl opens the settings" wait_for 30 shown
shot settings
"$ctl" toggle
check "and closes them" wait_for 30 hidden

end_at_once weston
check "when the compositor goes, the program ends" wait_for 5 gone "$program_pid"
check "with the status that Qt gives it, not by a crash" has_ended_without_display
check "and a line that says why" says_why
program_pid=
