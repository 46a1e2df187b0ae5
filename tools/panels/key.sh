#!/bin/bash
# key.sh KEYSYM   one key press in the sourced session (Escape, Return, ctrl+r, ...)
set -eu
# The keyboard of wtype lives only as long as the call: the compositor needs a moment to hand it on.
if [ -n "${SWAYSOCK:-}" ]; then
    exec wtype -s 300 -k "$1" -s 100
fi
exec xdotool key "$1"
