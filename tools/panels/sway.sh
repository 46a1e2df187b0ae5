#!/bin/bash
# sway (headless, software-rendered) with waybar and its tray; Xwayland on demand.
# BAR_HEIGHT=28 BAR_POS=top|bottom ICON_SIZE=21 CLOCK=on
NAME=sway
DISPLAY_KIND=none
# shellcheck source=lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

session_start()
{
    local config=$DIR/home/.config line clock=', "clock"' preload=()
    [ "$CLOCK" = on ] || clock=
    mkdir -p "$config/sway" "$config/waybar"
    cat >"$config/sway/config" <<CONF
xwayland enable
output * mode ${SIZE} bg #000000 solid_color
default_border none
seat seat0 hide_cursor 0
exec_always printf 'WAYLAND_DISPLAY=%s\nDISPLAY=%s\nSWAYSOCK=%s\n' "\$WAYLAND_DISPLAY" "\$DISPLAY" "\$SWAYSOCK" > $DIR/sway.vars.tmp && mv $DIR/sway.vars.tmp $DIR/sway.vars
CONF
    cat >"$config/waybar/config" <<JSON
{ "layer": "top", "position": "${BAR_POS:-top}", "height": ${BAR_HEIGHT:-28},
  "modules-left": ["sway/workspaces"], "modules-center": [], "modules-right": ["tray"$clock],
  "tray": { "icon-size": ${ICON_SIZE:-21}, "spacing": 6 } }
JSON
    printf '* { font-family: "DejaVu Sans"; font-size: 13px; min-height: 0; }\nwindow#waybar { background: #303030; color: #fff; }\n' \
        >"$config/waybar/style.css"
    env_set XDG_CURRENT_DESKTOP sway
    env_set XDG_SESSION_TYPE wayland
    rm -f "$DIR/sway.vars"
    ENVV+=(WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman)
    # sway refuses to run as root.
    [ "$(id -u)" != 0 ] || preload=("LD_PRELOAD=$HELPERS/stay-root")
    spawn sway env "${preload[@]}" sway -c "$config/sway/config"
    wait_for 20 test -s "$DIR/sway.vars" || die "sway did not start, see $DIR/log/sway.log"
    while read -r line; do
        [ -z "${line#*=}" ] || env_set "${line%%=*}" "${line#*=}"
    done <"$DIR/sway.vars"
    env_set GDK_BACKEND wayland
    env_set BRIMWATCH_PANEL_SIZE "$SIZE"
    # A headless seat has no pointer at all until somebody brings one.
    spawn vpointer python3 "$PANELS/vpointer.py" serve
    wait_for 10 test -S "$RUN/vpointer" || die "no virtual pointer, see $DIR/log/vpointer.log"
}

panel_start() { spawn panel waybar; }

panel_ready() { sni_host_registered; }

panel_main "$@"
