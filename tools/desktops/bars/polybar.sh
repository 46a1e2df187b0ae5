#!/bin/bash
# polybar with the example's module, with openbox on Xvfb. `brimwatchctl` is found in PATH.
NAME=polybar
FACTS=(mode=watches colors=lowest strip=1280x40+0+0 place=560x26+720+0)
PURPOSE=bar-polybar
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start() { start_openbox; }

panel_start()
{
    # The example leaves the font to the user.
    sed '/^\[bar/a font-0 = DejaVu Sans:size=10' "$DESKTOPS/../../examples/polybar/config.ini" >"$DIR/home/polybar.ini"
    spawn panel polybar -c "$DIR/home/polybar.ini" example
}

panel_ready() { inside xdotool search --class Polybar; }

panel_main "$@"
