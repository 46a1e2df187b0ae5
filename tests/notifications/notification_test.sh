#!/bin/bash
# notification_test.sh SERVER   lets quota fall low before a real notification server and looks at what it shows.
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

# What a user does to follow an alert, which the server's script says in terms of the alert's place.
click_x='' click_y='' click_button=''
eval "$("$script" facts)"
[ -n "$click_button" ] || die "$script does not say how it is clicked"
# shellcheck disable=SC2034
click_alert() # click_alert X Y WIDTH HEIGHT
{
    local x=$1 y=$2 width=$3 height=$4
    click $((click_x)) $((click_y)) "$click_button"
}

program_runs() { alive "$program_pid"; }

# quota FIVE_HOURS WEEK: what the daemon answers from now on. The name shows what a server makes of markup.
quota()
{
    cat >"$out/quota.part" <<JSON
{ "response": { "groups": [ { "displayName": "Gemini Models", "buckets": [
    { "bucketId": "gemini-5h", "displayName": "Five-hour limit", "window": "5h", "remainingFraction": $1 },
    { "bucketId": "gemini-week", "displayName": "Weekly <b>&</b> shared limit", "window": "weekly", "remainingFraction": $2 } ] } ] } }
JSON
    mv "$out/quota.part" "$out/quota.json"
}

# What went over the bus -------------------------------------------------------------------------
# alerts: one line a notification that the program sent: REPLACES ID TITLE. ID is what the server answered, 0 before.
alerts()
{
    awk '
        function field(name,    text) { text = $0; if (!sub(".* " name "=", "", text)) return ""; sub(/[ ;].*/, "", text); return text }
        /^[a-z]/ { argument = 0; in_call = 0; answered = "" }
        /^method call .*member=Notify$/ { in_call = 1; number = field("sender") " " field("serial"); order[++n] = number; next }
        /^method return / { answered = field("destination") " " field("reply_serial"); next }
        in_call && /^   [a-z]/ {
            argument++
            if (argument == 2) replaces[number] = $2
            if (argument == 4) { text = $0; sub(/^ *string "/, "", text); sub(/"$/, "", text); title[number] = text }
        }
        answered in title && /^   uint32 / { id[answered] = $2 }
        END { for (i = 1; i <= n; i++) print replaces[order[i]], id[order[i]] + 0, title[order[i]] }' "$out/bus.log"
}

# All that were sent have an answer.
alerted() { [ "$(alerts | awk '$2 > 0' | wc -l)" -ge "$1" ]; }
alerted_exactly() { [ "$(alerts | wc -l)" = "$1" ]; }

has_alert() { alerts | grep -qE "$1"; }

# one_took_the_older_ones_place: of the second pair, those not closed meanwhile carry the number of the first one.
one_took_the_older_ones_place()
{
    alerts | awk '
        NR <= 2 { first[NR] = $2 }
        NR > 2 && $1 > 0 { if ($1 != first[1] && $1 != first[2]) bad = 1; replacing++; if ($2 != $1) bad = 1 }
        END { exit !(NR == 4 && replacing == 1 && !bad) }'
}

# What is on the screen --------------------------------------------------------------------------
# The place of the largest thing that the server shows.
shown_alert()
{
    shot now
    largest_difference "$out/pictures/without.png" "$out/pictures/now.png" "$screen"
}

# The same twice in a row, and large enough for a sentence.
alert_settled()
{
    local first second
    first=$(shown_alert) && second=$(shown_alert) && [ -n "$first" ] && [ "$first" = "$second" ] || return
    # shellcheck disable=SC2086
    set -- $first
    [ "$3" -ge 150 ] && [ "$4" -ge 30 ] && place=$first
}

# The play ---------------------------------------------------------------------------------------
start_session

spawn bus dbus-monitor --session "interface='org.freedesktop.Notifications'" "type='method_return'"
# Its first line is about itself.
wait_for 30 test -s "$out/bus.log" || die "dbus-monitor does not run, see $out/bus.log"
shot without
screen=$(identify -format '%wx%h+0+0' "$out/pictures/without.png")

quota 0.081 0.125
start_daemon --summary "$out/quota.json" --log
start_program

needed "quota that is low is announced" wait_for 30 alerted 2
check "each bucket on its own" has_alert '^0 [0-9]+ Brimwatch Alert: 8\.1% Remaining$'
check "with its share" has_alert '^0 [0-9]+ Brimwatch Alert: 12\.5% Remaining$'
needed "the server shows it" wait_for 30 alert_settled
shot alerts
# shellcheck disable=SC2046,SC2086
shot alert "$(geometry_of $place)"

# shellcheck disable=SC2086
click_alert $place
needed "a click on it opens the popover" wait_for 30 shown
shot popover

quota 0.9 0.9
asked=$(requests)
needed "the popover has the keyboard" wait_for 30 refreshed
quota 0.031 0.042
asked=$(requests)
needed "and refreshes again" wait_for 30 refreshed
check "the next fall is announced" wait_for 30 alerted 4
check "in the place of the alert that was still shown" one_took_the_older_ones_place
key Escape
check "Escape closes the popover" wait_for 30 hidden
check "the server shows the newer ones" wait_for 30 alert_settled
shot again
check "nothing else was announced" alerted_exactly 4
check "the program has run all the while" program_runs
