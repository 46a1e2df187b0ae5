#!/bin/bash
# trayer (XEmbed alone: nobody watches for SNI items on this bus) with openbox on Xvfb.
# PANEL_SIZE=28 PANEL_POS=top|bottom|left|right MONITOR=0 WIDTH_TYPE=request|percent, for `start` and `panel`
NAME=trayer
FACTS=(protocol=xembed form=wide restarts=yes bus=unused)
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

configure() { :; }

session_start() { start_openbox; }

panel_start()
{
    spawn panel trayer --edge "${PANEL_POS:-top}" --align right --monitor "${MONITOR:-0}" \
        --widthtype "${WIDTH_TYPE:-request}" --heighttype pixel --height "${PANEL_SIZE:-28}" \
        --SetDockType true --SetPartialStrut true --tint 0x303030 --transparent true --alpha 0
}

# An empty trayer shows no window: what counts is who owns the tray.
panel_ready() { tray_manager_runs; }

# Sourced, it only tells how its panel is started.
[ "$0" != "${BASH_SOURCE[0]}" ] || panel_main "$@"
