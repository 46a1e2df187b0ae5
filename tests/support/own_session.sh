# shellcheck shell=bash
# A home, display, session bus and sample daemon of a test's own; sourced after common.sh with `root` and `build`. They
# end with the script, whose checks are counted.

: "${root:?}" "${build:?}"
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-test.XXXXXX")
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
clean_up() { rm -rf "$scratch"; }

own_home()
{
    mkdir -p "$scratch/home" && mkdir -m 700 "$scratch/run"
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_CURRENT_DESKTOP WAYLAND_DISPLAY QT_QPA_PLATFORM QT_FATAL_WARNINGS
    export HOME=$scratch/home XDG_RUNTIME_DIR=$scratch/run DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere
}

own_daemon() # own_daemon OPTION...
{
    "$build/tools/sample-daemon/brimwatch-sample-daemon" "$@" >"$scratch/daemon.log" 2>&1 &
    daemon_pid=$!
    disown
    wait_for 30 grep -q '^ready ' "$scratch/daemon.log" || die "the sample daemon did not start: $(cat "$scratch/daemon.log")"
}

own_display()
{
    Xvfb -displayfd 8 -screen 0 1280x720x24 -nolisten tcp -noreset 8>"$scratch/display" 2>"$scratch/display.log" &
    display_pid=$!
    disown
    wait_for 30 test -s "$scratch/display" || die "Xvfb did not start: $(cat "$scratch/display.log")"
    DISPLAY=:$(cat "$scratch/display")
    export DISPLAY
}

# own_bus [FOLDER]: it starts the services in that folder alone.
own_bus()
{
    cat >"$scratch/bus.conf" <<XML
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=$scratch/run/bus</listen><auth>EXTERNAL</auth>
${1:+<servicedir>$1</servicedir>}
<policy context="default"><allow user="*"/><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
XML
    dbus-daemon --nofork --nosyslog --nopidfile --config-file="$scratch/bus.conf" 2>"$scratch/bus.log" &
    bus_pid=$!
    disown
    wait_for 30 test -S "$scratch/run/bus" || die "the bus did not start: $(cat "$scratch/bus.log")"
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$scratch/run/bus
}

# owner_of_the_name: the process of the running program.
owner_of_the_name()
{
    dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.GetConnectionUnixProcessID string:app.brimwatch.Brimwatch 2>/dev/null | awk '{ print $2 }'
}

# runs: it does, and program_pid is its process.
runs() { program_pid=$(owner_of_the_name) && [ -n "$program_pid" ]; }
