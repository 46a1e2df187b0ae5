#!/bin/bash
# pictures.sh [PANEL...]   takes the pictures of docs/panels.md anew: each panel with the label and the popover open.
#
# PANEL is one of tools/desktops/panels (default: all that docs/panels.md shows). The program and the sample daemon are those of
# $BRIMWATCH_BUILD (default build/dev). Pictures go to docs/pictures/panels/PANEL.png.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=pictures
# shellcheck source=../lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=lib/services.sh
. "$root/tools/desktops/lib/services.sh"

[ $# -gt 0 ] || set -- xfce4 mate lxqt plasma plasma-wayland gnome gnome-wayland sway swaybar trayer i3bar polybar
if [ $# -gt 1 ]; then
    for panel; do "${BASH_SOURCE[0]}" "$panel" || exit; done
    exit
fi

panel=$1
script=$root/tools/desktops/panels/$panel.sh
build=${BRIMWATCH_BUILD:-$root/build/dev}
picture=$root/docs/pictures/panels/$panel.png
begin_work pictures
out=$logs
mkdir -p "$out/pictures" "${picture%/*}"

CLOCK=off enter_desktop "$script" "$logs/session"
shot() { "$root/tools/desktops/lib/shot.sh" "$out/pictures/$1.png" ${2:+"$2"}; }
click() { "$root/tools/desktops/lib/click.sh" "$@"; }
# shellcheck source=lib/on-panel.sh
. "$root/tools/desktops/lib/on-panel.sh"

# popover_in NAME: that picture shows the popover. Where it is a layer, no list of windows has it.
popover_in()
{
    local width height
    [ -n "${BRIMWATCH_LAYERS:-}" ] || popover_open "$program_pid" || return
    read -r _ _ width height < <(largest_difference "$out/pictures/label.png" "$out/pictures/$1.png" \
        "${screen_width}x$screen_height+0+0")
    [ "${width:-0}" -ge $((POPOVER_WIDTH - 2)) ] && [ "${height:-0}" -ge $((POPOVER_HEIGHT - 2)) ]
}

# Twice in a row: the first may show it half drawn. The two are never the same, as seconds are counted in it.
popover_settled()
{
    shot open
    popover_in open && shot open && popover_in open
}

look_at_screen
start_sample_daemon "$build" --speed 0
shot without
spawn program "$build/src/app/brimwatch"
program_pid=$spawned
wait_for 60 item_place || die "no item appears on $panel"
locate_item || die "the item on $panel does not come to rest"
wait_for 30 label_has green || die "the label on $panel does not show the sample quota"
shot label
click_item 1
wait_for 30 popover_settled || die "no popover opens on $panel"

# From the panel's edge to a little beyond the popover.
read -r x y width height < <(largest_difference "$out/pictures/label.png" "$out/pictures/open.png" "${screen_width}x$screen_height+0+0")
read -r item_x _ <<<"$place_of_item"
left=$((item_x < x ? item_x : x))
left=$((left > 40 ? left - 40 : 0))
# No dithering: it speckles what is plain.
convert "$out/pictures/open.png" -crop "$((x + width + 40 - left))x$((y + height + 16))+$left+0" +repage \
    +dither -colors 200 -define png:compression-level=9 "PNG8:$picture"
[ "$(stat -c %s "$picture")" -le 81920 ] || die "$picture is larger than 80 KiB"
say "$picture: $(identify -format '%wx%h' "$picture"), $(stat -c %s "$picture") bytes"
