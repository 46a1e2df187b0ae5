# shellcheck shell=bash
# A headless, software-rendered sway with a pointer; Xwayland on demand. Sourced with DISPLAY_KIND=none.
# SWAY_CONFIG holds further lines of its configuration. With OUTPUT_WINDOWS=N it has N outputs more, which are windows on an
# Xvfb around it, $BRIMWATCH_OUTER_DISPLAY: what closes such a window unplugs its output.
# shellcheck disable=SC2034
[ -z "${OUTPUT_WINDOWS:-}" ] || DISPLAY_KIND=x11

start_sway()
{
    local config=$DIR/home/.config line preload=() outer
    if [ -n "${OUTPUT_WINDOWS:-}" ]; then
        # It asks for the atoms of window managers alone that have been.
        start_openbox
        outer=$(value_of DISPLAY)
        env_set BRIMWATCH_OUTER_DISPLAY "$outer"
        ENVV+=("WLR_BACKENDS=headless,x11" "WLR_X11_OUTPUTS=$OUTPUT_WINDOWS")
    else
        ENVV+=(WLR_BACKENDS=headless)
    fi
    mkdir -p "$config/sway"
    cat >"$config/sway/config" <<CONF
xwayland enable
output * mode ${SIZE} bg #000000 solid_color
default_border none
seat seat0 hide_cursor 0
${SWAY_CONFIG:-}
exec_always printf 'WAYLAND_DISPLAY=%s\nDISPLAY=%s\nSWAYSOCK=%s\n' "\$WAYLAND_DISPLAY" "\$DISPLAY" "\$SWAYSOCK" > $DIR/sway.vars.tmp && mv $DIR/sway.vars.tmp $DIR/sway.vars
CONF
    env_set XDG_CURRENT_DESKTOP sway
    env_set XDG_SESSION_TYPE wayland
    rm -f "$DIR/sway.vars"
    ENVV+=(WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman)
    # sway refuses to run as root.
    [ "$(id -u)" != 0 ] || preload=("LD_PRELOAD=$HELPERS/stay-root")
    spawn sway env "${preload[@]}" sway -c "$config/sway/config"
    wait_for 40 test -s "$DIR/sway.vars" || die "sway did not start, see $DIR/log/sway.log"
    while read -r line; do
        [ -z "${line#*=}" ] || env_set "${line%%=*}" "${line#*=}"
    done <"$DIR/sway.vars"
    env_set GDK_BACKEND wayland
    env_set BRIMWATCH_LAYERS 1
    # A headless seat has no pointer at all until somebody brings one.
    spawn vpointer python3 "$DESKTOPS/lib/vpointer.py" serve
    wait_for 40 test -S "$RUN/vpointer" || die "no virtual pointer, see $DIR/log/vpointer.log"
}
