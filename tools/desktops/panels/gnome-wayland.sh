#!/bin/bash
# GNOME Shell with its AppIndicator extension as a Wayland compositor, drawing into a window on Xvfb; Xwayland with it.
# The shell is compositor and panel in one: it cannot be ended alone. EXTENSION=1|0
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=gnome.sh
. "$DESKTOPS/panels/gnome.sh"
NAME=gnome-wayland
FACTS=(protocol=xembed "form=$FORM" restarts=no bus=needed item=copy weight=heavy)

session_start()
{
    local outer inner
    outer=$(value_of DISPLAY)
    configure
    # Clicks, keys and pictures go to the display around the session.
    env_set BRIMWATCH_OUTER_DISPLAY "$outer"
    ENVV+=("MUTTER_DEBUG_DUMMY_MODE_SPECS=$SIZE")
    spawn shell gnome-shell --nested --wayland --sm-disable --wayland-display=wayland-gnome
    wait_for 40 grep -q 'public X11 display' "$DIR/log/shell.log" || die "gnome-shell did not start, see $DIR/log/shell.log"
    env_set WAYLAND_DISPLAY wayland-gnome
    inner=$(sed -n 's/.*public X11 display \(:[0-9]*\).*/\1/p' "$DIR/log/shell.log" | head -n 1)
    env_set DISPLAY "$inner"
    set -- "$RUN"/.mutter-Xwaylandauth.*
    env_set XAUTHORITY "$1"
    env_set XDG_SESSION_TYPE wayland
}

panel_start() { :; }

panel_ready()
{
    bus_has org.gnome.Shell && grep -qs 'GNOME Shell started' "$DIR/log/shell.log" && leave_overview || return 1
    [ "${EXTENSION:-1}" = 0 ] || { sni_host_registered && tray_manager_runs; }
}

# Sourced, it only tells how its session is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
