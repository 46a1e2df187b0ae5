#!/bin/bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
PROGRAM=bus-log
# shellcheck source=lib/common.sh
. "$root/tools/lib/common.sh"

# shellcheck source=desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"

usage()
{
    cat <<'END'
bus-log.sh [--minutes N] [--panel NAME]   what the program says on the session bus while it is used

  --minutes N    how long (default 60)
  --panel NAME   the panel that it stands in, a script of tools/desktops/panels (default lxqt, which asks for the item over
                 the bus)

Runs the program of $BRIMWATCH_BUILD (default build/release, which is built) against the sample daemon with quota that
moves, on a bus of its own that dbus-monitor watches; each minute the popover is opened and closed, and brimwatchctl asks
for everything that it knows. Prints how many signals there were, by kind, and fails when the daemon's token was in any
message, or when it could not have been found.
END
}

minutes=60 panel=lxqt
while [ $# -gt 0 ]; do
    case $1 in
        --minutes)
            if ! [[ ${2:-} =~ ^[1-9][0-9]{0,3}$ ]]; then
                usage >&2
                exit 2
            fi
            minutes=$2
            shift
            ;;
        --panel)
            if [ ! -x "$root/tools/desktops/panels/${2:-}.sh" ]; then
                usage >&2
                exit 2
            fi
            panel=$2
            shift
            ;;
        --help)
            usage
            exit 0
            ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
    shift
done

build=${BRIMWATCH_BUILD:-$root/build/release}
if [ -z "${BRIMWATCH_BUILD:-}" ]; then
    "$root/tools/lib/packages.sh" build run
    # shellcheck source=lib/build.sh
    . "$root/tools/lib/build.sh"
    build_preset release || exit 1
fi

begin_work bus-log

enter_desktop "$root/tools/desktops/panels/$panel.sh" "$logs/session"
# A log that grows without end would fill the disk.
ulimit -f 4194304

# As messages came, and in words.
spawn raw dbus-monitor --session --pcap
spawn log dbus-monitor --session
monitored() { [ -s "$logs/raw.log" ] && [ -s "$logs/log.log" ]; }
wait_for 30 monitored || die "dbus-monitor does not run: $(tail -n 3 "$logs"/*.log)"

start_sample_daemon "$build" --speed 60
token=$(cat "$HOME"/.gemini/antigravity/daemon/*.json | sed -n 's/.*"csrfToken" *: *"\([^"]*\)".*/\1/p')
[ ${#token} -ge 16 ] || die "the sample daemon has announced no token"
spawn program "$build/src/app/brimwatch"
ctl=$build/src/cli/brimwatchctl
answers() { [ "$("$ctl" status --template '{source} {state}')" = "program connected" ]; }
wait_for 30 answers || die "the program does not answer: $(tail -n 3 "$logs"/*.log)"
spawn watch "$ctl" status --watch --format json

begin=$(now_ms)
end=$((begin + minutes * 60000))
while [ "$(now_ms)" -lt "$end" ]; do
    for what in status diagnostics refresh toggle settings toggle; do
        "$ctl" "$what" >>"$logs/asked" 2>>"$logs/errors.log" || [ $? = 1 ] || die "brimwatchctl $what failed: $(tail -n 1 "$logs/errors.log")"
    done
    sleep $((($(now_ms) + 60000 < end ? 60000 : (end > $(now_ms) ? end - $(now_ms) : 0)) / 1000)).2
done

found_in() { grep -qaF -- "$2" "$1"; }
leaked=''
for file in raw.log log.log watch.log asked; do
    if found_in "$logs/$file" "$token"; then leaked+=" $file"; fi
done
cp "$logs/log.log" "$logs/until-now"
# Would it have been found? A message with it says so.
dbus-send --session --type=signal / app.brimwatch.Test.Token "string:$token"
wait_for 30 found_in "$logs/raw.log" "$token" || die "the token of a message made for that is not found: the search is broken"
wait_for 30 found_in "$logs/log.log" "$token" || die "the token of a message made for that is not found: the search is broken"

# Signals by kind. The program has two names on the bus, each with a number of its own: all but the bus's own signals count.
awk -v minutes="$minutes" '
    /^signal / {
        interface = member = sender = ""
        for (i = 1; i <= NF; i++) {
            if ($i ~ /^sender=/) sender = substr($i, 8)
            if ($i ~ /^interface=/) interface = substr($i, 11)
            if ($i ~ /^member=/) member = substr($i, 8)
        }
        gsub(/;/, "", interface)
        if (sender == "org.freedesktop.DBus") next
        kinds[interface "." member]++
        signals++
    }
    /^method call / { calls++ }
    END {
        printf "%d minutes: %d signals, %d calls\n", minutes, signals, calls
        for (kind in kinds) printf "%8d  %s\n", kinds[kind], kind | "sort -k1,1nr -k2"
    }' "$logs/until-now"
changes=$(grep -c 'path=/app/brimwatch/Brimwatch; interface=org.freedesktop.DBus.Properties; member=PropertiesChanged' "$logs/until-now" || true)
echo "PropertiesChanged of app.brimwatch.Brimwatch: $changes"
[ "$changes" -gt 0 ] || die "the program has told of no change: nothing was watched"
[ -z "$leaked" ] || die "the token was in:$leaked"
echo "The daemon's token was in none of it."
