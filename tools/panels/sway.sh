#!/bin/bash
# sway (headless, software-rendered) with waybar and its tray; Xwayland on demand.
# BAR_HEIGHT=28 BAR_POS=top|bottom ICON_SIZE=21 CLOCK=on
NAME=sway
DISPLAY_KIND=none
# shellcheck source=lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=sway-session.sh
. "$PANELS/sway-session.sh"

session_start()
{
    local config=$DIR/home/.config clock=', "clock"'
    [ "$CLOCK" = on ] || clock=
    mkdir -p "$config/waybar"
    cat >"$config/waybar/config" <<JSON
{ "layer": "top", "position": "${BAR_POS:-top}", "height": ${BAR_HEIGHT:-28},
  "modules-left": ["sway/workspaces"], "modules-center": [], "modules-right": ["tray"$clock],
  "tray": { "icon-size": ${ICON_SIZE:-21}, "spacing": 6 } }
JSON
    printf '* { font-family: "DejaVu Sans"; font-size: 13px; min-height: 0; }\nwindow#waybar { background: #303030; color: #fff; }\n' \
        >"$config/waybar/style.css"
    start_sway
}

panel_start() { spawn panel waybar; }

panel_ready() { sni_host_registered; }

panel_main "$@"
