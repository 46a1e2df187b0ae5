#!/bin/bash
# changing_test.sh changing   drives the program while panels of several kinds follow each other under it.
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

panel_of_kind() { KIND=$1 "$script" panel "$session"; }

# wide_as WIDTH HEIGHT, square_as WIDTH HEIGHT: of the embedded item.
wide_as() { [ "${1:-0}" -ge $((3 * ${2:-1})) ]; }
square_as() { [ "${1:-0}" -ge 8 ] && [ "${1:-0}" -le $((2 * ${2:-1})) ]; }

embedded_size() { embedded_items "$program_pid" | head -n 1 | cut -d ' ' -f 3,4; }

# shown_as wide|square|registered: the item is shown once, in that form, and in no other.
shown_as()
{
    case $1 in
        wide | square)
            # shellcheck disable=SC2046
            embedded_once "$program_pid" && [ -z "$(registered_items "$program_pid")" ] && "${1}_as" $(embedded_size)
            ;;
        registered) registered_once "$program_pid" && nothing_embedded "$program_pid" ;;
    esac
}

stands_nowhere() { [ -z "$(registered_items "$program_pid")" ] && nothing_embedded "$program_pid"; }

# The play ---------------------------------------------------------------------------------------
NO_PANEL=1 start_session

start_daemon --speed 0
start_program

while read -r kind form; do
    needed "$kind starts" panel_of_kind "$kind"
    check "the item is shown on $kind in the form that suits it" wait_for 30 shown_as "$form"
    if [ "$form" != registered ]; then
        click_embedded
        check "a click on $kind opens the popover" wait_for 30 shown
        key Escape
        check "Escape closes it" wait_for 30 hidden
    fi
    shot "$kind"
    "$script" crash "$session"
    check "without $kind it stands nowhere" wait_for 30 stands_nowhere
done <<'KINDS'
trayer wide
lxqt registered
polybar square
xfce4 wide
trayer wide
KINDS

# Two at a time: the item stays where it is well, and goes on where the other is left.
panel_of_kind trayer
needed "trayer is back" wait_for 30 shown_as wide
first=$(cat "$session/panel.pid")
panel_of_kind lxqt
check "the item stays on trayer when lxqt comes beside it" wait_for 30 shown_as wide
end_process "$first"
check "and is on lxqt when trayer has gone" wait_for 30 shown_as registered
panel_of_kind trayer
check "and on trayer again when that comes back" wait_for 30 shown_as wide
check "the program has run all the while" alive "$program_pid"
