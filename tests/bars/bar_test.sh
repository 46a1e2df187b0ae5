#!/bin/bash
# bar_test.sh BAR   shows the quota in a real bar, by the example for it, and looks at the screen.
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

# The bar's script says what it does: what `asks` again and again asks the daemon itself while no program runs, what `watches`
# the program waits for it. Some have `colors` for each number, others that of the lowest for all. The `strip` is where the bar
# is.
mode='' colors='' strip=''
eval "$("$script" facts)"
[ -n "$mode" ] || die "$script does not say how it shows our text"
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
"$script" panel "$session" || die "$desktop does not start, logs in $session/log"

[ "$mode" = asks ] || check "without the program it shows no number, in grey" wait_for 30 shows_no_health
shot offline

quota 0.9 0.4
start_daemon --summary "$out/quota.json"
if [ "$mode" = asks ]; then
    check "without the program it shows what the daemon says" wait_for 30 shows orange
    shot without-program
fi
start_program
needed "the program runs" wait_for 30 answers program
if [ "$colors" = lowest ]; then
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

timeout 30 brimwatchctl toggle
check "toggle opens the popover" wait_for 30 shown
shot popover
timeout 30 brimwatchctl toggle
check "and closes it" wait_for 30 hidden

if [ "$mode" = watches ]; then
    end_process "$program_pid"
    check "when the program ends, its numbers lose their colour" wait_for 30 shows_no_health
    "$program" >>"$out/program.log" 2>&1 &
    program_pid=$!
    disown
    check "and have it again when it is back" wait_for 30 shows red
fi
