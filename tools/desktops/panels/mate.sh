#!/bin/bash
# mate-panel (its notification area holds both SNI and XEmbed items) with openbox on Xvfb.
# PANEL_SIZE=28 PANEL_POS=top|bottom CLOCK=on
NAME=mate
FACTS=(protocol=xembed form=wide restarts=yes bus=needed)
SERVICES="org.mate.panel.applet.NotificationAreaAppletFactory org.mate.panel.applet.WnckletFactory
    org.mate.panel.applet.ClockAppletFactory"
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start()
{
    local settings=$DIR/home/.config/glib-2.0/settings objects="'tray'"
    [ "$CLOCK" = off ] || objects="'tray','clock'"
    mkdir -p "$settings"
    cat >"$settings/keyfile" <<INI
[org/mate/panel/general]
toplevel-id-list=['top']
object-id-list=[$objects]
[org/mate/panel/toplevels/top]
expand=true
orientation='${PANEL_POS:-top}'
size=${PANEL_SIZE:-28}
[org/mate/panel/objects/tray]
object-type='applet'
applet-iid='NotificationAreaAppletFactory::NotificationArea'
toplevel-id='top'
position=10
panel-right-stick=true
locked=true
[org/mate/panel/objects/clock]
object-type='applet'
applet-iid='ClockAppletFactory::ClockApplet'
toplevel-id='top'
position=0
panel-right-stick=true
locked=true
INI
    env_set XDG_CURRENT_DESKTOP MATE
    ENVV+=(GSETTINGS_BACKEND=keyfile)
    start_openbox
}

panel_start() { spawn panel mate-panel; }

panel_ready() { sni_host_registered && tray_manager_runs; }

panel_main "$@"
