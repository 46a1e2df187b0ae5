#!/bin/bash
# wayland_times.sh BUILD [N]   from the start of `brimwatchctl toggle` to the popover's last picture, on sway without a screen:
# `first MS`, then `later MS` N times (default 10). The sample daemon runs already, for the home in MEASURE_HOME.
#
# The times are those at which the program hands pictures to the compositor, as libwayland logs them. A picture belongs to the
# opening when it follows the one before within a tenth of a second.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
PROGRAM=benchmarks/wayland_times.sh
# shellcheck source=../tools/lib/common.sh
. "$here/../tools/lib/common.sh"
build=$1 times=${2:-10}
if [ -z "${WAYLAND_TIMES_BUS:-}" ]; then
    exec env WAYLAND_TIMES_BUS=1 HOME="${MEASURE_HOME:?}" dbus-run-session -- "$0" "$@" 2> >(grep -v 'Failed to set fd limit' >&2)
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/wayland-times.XXXXXX")
export XDG_RUNTIME_DIR=$work/run logs=$work
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset DISPLAY WAYLAND_DISPLAY
trap 'end_processes; rm -rf "$work"' EXIT
printf 'xwayland disable\noutput * resolution 1280x800\n' >"$work/sway.conf"
preload=()
if [ "$(id -u)" = 0 ]; then
    # sway refuses to run as root.
    gcc -shared -fPIC -o "$work/stay-root" "$here/../tools/desktops/lib/stay-root.c"
    preload=("LD_PRELOAD=$work/stay-root")
fi
spawn sway env "${preload[@]}" WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 sway --config "$work/sway.conf"
socket() { WAYLAND_DISPLAY=$(basename "$(find "$XDG_RUNTIME_DIR" -name 'wayland-*' -type s | head -n 1)") && [ -n "$WAYLAND_DISPLAY" ]; }
wait_for 20 socket || die "sway did not start: $(tail -n 3 "$work/sway.log")"
socket
export WAYLAND_DISPLAY
spawn brimwatch env WAYLAND_DEBUG=1 "$build/src/app/brimwatch"
ctl=$build/src/cli/brimwatchctl
connected() { busctl --user get-property app.brimwatch.Brimwatch /app/brimwatch/Brimwatch app.brimwatch.Brimwatch1 State | grep -q connected; }
wait_for 20 connected || die "the program has no answer of the sample daemon"

# pictures_since MICROSECONDS: when pictures were handed over, in milliseconds from then on; 32 bits of the clock are logged.
pictures_since()
{
    awk -v since="$1" '
        /-> wl_surface@[0-9]+\.attach\(wl_buffer/ { attached = 1 }
        /-> wl_surface@[0-9]+\.commit\(\)/ && attached {
            attached = 0
            match($0, /[0-9]+\.[0-9]+/)
            at = substr($0, RSTART, RLENGTH) * 1000 - since % 4294967296
            if (at < -2147483648) at += 4294967296
            if (at >= 0) printf "%.3f\n", at / 1000
        }' "$work/brimwatch.log"
}
some_picture() { [ -n "$(pictures_since "$1")" ]; }

for ((i = 0; i <= times; i++)); do
    start=${EPOCHREALTIME/./}
    "$ctl" toggle
    wait_for 10 some_picture "$start" || die "no popover was drawn"
    sleep 0.7
    pictures_since "$start" | awk -v name="$([ "$i" = 0 ] && echo first || echo later)" '
        NR > 1 && $1 - last > 100 { exit }
        { last = $1 }
        END { printf "%s %.3f\n", name, last }'
    "$ctl" toggle
    sleep 0.5
done
