# shellcheck shell=bash
# A home, display, session bus and sample daemon of a test's own; sourced after common.sh with `root` and `build`. They
# end with the script, whose checks are counted.

: "${root:?}" "${build:?}"
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-test.XXXXXX")
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
# shellcheck source=../../tools/desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"
logs=$scratch
clean_up() { rm -rf "$scratch"; }

own_home()
{
    mkdir -p "$scratch/home" && mkdir -m 700 "$scratch/run"
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_CURRENT_DESKTOP WAYLAND_DISPLAY QT_QPA_PLATFORM QT_FATAL_WARNINGS
    export HOME=$scratch/home XDG_RUNTIME_DIR=$scratch/run DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere
}

own_daemon() { start_sample_daemon "$build" "$@"; }

own_display()
{
    start_xvfb 1280x720
    export DISPLAY=$xvfb_display
}

# own_bus [FOLDER]: it starts the services in that folder alone.
own_bus()
{
    start_bus bus "$scratch/run/bus" "${1:-}"
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
