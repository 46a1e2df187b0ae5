#!/bin/bash
# instructions.sh BUILD WORK   what the release build in BUILD executes, in millions of instructions: a line `NAME|MILLIONS` for each
# of the steps below. WORK is a folder that holds the tray host and takes what is written.
#
# Counted by callgrind on a private display, bus and home, against the sample daemon; they do not depend on what else runs.
# Needs the packages of the purpose `benchmarks`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
PROGRAM=benchmarks/instructions.sh
# shellcheck source=../tools/lib/common.sh
. "$here/../tools/lib/common.sh"

inside=''
if [ "${1:-}" = --inside ]; then
    inside=1
    shift
fi
[ $# = 2 ] || die "usage: instructions.sh BUILD WORK"
build=$1 work=$2
ctl=$build/src/cli/brimwatchctl
profile=$work/instructions.callgrind

if [ -z "$inside" ]; then
    export MEASURE_HOME=$work/instructions-home
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_STATE_HOME XDG_CURRENT_DESKTOP QT_QPA_PLATFORM
    rm -rf "$MEASURE_HOME" "$profile".*
    mkdir -p "$MEASURE_HOME/.config/brimwatch"
    # The shortest interval there is.
    printf '[General]\nrefreshInterval=10\n' >"$MEASURE_HOME/.config/brimwatch/brimwatch.conf"
    # The same text at each run: times far ahead, so that countdowns keep their length.
    for family in Gemini Claude; do
        printf '{"displayName":"%s","description":"","buckets":[' "$family"
        printf '{"bucketId":"%s-5h","displayName":"Five-hour limit","window":"5h","remainingFraction":0.64,"resetTime":"2099-01-01T12:00:00Z"},' "$family"
        printf '{"bucketId":"%s-week","displayName":"Weekly limit","window":"weekly","remainingFraction":0.81,"resetTime":"2099-01-01T12:00:00Z"}]},' "$family"
    done | { printf '{"response":{"groups":['; sed 's/,$//'; printf ']}}'; } >"$work/usual.json"
    # As large as an answer may be, nearly.
    awk 'BEGIN {
        printf "{\"response\":{\"groups\":["
        for (g = 0; g < 60; g++) {
            printf "%s{\"displayName\":\"Group %d\",\"buckets\":[", g ? "," : "", g
            for (b = 0; b < 100; b++)
                printf "%s{\"bucketId\":\"bucket-%d-%d\",\"displayName\":\"A limit of some name, number %d of group %d\",\"window\":\"5h\",\"remainingFraction\":0.%03d,\"resetTime\":\"2099-01-01T12:00:00Z\"}", b ? "," : "", g, b, b, g, (g * 100 + b) % 1000
            printf "]}"
        }
        printf "]}}"
    }' >"$work/large.json"
    cp "$work/usual.json" "$work/summary.json"
    "$here/measure.sh" -x -T "$work/trayhost --xembed" -r tray -t 300 -n 1 -i 0 -w 0 \
        -a "'$here/instructions.sh' --inside '$build' '$work'" \
        -- valgrind --tool=callgrind --callgrind-out-file="$profile" "$build/src/app/brimwatch" >"$work/instructions.log" 2>&1 || {
        tail -n 20 "$work/instructions.log" >&2
        die "counting failed"
    }
    cat "$work/instructions.rows"
    exit
fi

program=${MEASURED_PID:?}
: >"$work/instructions.rows"
processor_time() { cat "/proc/$program"/task/*/schedstat | awk '{ s += $1 } END { printf "%.0f\n", s / 1e6 }'; }

# quiet: waits until the program has computed nothing for half a second.
quiet()
{
    local last=-1 now still=0
    while [ "$still" -lt 5 ]; do
        now=$(processor_time)
        if [ "$((now - last))" -le 1 ]; then still=$((still + 1)); else still=0; fi
        last=$now
        sleep 0.1
    done
}

dumps=0
# count NAME [TIMES]: what was executed since the last time is that step; without a name it is nothing's.
count()
{
    callgrind_control -d "$program" >>"$work/instructions.control" 2>&1
    dumps=$((dumps + 1))
    wait_for 60 grep -q '^totals:' "$profile.$dumps" || die "callgrind has written no counts"
    [ $# -gt 0 ] || return 0
    sed -n 's/^totals: *//p' "$profile.$dumps" | awk -v name="$1" -v times="${2:-1}" '{ printf "%s|%.3f\n", name, $1 / 1e6 / times }' \
        >>"$work/instructions.rows"
}

requests() { grep -c '^request' "$work/instructions.daemon"; }
at_least() { [ "$(requests)" -ge "$1" ]; }
# next_requests N: waits for so many more requests, and for what follows them.
next_requests()
{
    wait_for 120 at_least $(($(requests) + $1)) || die "the program does not ask the daemon"
    quiet
}

# fresh: begins a step just after a refresh, so that none falls into it that is shorter than their interval.
fresh()
{
    next_requests 1
    count
}

"$build/tools/sample-daemon/brimwatch-sample-daemon" --log --summary "$work/summary.json" >"$work/instructions.daemon" 2>&1 &
daemon=$!
trap 'end_process "$daemon"' EXIT

# It was started without a daemon; the first answer is a step of its own.
quiet
count 'start, until the label of a program without a daemon is shown'
next_requests 1
count 'first answer'
fresh
next_requests 3
count 'refresh that brings the same' 3

fresh
"$ctl" toggle
quiet
count 'first opening of the popover'
fresh
# From between two ticks to between two ticks.
last=$(processor_time)
while [ "$(($(processor_time) - last))" -le 2 ]; do sleep 0.02; done
sleep 0.4
count
sleep 4
count 'second with the popover open' 4
fresh
"$ctl" settings
quiet
count 'settings'
"$ctl" toggle
fresh
"$ctl" toggle
quiet
count 'settings opened again'
"$ctl" toggle
fresh

cp "$work/large.json" "$work/summary.new"
mv "$work/summary.new" "$work/summary.json"
next_requests 1
count 'answer of 1 MiB'
next_requests 1
count 'the same answer of 1 MiB again'
cp "$work/usual.json" "$work/summary.new"
mv "$work/summary.new" "$work/summary.json"
fresh

folder=$HOME/.gemini/antigravity/daemon
for ((i = 1; i <= 10000; i++)); do
    printf '{"pid":%d,"httpPort":1,"csrfToken":"00000000-0000-0000-0000-000000000000","lsVersion":"1.0"}' 2147480000 >"$folder/ls_$((1000000 + i)).json"
done
fresh
next_requests 1
count 'refresh among 10,000 announcements'

valgrind --tool=callgrind --callgrind-out-file="$profile.ctl" "$ctl" status --template '{title}' >>"$work/instructions.control" 2>&1 || true
sed -n 's/^totals: *//p' "$profile.ctl" | awk '{ printf "brimwatchctl, the title|%.3f\n", $1 / 1e6 }' >>"$work/instructions.rows"
