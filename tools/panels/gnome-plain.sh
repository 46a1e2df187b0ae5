#!/bin/bash
# GNOME Shell 43 without extensions, an X11 session on Xvfb: it has no place for items at all.
# shellcheck source=lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
EXTENSION=0
# shellcheck source=gnome.sh
. "$PANELS/gnome.sh"
NAME=gnome-plain

panel_main "$@"
