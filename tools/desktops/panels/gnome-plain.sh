#!/bin/bash
# GNOME Shell 43 without extensions, an X11 session on Xvfb: it has no place for items at all.
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
EXTENSION=0
# shellcheck source=gnome.sh
. "$DESKTOPS/panels/gnome.sh"
NAME=gnome-plain
FACTS=(weight=heavy)

panel_main "$@"
