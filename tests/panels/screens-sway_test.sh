#!/bin/bash
# screens-sway_test.sh screens-sway   drives the program on four outputs of sway, each with waybar, which have scales of
# their own and begin left of 0 and above it; then one is unplugged; then with the bar at each edge, and on a small output.
session_of=sway
# shellcheck source=../support/desktop_test.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/desktop_test.sh"

# Of each output: its name, where it begins in the layout, its size there, and how many pixels each unit has. The last one
# is the one to unplug.
name=('' HEADLESS-1 HEADLESS-2 HEADLESS-3 X11-1)
left=('' 0 -1280 1280 0) top=('' 0 0 -200 720) width=('' 1280 1280 1280 1280) scale=('' 1 1.5 2 1)
bar=28

picture() { grim -o "${name[$1]}" "$out/pictures/$2-$1.png" 2>>"$out/shot.log"; }

# pixels OUTPUT UNITS, units OUTPUT PIXELS: of that output, in whole numbers.
pixels() { awk -v scale="${scale[$1]}" -v units="$2" 'BEGIN { printf "%d\n", units * scale }'; }
units() { awk -v scale="${scale[$1]}" -v pixels="$2" 'BEGIN { printf "%d\n", pixels / scale }'; }

# changed OUTPUT BEFORE [WxH+X+Y]: the largest place there, in pixels, that is not as in the picture BEFORE.
changed()
{
    picture "$1" now
    largest_difference "$out/pictures/$2-$1.png" "$out/pictures/now-$1.png" \
        "${3:-$(identify -format '%wx%h+0+0' "$out/pictures/$2-$1.png")}"
}

# popover_on OUTPUT: where it is there, in pixels: light, on a dark desktop.
popover_on()
{
    local box wide high x y
    picture "$1" now
    box=$(convert "$out/pictures/now-$1.png" -alpha off -colorspace gray -threshold 70% -morphology Close Square:3 \
        -define connected-components:verbose=true -connected-components 8 null: 2>/dev/null |
        awk '$NF ~ /255/ && $4 > area { area = $4; box = $2 } END { print box }')
    [ -n "$box" ] || return
    IFS='x+' read -r wide high x y <<<"$box"
    [ "$wide" -ge $(($(pixels "$1" 380) - 3)) ] && echo "$x $y $wide $high"
}

shown_on() { [ -n "$(popover_on "$1")" ]; }
not_shown_on() { ! shown_on "$1"; }
shown_on_any() { shown_on 1 || shown_on 2 || shown_on 3; }
shown_on_none() { ! shown_on_any; }

item_on()
{
    local place
    place=$(changed "$1" without)
    # shellcheck disable=SC2086
    set -- "$1" $place
    [ $# = 5 ] && [ "$4" -ge 16 ] && [ "$5" -ge 8 ] && echo "$2 $3 $4 $5"
}
item_settled_on()
{
    local first second
    first=$(item_on "$1") && second=$(item_on "$1") && [ "$first" = "$second" ]
}
# locate_item_on OUTPUT: remembers where it is.
locate_item_on()
{
    click $((left[1] + 300)) $((top[1] + 300)) 0
    wait_for 30 item_settled_on "$1" || return
    item=$(item_on "$1")
}

# click_in OUTPUT X Y BUTTON: in pixels of that output.
click_in() { click $((left[$1] + $(units "$1" "$2"))) $((top[$1] + $(units "$1" "$3"))) "${4:-1}"; }
click_item_on()
{
    # shellcheck disable=SC2046,SC2086
    click_in "$1" $(middle_of $item)
}

# opens_on OUTPUT: shows the popover there; the pointer, which is light too, goes away from it then.
opens_on() { wait_for 30 shown_on "$1" && click $((left[$1] + 300)) $((top[$1] + 300)) 0; }

# as_large_as_it_is OUTPUT: to three pixels, as its line is darker.
as_large_as_it_is()
{
    local x y w h
    read -r x y w h < <(popover_on "$1")
    [ "$w" -ge $(($(pixels "$1" 380) - 3)) ] && [ "$w" -le $(($(pixels "$1" 380) + 3)) ] &&
        [ "$h" -ge $(($(pixels "$1" 490) - 3)) ] && [ "$h" -le $(($(pixels "$1" 490) + 3)) ]
}

# below_the_item OUTPUT: under the bar, over or beside the item's columns, and within the output.
below_the_item()
{
    local x y w h ix iy iw ih
    read -r x y w h < <(popover_on "$1")
    read -r ix iy iw ih <<<"$item"
    [ "$y" -ge $(($(pixels "$1" $bar) - 2)) ] && [ "$y" -le $(($(pixels "$1" $bar) + 3)) ] &&
        [ "$x" -ge 0 ] && [ $((x + w)) -le "$(pixels "$1" "${width[$1]}")" ] &&
        [ "$x" -le $((ix + iw)) ] && [ $((x + w)) -ge "$ix" ]
}

# beside_the_bar EDGE: on the first output, on the inner side of the item and along the edge at its place.
beside_the_bar()
{
    local x y w h ix iy iw ih
    read -r x y w h < <(popover_on 1)
    read -r ix iy iw ih <<<"$item"
    [ "$x" -ge 0 ] && [ $((x + w)) -le 1280 ] && [ "$y" -ge 0 ] && [ $((y + h)) -le 720 ] || return
    case $1 in
        top) [ "$y" -ge $((iy + ih)) ] && [ "$y" -le $((iy + ih + 24)) ] ;;
        bottom) [ $((y + h)) -le "$iy" ] && [ $((y + h)) -ge $((iy - 24)) ] ;;
        left) [ "$x" -ge $((ix + iw)) ] && [ "$x" -le $((ix + iw + 64)) ] ;;
        right) [ $((x + w)) -le "$ix" ] && [ $((x + w)) -ge $((ix - 64)) ] ;;
    esac || return
    case $1 in
        left | right) [ "$y" -le $((iy + ih)) ] && [ $((y + h)) -ge "$iy" ] ;;
        *) [ "$x" -le $((ix + iw)) ] && [ $((x + w)) -ge "$ix" ] ;;
    esac
}

