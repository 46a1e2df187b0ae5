#!/bin/bash
# GNOME Shell 43 without extensions as a Wayland compositor, drawing into a window on Xvfb: it has no place for items at all.
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
EXTENSION=0
# shellcheck source=gnome-wayland.sh
. "$DESKTOPS/panels/gnome-wayland.sh"
NAME=gnome-plain-wayland
FACTS=(weight=heavy)

panel_main "$@"
