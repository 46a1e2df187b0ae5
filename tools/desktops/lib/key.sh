#!/bin/bash
# key.sh KEYSYM   one key press in the sourced session (Escape, Return, ctrl+r, ...)
set -eu
# The keyboard of wtype lives only as long as the call: the compositor needs a moment to hand it on.
if [ -n "${SWAYSOCK:-}" ]; then
    modifier=()
    [[ $1 != *+* ]] || modifier=("${1%+*}")
    exec wtype -s 300 ${modifier:+-M "${modifier[@]}"} -k "${1##*+}" ${modifier:+-m "${modifier[@]}"} -s 100
fi
export DISPLAY=${BRIMWATCH_OUTER_DISPLAY:-${DISPLAY:-}}
exec xdotool key "$1"
