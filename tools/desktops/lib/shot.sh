#!/bin/bash
# shot.sh FILE.png [WxH+X+Y]   a picture of the sourced session's screen, or of a part of it
set -eu
out=$1 geometry=${2:-}
if [ -n "${SWAYSOCK:-}" ]; then
    [ -n "$geometry" ] || exec grim "$out"
    IFS='x+' read -r width height x y <<<"$geometry"
    exec grim -g "$x,$y ${width}x$height" "$out"
fi
export DISPLAY=${BRIMWATCH_OUTER_DISPLAY:-${DISPLAY:-}}
exec import -silent -window root ${geometry:+-crop "$geometry" +repage} -define png:compression-level=9 "$out"
