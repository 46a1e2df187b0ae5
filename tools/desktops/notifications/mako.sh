#!/bin/bash
# mako on sway (headless, software-rendered). What it shows stays until somebody closes it.
NAME=mako
FACTS=(click_x='x + width / 2' click_y='y + 20' click_button=1)
PURPOSE=notifications-mako
DISPLAY_KIND=none
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=../lib/sway-session.sh
. "$DESKTOPS/lib/sway-session.sh"

session_start()
{
    mkdir -p "$DIR/home/.config/mako"
    printf 'font=DejaVu Sans 11\nwidth=420\ndefault-timeout=0\n' >"$DIR/home/.config/mako/config"
    start_sway
}

panel_start() { spawn panel mako; }

panel_ready() { notifications_served; }

panel_main "$@"
