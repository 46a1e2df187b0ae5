#!/bin/bash
# lxqt-panel (SNI items alone: its XEmbed plugin is left out) with openbox on Xvfb.
# PANEL_SIZE=32 PANEL_ICON=22 PANEL_POS=Top|Bottom CLOCK=on
NAME=lxqt
FACTS=(protocol=sni form=badge restarts=yes bus=needed)
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

configure()
{
    local plugins='taskbar, spacer, statusnotifier'
    [ "$CLOCK" = off ] || plugins="$plugins, worldclock"
    mkdir -p "$DIR/home/.config/lxqt"
    cat >"$DIR/home/.config/lxqt/panel.conf" <<INI
[General]
__userfile__=true
panels=panel1

[panel1]
alignment=-1
hidable=false
iconSize=${PANEL_ICON:-22}
lineCount=1
panelSize=${PANEL_SIZE:-32}
plugins=$plugins
position=${PANEL_POS:-Top}
width=100
width-percent=true

[taskbar]
alignment=Left
type=taskbar
[spacer]
alignment=Right
type=spacer
[statusnotifier]
alignment=Right
type=statusnotifier
[worldclock]
alignment=Right
type=worldclock
INI
    printf '[General]\ntheme=system\nicon_theme=breeze\n[Qt]\nstyle=Fusion\n' >"$DIR/home/.config/lxqt/lxqt.conf"
    # Debian keeps the defaults of LXQt there.
    env_set XDG_CONFIG_DIRS /usr/share/lxqt:/etc/xdg
}

session_start()
{
    configure
    env_set XDG_CURRENT_DESKTOP LXQt
    start_openbox
}

panel_start() { spawn panel lxqt-panel; }

panel_ready() { sni_host_registered; }

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
