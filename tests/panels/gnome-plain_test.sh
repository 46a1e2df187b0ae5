#!/bin/bash
# gnome-plain_test.sh gnome-plain|gnome-plain-wayland   drives the program where no panel takes its item: on GNOME without
# extensions. Takes more than a minute, for so long the program waits for a panel.
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

# How often the first sender sent it. The shell's own server forwards each notification, so the bus sees it once more.
told()
{
    awk '/^method call/ { sender = $4 }
        /string "Brimwatch is running, but no panel shows it"/ { if (first == "") first = sender; said[sender]++ }
        END { print said[first] + 0 }' "$out/notifications.log"
}
told_once() { [ "$(told)" = 1 ]; }

# Where panels have their items, and off the panel.
in_the_corner()
{
    local x y width
    read -r x y width _ < <(popover_place)
    [ $((x + width)) -le "$screen_width" ] && [ $((x + width)) -ge $((screen_width - 16)) ] && [ "$y" -ge 20 ] && [ "$y" -le 64 ]
}

# The notification's banner drops from the top, in the middle, on a black desktop.
banner_place()
{
    shot now
    convert "$out/pictures/now.png" -fill black -colorize 100 "$out/pictures/black.png"
    largest_difference "$out/pictures/black.png" "$out/pictures/now.png" "$((screen_width / 2))x160+$((screen_width / 4))+32"
}
banner_shown() { [ -n "$(banner_place)" ]; }
# The shell keeps a banner while it believes that nobody is at the screen.
no_banner_shown()
{
    click 60 $((screen_height - 60)) 0
    click 40 $((screen_height - 60)) 0
    ! banner_shown
}

click_banner()
{
    # shellcheck disable=SC2046
    click $(middle_of $(banner_place)) 1
}

# The play ---------------------------------------------------------------------------------------
start_session
shot screen
read -r screen_width screen_height < <(identify -format '%w %h' "$out/pictures/screen.png")
click 40 $((screen_height - 60)) 0

spawn notifications dbus-monitor --session "interface='org.freedesktop.Notifications',member='Notify'"
start_daemon --speed 0 --log
start_program

needed "the program works without a place for its item" wait_for 30 asked_more_than 0
check "it shows nothing by itself" hidden
check "nothing of it is in the panel" nothing_embedded "$program_pid"
check "a second start opens the popover, and ends well" second_start
check "it is shown" wait_for 30 shown
check "in the corner where panels have their items" in_the_corner
shot open
asked=$(requests)
check "it has the keyboard: Ctrl+R refreshes" wait_for 30 refreshed
key Escape
check "Escape closes it" wait_for 30 hidden

# The shell announces something itself as it starts.
needed "the desktop announces nothing now" wait_for 60 no_banner_shown
check "after a minute a notification says what to do" wait_for 120 told_once
check "it is remembered for the session" wait_for 10 test -f "$XDG_RUNTIME_DIR/brimwatch.no-panel-told"
if check "the desktop shows it" wait_for 30 banner_shown; then
    shot notification
    click_banner
    check "a click on it opens the popover" wait_for 30 shown
fi
check "it was said once" told_once
