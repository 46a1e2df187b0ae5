# shellcheck shell=bash
# A home, display, session bus and sample daemon of a test's own; sourced after common.sh with `root` and `build`. They
# end with the script, which prints `N passed, N failed` last and fails when a check did or there was none.

: "${root:?}" "${build:?}"
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-test.XXXXXX")
passed=0 failed=0 display_pid='' bus_pid='' daemon_pid='' program_pid=''

finish()
{
    local status=$?
    trap - EXIT INT TERM
    end_process "$program_pid"
    end_process "$daemon_pid"
    end_process "$bus_pid"
    end_process "$display_pid"
    rm -rf "$scratch"
    if [ "$status" != 0 ] && [ "$failed" = 0 ]; then
        failed=1
    fi
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ] && [ "$passed" -gt 0 ]
    exit
}
trap finish EXIT
trap 'exit 130' INT TERM

# check SENTENCE COMMAND...: one result.
check()
{
    local sentence=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
        echo "ok      $sentence"
    else
        failed=$((failed + 1))
        echo "FAILED  $sentence"
        return 1
    fi
}

is() { [ "$1" = "$2" ] || { printf 'got: %s\nnot: %s\n' "$1" "$2" >&2; return 1; }; }

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
