#!/bin/bash
# click.sh X Y [BUTTON]   a real click in the sourced session (1 left, 2 middle, 3 right, 4 and 5 wheel)
# click.sh X Y 0          only moves the pointer there
set -eu
x=$1 y=$2 button=${3:-1}
here=$(dirname "${BASH_SOURCE[0]}")
if [ -n "${SWAYSOCK:-}" ]; then
    exec python3 "$here/vpointer.py" click "$x" "$y" "$button"
fi
# A nested compositor takes its input from the display around it.
export DISPLAY=${BRIMWATCH_OUTER_DISPLAY:-${DISPLAY:-}}
# Two moves: some panels ignore a press that no motion over the item went before.
xdotool mousemove "$((x > 3 ? x - 3 : x + 3))" "$y" sleep 0.05 mousemove "$x" "$y" sleep 0.15
[ "$button" = 0 ] || exec xdotool mousedown "$button" sleep 0.05 mouseup "$button"
