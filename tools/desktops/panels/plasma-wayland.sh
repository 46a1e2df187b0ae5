#!/bin/bash
# Plasma 5 or 6 on Wayland (plasmashell, kded as the watcher, kwin_wayland drawing into a window on Xvfb); Xwayland on demand.
# PANEL_SIZE=36 PANEL_POS=3|4 (3 top, 4 bottom) PANEL_FLOATING=1|0 (as Plasma 6 and 5 have it) CLOCK=on
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=plasma.sh
. "$DESKTOPS/panels/plasma.sh"
NAME=plasma-wayland
# Its panel takes minutes to come back. KWin lists the windows of Wayland programs for nobody but its own.
FACTS=(protocol=sni form=badge restarts=no bus=needed windows=unlisted display=kwin weight=heavy
    # It floats 8 px below the edge.
    panel_end=$((${PANEL_SIZE:-36} + 8 * PANEL_FLOATING)))

session_start()
{
    local kwin=kwin_wayland outer line
    outer=$(value_of DISPLAY)
    configure
    # Without compositing it shows nothing at all.
    printf '[Compositing]\nEnabled=true\n' >"$DIR/home/.config/kwinrc"
    # Clicks, keys and pictures go to the display around the session.
    env_set BRIMWATCH_OUTER_DISPLAY "$outer"
    env_set BRIMWATCH_LAYERS 1
    ENVV+=(KWIN_COMPOSE=Q XDG_SESSION_TYPE=wayland)
    # It has a capability that containers refuse to give; a copy has none.
    if ! "$kwin" --version >/dev/null 2>&1; then
        kwin=$RUN/kwin_wayland
        cp "$(command -v kwin_wayland)" "$kwin"
    fi
    # It alone knows the names of its displays, and tells what it starts.
    rm -f "$DIR/kwin.vars"
    cat >"$DIR/tell-displays" <<SH
#!/bin/sh
env | grep -E '^(DISPLAY|WAYLAND_DISPLAY|XAUTHORITY)=' >'$DIR/kwin.vars.part'
mv '$DIR/kwin.vars.part' '$DIR/kwin.vars'
SH
    chmod +x "$DIR/tell-displays"
    spawn kwin "$kwin" --x11-display "$outer" --width "${SIZE%x*}" --height "${SIZE#*x}" --no-lockscreen \
        --no-global-shortcuts --socket wayland-kwin --xwayland "$DIR/tell-displays"
    wait_for 30 test -s "$DIR/kwin.vars" || die "kwin_wayland did not start, see $DIR/log/kwin.log"
    while read -r line; do
        [ -z "${line#*=}" ] || env_set "${line%%=*}" "${line#*=}"
    done <"$DIR/kwin.vars"
    env_set XDG_SESSION_TYPE wayland
    ENVV+=(QT_QPA_PLATFORM=wayland)
    start_services
}

# The panel is light and lets some of the picture behind it through.
panel_is_drawn()
{
    local y=12
    [ "${PANEL_POS:-3}" = 4 ] && y=$((${SIZE#*x} - 13))
    [ "$(on_screen import -silent -window root -crop "400x1+$((${SIZE%x*} / 2))+$y" +repage -format '%[fx:mean>0.6]' info:)" = 1 ]
}

# Its windows are no X11 ones.
panel_ready() { sni_host_registered && bus_has org.kde.plasmashell && panel_is_drawn; }

panel_main "$@"
