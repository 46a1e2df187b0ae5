# shellcheck shell=bash
# How a panel shows our item, and where it is on one that is running. Sourced inside a session, after item.sh, with the
# panel's `script`, the program's process in `program_pid`, `shot NAME` and `click X Y BUTTON`, which go to this session, and
# its pictures in `out`/pictures; `without` is one of the screen from before the program's start.

: "${script:?}" "${out:?}"
program_pid=${program_pid:-}

# What the panel's script says of it: `protocol`, xembed or sni; `form`, how the item is drawn there, wide or badge; whether the
# panel `restarts` alone; whether it needs the session `bus`. What most panels do is left out: our `item` is a window, where
# the protocol is xembed, and not a copy of one; the `windows` of programs are listed; the `display` is that of Xvfb; where the
# panel ends is not told (`panel_end`, the row of pixels below it).
protocol='' form='' restarts='' bus='' item=window windows=listed display=xvfb panel_end=''
eval "$("$script" facts)"
[ -n "$protocol" ] || die "$script does not say how it shows our item"
export restarts bus windows display panel_end

# look_at_screen: remembers its size, and where panels are on it: at the top, with the tray on their right; GNOME announces
# things in the middle.
look_at_screen()
{
    shot screen
    read -r screen_width screen_height < <(identify -format '%w %h\n' "$out/pictures/screen.png")
    panel_strip=$((screen_width / 3))x40+$((screen_width - screen_width / 3))+0
}

# item_is_a_window: of our own, which stands where it is seen.
item_is_a_window() { [ "$protocol" = xembed ] && [ "$item" = window ]; }

# On panels that draw the item themselves, it is what changed on the screen since the picture `without`.
drawn_item()
{
    shot now
    largest_difference "$out/pictures/without.png" "$out/pictures/now.png" "$panel_strip"
}

# The same twice in a row: a panel may still be laying out.
item_settled()
{
    local first second
    first=$(item_place) && second=$(item_place) && [ -n "$first" ] && [ "$first" = "$second" ]
}

item_place()
{
    local place
    if item_is_a_window; then
        place=$(embedded_items "$program_pid" | head -n 1)
    else
        place=$(drawn_item)
    fi
    # shellcheck disable=SC2086
    set -- $place
    [ $# = 4 ] && [ "$3" -ge 8 ] && [ "$4" -ge 8 ] || return
    # What is much wider than high on a panel of square icons is not ours alone.
    [ "$form" = wide ] || [ "$3" -le $((2 * $4)) ] || return
    echo "$place"
}

# locate_item: remembers where it is. The pointer goes away first: a panel lights up what it is over.
locate_item()
{
    click 40 $((screen_height - 60)) 0
    wait_for 30 item_settled && place_of_item=$(item_place)
}

crop_item()
{
    # shellcheck disable=SC2086
    shot item "$(geometry_of $place_of_item)"
}

label_has() { crop_item && [ "$(coloured_pixels "$out/pictures/item.png" "$1")" -ge 8 ]; }

click_item() # click_item BUTTON
{
    # shellcheck disable=SC2046,SC2086
    click $(middle_of $place_of_item) "$1"
}
