#!/bin/bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
PROGRAM=show
# shellcheck source=lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"

usage()
{
    cat <<'END'
show.sh [--demo] DIR   shows Brimwatch on a virtual display with the Xfce panel, and leaves pictures of the label and of the
                       open popover in DIR, light and dark; with --demo against the sample daemon

The programs are those of $BRIMWATCH_BUILD (default build/release); $BRIMWATCH_SCALE is the scale of the desktop (default 1).
END
}

demo=''
if [ "${1:-}" = --demo ]; then
    demo=1
    shift
fi
if [ $# != 1 ] || [[ $1 = -* ]]; then
    usage >&2
    exit 2
fi
mkdir -p "$1"
pictures=$(cd "$1" && pwd)
build=${BRIMWATCH_BUILD:-$root/build/release}
begin_work show
export BRIMWATCH_SCALE=${BRIMWATCH_SCALE:-1}
export SIZE=$((1280 * BRIMWATCH_SCALE))x$((720 * BRIMWATCH_SCALE))
xfce4=$root/tools/desktops/panels/xfce4.sh session=$logs/session users_home=$HOME

shot() { "$root/tools/desktops/lib/shot.sh" "$@" 2>>"$logs/pictures.log" || die "no picture, see $logs/pictures.log"; }
click() { "$root/tools/desktops/lib/click.sh" "$@"; }

# brightness FILE.png: 0 to 100.
brightness() { convert "$1" -colorspace gray -format '%[fx:round(100*mean)]' info:; }

label_coloured() { settled "$1" "$2" && [ "$(coloured_pixels "$1" green)" -ge 8 ]; }

# label_shown FILE.png: the item shows quota. It moves and grows as its label does, so it is looked for each time;
# sets place and item of who asks.
label_shown()
{
    place=$(embedded_items "$program_pid" | head -n 1)
    [ -n "$place" ] || return 1
    # shellcheck disable=SC2086
    item=$(geometry_of $place)
    label_coloured "$1" "$item"
}

# Left of the item, where nothing else stands.
panel_is_dark()
{
    local x y height
    read -r x y _ height < <(embedded_items "$program_pid" | head -n 1)
    shot "$logs/panel.png" "20x$height+$((x - 60))+$y"
    [ "$(brightness "$logs/panel.png")" -lt 50 ]
}

# take_pictures light|dark
take_pictures()
{
    local appearance=$1 item popover place brightness
    place=$(embedded_items "$program_pid" | head -n 1)
    [ -n "$place" ] || die "the item is gone from the panel"
    # shellcheck disable=SC2086
    item=$(geometry_of $place)
    if [ -n "$demo" ]; then
        wait_for 30 label_shown "$pictures/label-$appearance.png" ||
            die "the label does not show the sample quota"
    else
        wait_for 30 settled "$pictures/label-$appearance.png" "$item" || die "the label does not come to rest"
    fi
    # shellcheck disable=SC2046,SC2086
    click $(middle_of $place) 1
    wait_for 30 popover_open "$program_pid" || die "a click on the item does not open the popover"
    place=$(popover_places "$program_pid" | head -n 1)
    # shellcheck disable=SC2086
    popover=$(geometry_of $place)
    # A clock in it may tick at any moment; what has to stop is the opening.
    wait_for 30 settled "$pictures/popover-$appearance.png" "$popover" || true
    shot "$pictures/screen-$appearance.png"
    brightness=$(brightness "$pictures/popover-$appearance.png")
    case $appearance in
        light) [ "$brightness" -ge 50 ] || die "the popover is not light (brightness $brightness of 100)" ;;
        dark) [ "$brightness" -lt 50 ] || die "the popover is not dark (brightness $brightness of 100)" ;;
    esac
    "$root/tools/desktops/lib/key.sh" Escape
    wait_for 30 popover_closed "$program_pid" || die "Escape does not close the popover"
    click 40 600 0
}

BRIMWATCH_PACKAGES_CHECKED=1 enter_desktop "$xfce4" "$session" --no-panel

# GTK's own dark look under the name by which desktops ask for it.
mkdir -p "$HOME/.themes/Adwaita-dark/gtk-3.0"
echo '@import url("resource:///org/gtk/libgtk/theme/Adwaita/gtk-contained-dark.css");' \
    >"$HOME/.themes/Adwaita-dark/gtk-3.0/gtk.css"

mkfifo "$logs/settings"
exec 8<>"$logs/settings"
# The shell gives what runs in the background no input but its own redirection.
# shellcheck disable=SC2016
spawn settings sh -c 'exec "$0" Net/ThemeName=Adwaita "$2" "$3" "$4" <"$1"' "$HELPERS/x-settings" "$logs/settings" \
    "Gdk/WindowScalingFactor=#$BRIMWATCH_SCALE" "Gdk/UnscaledDPI=#$((96 * 1024))" "Xft/DPI=#$((96 * 1024 * BRIMWATCH_SCALE))"
wait_for 30 grep -q '^ready' "$logs/settings.log" || die "no settings: $(cat "$logs/settings.log")"
"$xfce4" panel "$session" || die "the panel did not start, see $session/log"

if [ -n "$demo" ]; then
    start_sample_daemon "$build" --speed 0
else
    # The IDE's daemon announces itself in the user's home.
    export HOME=$users_home
fi
spawn program "$build/src/app/brimwatch"
program_pid=$spawned
wait_for 30 embedded_once "$program_pid" || die "no item appears in the panel: $(tail -n 3 "$logs/program.log")"

take_pictures light
echo Net/ThemeName=Adwaita-dark >&8
wait_for 30 grep -q '^changed' "$logs/settings.log" || die "the setting did not change"
wait_for 30 panel_is_dark || die "the panel did not turn dark"
take_pictures dark
say "Pictures are in $pictures:"
(cd "$pictures" && ls -1 ./*-light.png ./*-dark.png) >&2
