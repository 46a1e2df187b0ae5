#!/usr/bin/env bash
# privlib.sh COPY COMMAND... - runs a command (as root) in a mount namespace whose system library folder is a
# private copy, so that nobody else on the machine shares its pages and PSS is reproducible.
# Make the copy once: cp -a "$(dirname "$(ldconfig -p | awk '/libc\.so\.6/{print $NF; exit}')")" COPY   (then: sync)
lib=/usr/lib/$(gcc -print-multiarch 2>/dev/null || echo x86_64-linux-gnu)
copy=$(realpath "$1"); shift
# The inner shell puts them in.
# shellcheck disable=SC2016
exec unshare -m bash -c 'mount --make-rprivate / && mount --bind "$0" "$1" && shift && exec "$@"' "$copy" "$lib" "$@"
