# shellcheck shell=bash
# Where our item and our popover are on a panel's screen; sourced inside a session (its env sourced
# before), with tools/lib/common.sh. HELPERS is the folder of the X11 helpers.
#
# A place is `X Y WIDTH HEIGHT` in pixels of the screen. Nothing here knows where a panel puts items.

# How large the popover is on a desktop of scale $BRIMWATCH_SCALE. Where windows may be seen through, its own has a shadow
# around it.
BRIMWATCH_SCALE=${BRIMWATCH_SCALE:-1}
POPOVER_WIDTH=$((380 * BRIMWATCH_SCALE)) POPOVER_HEIGHT=$((490 * BRIMWATCH_SCALE))
SHADOW_LEFT=$((14 * BRIMWATCH_SCALE)) SHADOW_TOP=$((10 * BRIMWATCH_SCALE))
SHADOW_WIDTH=$((28 * BRIMWATCH_SCALE)) SHADOW_HEIGHT=$((28 * BRIMWATCH_SCALE))

# windows_of PID KIND: the places of its windows that can be seen and are of that kind.
windows_of()
{
    "$HELPERS/x-windows" "$1" | awk -v kind="$2" '$6 == "viewable" && $7 == kind { print $2, $3, $4, $5 }'
}

# embedded_items PID: the places of its windows inside a panel. A window that was docked but not yet
# laid out is 1 pixel wide.
embedded_items() { windows_of "$1" embedded | awk '$3 > 8 && $4 > 8'; }

embedded_once() { [ "$(embedded_items "$1" | wc -l)" = 1 ]; }

nothing_embedded() { [ -z "$(embedded_items "$1")" ]; }

# popover_places PID: where the popover is shown, without its shadow; nothing when it is closed.
popover_places()
{
    windows_of "$1" toplevel | awk -v w=$POPOVER_WIDTH -v h=$POPOVER_HEIGHT \
        -v left=$SHADOW_LEFT -v top=$SHADOW_TOP -v wide=$SHADOW_WIDTH -v high=$SHADOW_HEIGHT '
        $3 == w && $4 == h
        $3 == w + wide && $4 == h + high { print $1 + left, $2 + top, w, h }'
}

popover_open() { [ -n "$(popover_places "$1")" ]; }

popover_closed() { [ -z "$(popover_places "$1")" ]; }

# managed_windows PID: its windows that the window manager lists, but for those that are to be left out of taskbars
# and switchers. Items in a panel and popups are none of them.
managed_windows()
{
    "$HELPERS/x-windows" "$1" | awk '{ print $1 }' |
        grep -Fx -f <(xprop -root _NET_CLIENT_LIST | grep -o '0x[0-9a-f]*') |
        while read -r window; do
            xprop -id "$window" _NET_WM_STATE | grep -q _NET_WM_STATE_SKIP_TASKBAR || echo "$window"
        done
}

# window_list_is_kept: there is a window manager that keeps such a list.
window_list_is_kept() { xprop -root _NET_CLIENT_LIST | grep -q 'window id'; }

# registered_items PID: what the watcher of this session's bus lists of that process, one a line. A desktop has items of its
# own there; what nobody stands behind any more is listed too.
registered_items()
{
    local item owner
    dbus-send --session --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:RegisteredStatusNotifierItems 2>/dev/null | sed -n 's/^ *string "\(.*\)"$/\1/p' |
        while IFS= read -r item; do
            owner=$(dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
                org.freedesktop.DBus.GetConnectionUnixProcessID "string:${item%%/*}" 2>/dev/null)
            [ -n "$owner" ] && [ "${owner##* }" != "$1" ] || echo "$item"
        done
}

registered_once() { [ "$(registered_items "$1" | wc -l)" = 1 ]; }

# differ ONE.png OTHER.png: they are not the same picture.
differ()
{
    [ "$(convert "$1" "$2" -alpha off -compose difference -composite -colorspace gray -threshold 8% \
        -format '%[fx:maxima]' info:)" != 0 ]
}

# largest_difference ONE.png OTHER.png WxH+X+Y: the place of the largest thing in that part that is in
# one picture alone, or nothing. Parts of it may be 6 pixels apart; what else moved aside is left out.
largest_difference()
{
    local box width height x y left top
    IFS='x+' read -r _ _ left top <<<"$3"
    box=$(convert "$1" "$2" -alpha off -crop "$3" +repage -compose difference -composite -colorspace gray \
        -threshold 8% -morphology Close Square:3 -define connected-components:verbose=true \
        -connected-components 8 null: 2>/dev/null |
        awk '$NF ~ /255/ && $4 > area { area = $4; box = $2 } END { print box }')
    [ -n "$box" ] || return 0
    IFS='x+' read -r width height x y <<<"$box"
    printf '%s %s %s %s\n' $((x + left)) $((y + top)) "$width" "$height"
}

# settled FILE.png GEOMETRY: takes pictures of that part of the screen until two in a row agree.
settled()
{
    local shot before status=0
    shot=$(dirname "${BASH_SOURCE[0]}")/shot.sh
    before=$(mktemp --suffix=.png)
    { "$shot" "$before" "$2" && "$shot" "$1" "$2" && ! differ "$before" "$1"; } || status=1
    rm -f "$before"
    return "$status"
}

# geometry_of X Y WIDTH HEIGHT: the same place as WxH+X+Y.
geometry_of() { printf '%sx%s+%s+%s\n' "$3" "$4" "$1" "$2"; }

# coloured_pixels FILE.png green|orange|red: how many pixels have clearly that hue.
coloured_pixels()
{
    convert "$1" -alpha off -depth 8 txt:- | awk -v want="$2" '
        function hex(s) { return index("0123456789ABCDEF", substr(s, 1, 1)) * 16 + index("0123456789ABCDEF", substr(s, 2, 1)) - 17 }
        match($0, /#[0-9A-F]+/) {
            c = substr($0, RSTART + 1, 6)
            r = hex(substr(c, 1, 2)); g = hex(substr(c, 3, 2)); b = hex(substr(c, 5, 2))
            max = r > g ? (r > b ? r : b) : (g > b ? g : b)
            min = r < g ? (r < b ? r : b) : (g < b ? g : b)
            if (max < 90 || max - min < 0.5 * max) next
            if (max == r) h = 60 * (g - b) / (max - min)
            else if (max == g) h = 120 + 60 * (b - r) / (max - min)
            else h = 240 + 60 * (r - g) / (max - min)
            if (h < 0) h += 360
            if (want == "green" && h >= 110 && h <= 165) n++
            if (want == "orange" && h >= 22 && h <= 48) n++
            if (want == "red" && (h <= 12 || h >= 345)) n++
        }
        END { print n + 0 }'
}

# coloured_at_edges FILE.png: how many pixels of the outermost row and column on each side have a colour.
coloured_at_edges()
{
    local gravity count sum=0
    for gravity in North South; do
        count=$(colourful "$1" "$gravity" 0x1) && sum=$((sum + count))
    done
    for gravity in West East; do
        count=$(colourful "$1" "$gravity" 1x0) && sum=$((sum + count))
    done
    echo "$sum"
}

# colourful FILE.png GRAVITY WxH: how many pixels of that part are clearly no grey.
colourful()
{
    convert "$1" -alpha off -gravity "$2" -crop "$3+0+0" +repage -colorspace HSB -channel G -separate +channel \
        -threshold 45% -format '%[fx:round(mean*w*h)]' info:
}

# middle_of X Y WIDTH HEIGHT
middle_of() { printf '%s %s\n' $(($1 + $3 / 2)) $(($2 + $4 / 2)); }