outputs_are() { [ "$(swaymsg -r -t get_outputs | grep -c '"active": true')" = "$1" ]; }
place_output() # place_output N MODE: at its place and scale
{
    swaymsg -q "output ${name[$1]} mode $2 pos ${left[$1]} ${top[$1]} scale ${scale[$1]}"
}

# bar_stands OUTPUT: it is drawn there, and changes no more; the output without the item looks so.
bar_stands()
{
    picture "$1" without
    [ -z "$(changed "$1" without)" ] && [ "$(identify -format %k "$out/pictures/without-$1.png")" -ge 2 ]
}

# bar_at EDGE: ends the bar and starts it there; the program is away meanwhile, so that the item can be told from it.
bar_at()
{
    end_process "$program_pid"
    "$script" unpanel "$session"
    BAR_POS=$1 "$script" panel "$session" && wait_for 30 bar_stands 1 || return
    start_program
    wait_for 30 registered_once "$program_pid"
}

# The play ---------------------------------------------------------------------------------------
NO_PANEL=1 OUTPUT_WINDOWS=1 CLOCK=off start_session

swaymsg -q create_output
swaymsg -q create_output
place_output 1 1280x720
place_output 2 1920x1080
place_output 3 2560x1440
place_output 4 1280x720
needed "there are four outputs" wait_for 30 outputs_are 4
needed "there are bars" "$script" panel "$session"
for output in 1 2 3 4; do
    needed "one stands on output $output" wait_for 30 bar_stands $output
done

start_daemon --speed 0
start_program

for output in 1 2 3 4; do
    needed "the item is on output $output, of scale ${scale[$output]}" locate_item_on $output
done
for output in 1 2 3 4; do
    needed "it is in its place on output $output" locate_item_on $output
    others=(1 2 3 4)
    unset "others[$((output - 1))]"
    click_item_on $output
    if check "a click opens the popover on output $output" opens_on $output; then
        check "below the item there" below_the_item $output
        check "in its own size" as_large_as_it_is $output
        picture $output open
        for other in "${others[@]}"; do check "it is not on output $other" not_shown_on "$other"; done
        click $((left[${others[-1]}] + 200)) $((top[${others[-1]}] + 400))
        check "a click on another output closes it" wait_for 30 not_shown_on $output
        sleep 0.4 # The program ignores clicks for a quarter of a second, so that one click is not two.
    fi
done

needed "it is in its place on the last output" locate_item_on 4
click_item_on 4
needed "a click opens the popover there" opens_on 4
DISPLAY=$BRIMWATCH_OUTER_DISPLAY "$HELPERS/x-windows" --close "$(cat "$session/sway.pid")" >"$out/unplugged.txt"
needed "the output is unplugged" wait_for 30 outputs_are 3
check "the program goes on" alive "$program_pid"
needed "the item is on the first output still" locate_item_on 1
"$build/src/cli/brimwatchctl" toggle
check "it opens without a click" wait_for 30 shown_on_any
key Escape
check "and closes" wait_for 30 shown_on_none
sleep 0.4
click_item_on 1
check "a click opens it on the first output" opens_on 1
key Escape
wait_for 30 not_shown_on 1

for edge in top bottom left right; do
    needed "a bar at the $edge has the item" bar_at $edge
    needed "which is to be seen" locate_item_on 1
    click_item_on 1
    if check "a click opens the popover" opens_on 1; then
        check "at the item, off the bar" beside_the_bar $edge
        picture 1 "$edge"
        key Escape
        check "Escape closes it" wait_for 30 not_shown_on 1
    fi
done

width[1]=640
swaymsg -q output HEADLESS-1 mode 640x400
needed "a bar on a small output has the item" bar_at top
needed "which is to be seen there" locate_item_on 1
click_item_on 1
fits() { local x y w h; read -r x y w h < <(popover_on 1) && [ "$y" -ge 26 ] && [ $((y + h)) -le 400 ] && [ "$h" -ge 360 ]; }
if check "a click opens the popover" opens_on 1; then
    check "which has the height that is left" wait_for 10 fits
    picture 1 small
    key Escape
    check "Escape closes it" wait_for 30 not_shown_on 1
fi
check "the program has run all the while" alive "$program_pid"
