#!/bin/bash
# i3bar with i3blocks and the example's block, in i3 on Xvfb. `brimwatchctl` is found in PATH.
NAME=i3blocks
FACTS=(mode=watches colors=each strip=1280x40+0+0 place=560x26+720+0)
PURPOSE=bar-i3blocks
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start() { :; }

panel_start()
{
    mkdir -p "$DIR/home/.config/i3"
    cat >"$DIR/home/.config/i3/config" <<CONF
# i3 config file (v4)
font pango:DejaVu Sans 10
bar {
    position top
    tray_output none
    status_command i3blocks -c $DESKTOPS/../../examples/i3blocks/config
}
CONF
    spawn panel i3 -c "$DIR/home/.config/i3/config"
}

panel_ready() { inside xdotool search --class i3bar; }

panel_main "$@"
