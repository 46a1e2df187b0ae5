#!/bin/sh
# in-empty-home.sh HOME COMMAND...: runs a test with a home, configuration and run-time folder that nobody else has and
# that are empty at its start.
set -eu
home=$1
shift
rm -rf -- "$home"
mkdir -p -- "$home/run"
chmod 700 "$home/run"
export HOME="$home" XDG_RUNTIME_DIR="$home/run"
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_STATE_HOME XDG_CONFIG_DIRS XDG_DATA_DIRS XDG_CURRENT_DESKTOP \
    DBUS_SESSION_BUS_ADDRESS DISPLAY WAYLAND_DISPLAY
exec "$@"
