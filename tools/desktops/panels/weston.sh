#!/bin/bash
# Weston 10, a Wayland compositor with neither a layer shell nor, here, Xwayland nor a place for items, drawing into a window
# on Xvfb. Beside it stands a terminal, for something else to click on.
NAME=weston
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start()
{
    local outer
    outer=$(value_of DISPLAY)
    cat >"$DIR/home/.config/weston.ini" <<INI
[shell]
background-color=0xff000000
panel-position=none
animation=none
startup-animation=none
close-animation=none
focus-animation=none
locking=false
INI
    # Clicks, keys and pictures go to the display around the session.
    env_set BRIMWATCH_OUTER_DISPLAY "$outer"
    spawn weston weston --backend=x11-backend.so --use-pixman --width="${SIZE%x*}" --height="${SIZE#*x}" \
        --socket=wayland-weston --idle-time=0
    wait_for 30 test -S "$RUN/wayland-weston" || die "weston did not start, see $DIR/log/weston.log"
    env_set WAYLAND_DISPLAY wayland-weston
    # What is on the screen is known from pictures alone.
    env_set BRIMWATCH_LAYERS 1
    env_unset DISPLAY
}

panel_start() { spawn panel weston-terminal --maximized; }

# Its light title bar goes from edge to edge.
panel_ready()
{
    [ "$(on_screen import -silent -window root -crop "${SIZE%x*}x1+0+20" +repage -format '%[fx:mean>0.5]' info:)" = 1 ]
}

panel_main "$@"
