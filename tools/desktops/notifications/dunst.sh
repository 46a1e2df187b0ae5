#!/bin/bash
# dunst with openbox on Xvfb. What it shows stays until somebody closes it.
NAME=dunst
FACTS=(click_x='x + width / 2' click_y='y + 20' click_button=2)
PURPOSE=notifications-dunst
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start()
{
    mkdir -p "$DIR/home/.config/dunst"
    cat >"$DIR/home/.config/dunst/dunstrc" <<CONF
[global]
font = DejaVu Sans 11
width = (0, 420)
max_icon_size = 48
[urgency_normal]
timeout = 0
CONF
    start_openbox
}

panel_start() { spawn panel dunst -conf "$DIR/home/.config/dunst/dunstrc"; }

panel_ready() { notifications_served; }

panel_main "$@"
