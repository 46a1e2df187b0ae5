#!/bin/bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
PROGRAM=pictures
# shellcheck source=lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"

usage()
{
    cat <<'END'
pictures.sh [NAME...]   takes the pictures of the documentation anew, from the real program

  desktop   the label and the popover on the Xfce panel at scale 2, light and dark
  faces     the settings, and the popover while the daemon does not answer
  bars      waybar, i3blocks, polybar and tmux with the examples for them
  history   the page of the history of a simulated user, light, dark and narrow

Without NAMEs all of them. They go to $BRIMWATCH_PICTURES (default docs/pictures). Packages that are missing are
installed, given root or sudo without a password.
END
}

# The part of it that runs in a session, with the folder of the part that does not.
inside=''
if [ "${1:-}" = --inside ] && [ $# = 2 ]; then
    inside=1 work=$2
    set -- faces
fi
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(desktop faces bars history)
for name in "${names[@]}"; do
    case $name in
        desktop | faces | bars | history) ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
done
bars=(waybar i3blocks polybar tmux)
purposes=(build run panel-xfce4)
[[ " ${names[*]} " != *" bars "* ]] || purposes+=(bars)
[[ " ${names[*]} " != *" history "* ]] || purposes+=(pictures-history)
[[ " ${names[*]} " != *" faces "* ]] || purposes+=(panel-trayer)
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}$inside" ] || "$root/tools/lib/packages.sh" "${purposes[@]}"

build=${BRIMWATCH_BUILD:-$root/build/release}
if [ -z "$inside" ]; then
    out=${BRIMWATCH_PICTURES:-$root/docs/pictures}
    mkdir -p "$out"
    out=$(cd "$out" && pwd)
    work=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-pictures.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    trap 'exit 130' INT TERM
fi
# shellcheck source=lib/build.sh
. "$root/tools/lib/build.sh"
build_programs() { [ -n "${BRIMWATCH_BUILD:-}" ] || build_preset release || exit 1; }

# keep FILE.png NAME: as one of the documentation's, without what would differ from day to day but the picture.
keep()
{
    # No dithering: it speckles what is plain.
    convert "$1" -strip +dither -colors 250 -define png:compression-level=9 -define png:exclude-chunks=date,time "PNG8:$out/$2.png"
    say "$out/$2.png"
}

desktop()
{
    build_programs
    BRIMWATCH_BUILD=$build BRIMWATCH_SCALE=2 "$root/tools/show.sh" --demo "$work/desktop" >"$work/log" 2>&1 || {
        tail -n 20 "$work/log" >&2
        die "tools/show.sh took no pictures"
    }
    local name
    # The end of the panel, and the popover under it.
    for name in light dark; do
        convert "$work/desktop/screen-$name.png" -crop 860x1080+1700+0 +repage "$work/desktop/popover-$name.png"
    done
    for name in label-light label-dark popover-light popover-dark; do keep "$work/desktop/$name.png" "$name"; done
}

# in_a_session COMMAND...: on a display and a bus of their own.
in_a_session()
{
    SIZE=2560x1440 BRIMWATCH_SCALE=2 BRIMWATCH_PACKAGES_CHECKED=1 "$root/tools/desktops/panels/trayer.sh" run "$work/session" -- "$@" >>"$work/log" 2>&1 ||
        die "no picture: $(tail -n 3 "$work/log")"
}

# take_faces, inside: what the program shows without a daemon, and its settings with one.
take_faces()
{
    local program
    HELPERS=$("$root/tools/desktops/lib/helpers.sh")
    # shellcheck source=desktops/lib/item.sh
    . "$root/tools/desktops/lib/item.sh"
    mkdir -p "$HOME/.gemini/antigravity/daemon"
    export QT_SCALE_FACTOR=$BRIMWATCH_SCALE
    logs=$work
    trap end_processes EXIT
    trap 'exit 130' INT TERM
    spawn program "$build/src/app/brimwatch"
    program=$spawned
    wait_for 30 is_offline || die "the program does not answer"
    "$build/src/cli/brimwatchctl" toggle
    shoot_popover "$program" offline
    "$build/src/cli/brimwatchctl" toggle
    start_sample_daemon "$build" --speed 0
    "$build/src/cli/brimwatchctl" refresh
    "$build/src/cli/brimwatchctl" settings
    shoot_popover "$program" settings
}

is_offline() { [ "$("$build/src/cli/brimwatchctl" status --template '{source} {state}')" = "program offline" ]; }

# shoot_popover PID NAME
shoot_popover()
{
    wait_for 30 popover_open "$1" || die "the popover does not open"
    # shellcheck disable=SC2046
    wait_for 30 settled "$work/$2.png" "$(geometry_of $(popover_places "$1" | head -n 1))" || die "the popover does not come to rest"
}

faces()
{
    build_programs
    in_a_session "${BASH_SOURCE[0]}" --inside "$work"
    keep "$work/offline.png" offline
    keep "$work/settings.png" settings
}

bars()
{
    local bar place=''
    build_programs
    for bar in "${bars[@]}"; do
        # Their test shows the quota in the bar and takes pictures on the way.
        BRIMWATCH_BUILD=$build BRIMWATCH_LOGS=$work "$root/tests/bars/bar_test.sh" "$bar" >"$work/log" 2>&1 || {
            grep FAILED "$work/log" >&2 || tail -n 5 "$work/log" >&2
            die "$bar does not show what it should"
        }
        # Where the bar has our text.
        eval "$("$root/tools/desktops/bars/$bar.sh" facts)"
        convert "$work/bars/$bar/pictures/running.png" -crop "$place" +repage "$work/$bar.png"
        keep "$work/$bar.png" "bar-$bar"
    done
}

# shoot_page WIDTHxHEIGHT NAME [OPTION]: the page in a browser, with few enough colours to be small.
shoot_page()
{
    HOME=$work timeout 60 chromium --headless=new --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$work/browser" \
        --window-size="${1/x/,}" ${3:+"$3"} --screenshot="$work/$2.png" "file://$work/history.html" >"$work/log" 2>&1 ||
        die "no picture: $(tail -n 3 "$work/log")"
    convert "$work/$2.png" +dither -colors 64 "PNG8:$work/$2-small.png"
    keep "$work/$2-small.png" "$2"
}

history()
{
    build_programs
    "$root/tools/forecast/sample-history.py" "$work/state/brimwatch/history"
    XDG_STATE_HOME=$work/state "$build/src/cli/brimwatchctl" history --format html >"$work/history.html"
    shoot_page 1100x1300 history-light
    shoot_page 1100x1300 history-dark --blink-settings=preferredColorScheme=0
    shoot_page 500x1300 history-narrow
}

if [ -n "$inside" ]; then
    take_faces
else
    for name in "${names[@]}"; do "$name"; done
fi
