#!/bin/bash
# polybar (XEmbed alone in 3.6) with openbox on Xvfb.
# PANEL_SIZE=28 PANEL_POS=top|bottom CLOCK=on
NAME=polybar
FACTS=(protocol=xembed form=badge restarts=yes bus=unused)
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

# Deliberate: no `wm-restack`. It lowers the bar before openbox has put it into a frame, and the tray above the bar; the
# frame then lies over the tray for good. A bar with `override-redirect` gets no frame; a managed one needs no restacking.
configure()
{
    local modules=date bottom=false
    [ "$CLOCK" = on ] || modules=empty
    [ "${PANEL_POS:-top}" = top ] || bottom=true
    cat >"$DIR/home/polybar.ini" <<INI
[bar/main]
width = 100%
height = ${PANEL_SIZE:-28}
bottom = $bottom
background = #303030
foreground = #ffffff
font-0 = DejaVu Sans:size=10
modules-right = $modules
tray-position = right
tray-maxsize = 24
[module/date]
type = internal/date
date = %H:%M
[module/empty]
type = custom/text
content = " "
INI
}

session_start()
{
    configure
    start_openbox
}

panel_start() { spawn panel polybar -c "$DIR/home/polybar.ini" main; }

panel_ready() { tray_manager_runs && [ -n "$(inside xdotool search --onlyvisible --class Polybar)" ]; }

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
