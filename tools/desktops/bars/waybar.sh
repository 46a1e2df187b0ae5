#!/bin/bash
# waybar on sway (headless, software-rendered) with the example's module. `brimwatchctl` is found in PATH.
NAME=waybar
FACTS=(mode=watches colors=each strip=1280x40+0+0 place=560x26+720+0)
PURPOSE=bar-waybar
DISPLAY_KIND=none
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=../lib/sway-session.sh
. "$DESKTOPS/lib/sway-session.sh"

session_start()
{
    mkdir -p "$DIR/home/.config"
    cp -r "$DESKTOPS/../../examples/waybar" "$DIR/home/.config/waybar"
    cat >>"$DIR/home/.config/waybar/style.css" <<CSS
* { font-family: "DejaVu Sans"; font-size: 13px; }
window#waybar { background: #303030; color: #fff; }
CSS
    start_sway
}

panel_start() { spawn panel waybar; }

panel_ready() { alive "$(cat "$DIR/panel.pid")"; }

panel_main "$@"
