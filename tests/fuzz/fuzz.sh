#!/bin/bash
# fuzz.sh FUZZER CORPUS WORK [DBUS]: runs a fuzzer for BRIMWATCH_FUZZ_SECONDS, from CORPUS, seeds.py and what earlier runs have
# added to WORK. What breaks a rule is left in WORK/findings. The last line has the number of runs.
set -u
fuzzer=$1 corpus=$2 work=$3 bus=${4:-}
seconds=${BRIMWATCH_FUZZ_SECONDS:-60}
home=$(mktemp -d)
trap 'rm -rf -- "$home"' EXIT
mkdir -p "$work/corpus" "$work/findings" "$home/run"
chmod 700 "$home/run"
# The settings are written to a file each time.
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm
export HOME=$home XDG_RUNTIME_DIR=$home/run
export ASAN_OPTIONS=detect_leaks=0:quarantine_size_mb=16 UBSAN_OPTIONS=print_stacktrace=1
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_STATE_HOME DBUS_SESSION_BUS_ADDRESS DISPLAY WAYLAND_DISPLAY
log=$work/log
session=() longest=10
# With the first input the program starts.
[ -z "$bus" ] || session=(dbus-run-session --) longest=90
"$(dirname "$0")/seeds.py" "${corpus##*/}" "$work/seeds" || exit
# No input is worth more than a few kilobytes, so many seconds or half a gigabyte: what needs more hangs or grows.
"${session[@]}" "$fuzzer" -max_total_time="$seconds" -max_len=4096 -timeout=$longest -rss_limit_mb=1024 -malloc_limit_mb=512 \
    -print_final_stats=1 -artifact_prefix="$work/findings/" "$work/corpus" "$work/seeds" "$corpus" >"$log" 2>&1
status=$?
runs=$(sed -n 's/^stat::number_of_executed_units: //p' "$log")
[ "$status" = 0 ] || tail -n 40 "$log"
echo "${fuzzer##*/}: ${runs:-0} runs in $seconds s" | tee "$work/result"
exit "$status"
