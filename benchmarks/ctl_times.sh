#!/bin/bash
# ctl_times.sh BRIMWATCHCTL [N]   how long the title takes to read from the running program, N times (default 40) each in
# turn: lines of `ctl MS` by brimwatchctl and `busctl MS` by busctl. Fails when either does not read it.
set -euo pipefail
ctl=$1 runs=${2:-40}

# timed NAME COMMAND...
timed()
{
    local name=$1 start=$EPOCHREALTIME end
    shift
    "$@" >/dev/null
    end=$EPOCHREALTIME
    echo "$name $((${end/./} - ${start/./}))" | awk '{ printf "%s %.3f\n", $1, $2 / 1000 }'
}

by_ctl() { "$ctl" status --template '{title}' || [ $? = 1 ]; }
by_busctl()
{
    busctl --user get-property app.brimwatch.Brimwatch /app/brimwatch/Brimwatch app.brimwatch.Brimwatch1 Title
}

# The files of both are read before any of it counts.
by_ctl >/dev/null
by_busctl >/dev/null
for ((i = 0; i < runs; i++)); do
    timed ctl by_ctl
    timed busctl by_busctl
done
