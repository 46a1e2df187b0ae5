#!/bin/bash
# sway (headless, software-rendered) with waybar and its tray; Xwayland on demand.
# BAR_HEIGHT=28 BAR_POS=top|bottom|left|right ICON_SIZE=21 CLOCK=on, for `start` and `panel`
NAME=sway
FACTS=(protocol=sni form=wide restarts=yes bus=needed display=sway)
DISPLAY_KIND=none
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=../lib/sway-session.sh
. "$DESKTOPS/lib/sway-session.sh"

configure()
{
    local config=$DIR/home/.config clock=', "clock"' thickness="\"height\": ${BAR_HEIGHT:-28}"
    [ "$CLOCK" = on ] || clock=
    # Upright it is as wide as the whole label.
    case ${BAR_POS:-top} in left | right) thickness='"width": 160' ;; esac
    mkdir -p "$config/waybar"
    cat >"$config/waybar/config" <<JSON
{ "layer": "top", "position": "${BAR_POS:-top}", $thickness,
  "modules-left": ["sway/workspaces"], "modules-center": [], "modules-right": ["tray"$clock],
  "tray": { "icon-size": ${ICON_SIZE:-21}, "spacing": 6 } }
JSON
    printf '* { font-family: "DejaVu Sans"; font-size: 13px; min-height: 0; }\nwindow#waybar { background: #303030; color: #fff; }\n' \
        >"$config/waybar/style.css"
}

session_start() { start_sway; }

panel_start()
{
    configure
    spawn panel waybar
}

panel_ready() { sni_host_registered; }

panel_main "$@"
