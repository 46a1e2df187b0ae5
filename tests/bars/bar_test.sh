#!/bin/bash
# bar_test.sh BAR   shows the quota in a real bar, by the example for it, and looks at the screen.
#
# BAR is a script of tools/desktops/bars: waybar, i3blocks, polybar, tmux. The programs are those of $BRIMWATCH_BUILD
# (default build/dev). Logs and pictures stay in $BRIMWATCH_BAR_LOGS (default build/bars)/BAR. Prints a line
# a check and `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=bar_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"

bar=${1:-}
script=$root/tools/desktops/bars/$bar.sh
if [ $# != 1 ] || [ ! -x "$script" ]; then
    sed -n '2,6s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2
    exit 2
fi

# What asks again and again asks the daemon itself while no program runs; what watches the program waits for it.
# Some show each number in its colour, others all in that of the lowest. The strip is where the bar is.
case $bar in
    waybar | i3blocks) kind=watches colours=each strip=1280x40+0+0 ;;
    polybar) kind=watches colours=lowest strip=1280x40+0+0 ;;
    tmux) kind=asks colours=lowest strip=1000x32+0+196 ;;
    *) die "it is not known how $bar shows our text" ;;
esac

build=${BRIMWATCH_BUILD:-$root/build/dev}
out=${BRIMWATCH_BAR_LOGS:-$root/build/bars}/$bar
desktop=$bar
# shellcheck source=../support/desktop_test.sh
. "$root/tests/support/desktop_test.sh"
[ -x "$build/src/cli/brimwatchctl" ] || die "$build/src/cli/brimwatchctl is not built"
PATH=$build/src/cli:$PATH

quota()
{
    cat >"$out/quota.part" <<JSON
{ "response": { "groups": [ { "displayName": "Gemini Models", "buckets": [
    { "bucketId": "gemini-5h", "displayName": "Five-hour limit", "window": "5h", "remainingFraction": $1 },
    { "bucketId": "gemini-week", "displayName": "Weekly limit", "window": "weekly", "remainingFraction": $2 } ] } ] } }
JSON
    mv "$out/quota.part" "$out/quota.json"
}

has() { [ "$(coloured_pixels "$out/pictures/now.png" "$1")" -ge 8 ]; }
lacks() { [ "$(coloured_pixels "$out/pictures/now.png" "$1")" = 0 ]; }

shows() { shot now "$strip" && has "$1"; }
shows_no_health() { shot now "$strip" && differ "$out/pictures/empty.png" "$out/pictures/now.png" && lacks green && lacks orange && lacks red; }
shows_both() { shot now "$strip" && has "$1" && has "$2"; }

answers() { [ "$(brimwatchctl status --template '{source}' 2>/dev/null)" = "$1" ]; }

# The play ---------------------------------------------------------------------------------------
NO_PANEL=1 start_session
shot empty "$strip"
"$script" panel "$session" || die "$bar does not start, logs in $session/log"

[ "$kind" = asks ] || check "without the program it shows no number, in grey" wait_for 30 shows_no_health
shot offline

quota 0.9 0.4
start_daemon --summary "$out/quota.json"
if [ "$kind" = asks ]; then
    check "without the program it shows what the daemon says" wait_for 30 shows orange
    shot without-program
fi
start_program
needed "the program runs" wait_for 30 answers program
if [ "$colours" = lowest ]; then
    check "it shows the lowest quota in its colour" wait_for 30 shows orange
else
    check "it shows each quota in its colour" wait_for 30 shows_both green orange
fi
shot running

quota 0.9 0.05
check "a refresh ends well" brimwatchctl refresh
check "and a quota that has become critical turns red" wait_for 30 shows red
shot critical
shot without

brimwatchctl toggle
check "toggle opens the popover" wait_for 30 shown
shot popover
brimwatchctl toggle
check "and closes it" wait_for 30 hidden

if [ "$kind" = watches ]; then
    end_process "$program_pid"
    check "when the program ends, its numbers lose their colour" wait_for 30 shows_no_health
    "$program" >>"$out/program.log" 2>&1 &
    program_pid=$!
    disown
    check "and have it again when it is back" wait_for 30 shows red
fi
