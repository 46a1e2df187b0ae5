#!/bin/bash
# i3bar (XEmbed alone) in i3 on Xvfb.
# BAR_POS=top|bottom CLOCK=on
NAME=i3bar
FACTS=(protocol=xembed form=badge restarts=yes bus=unused)
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start()
{
    local config=$DIR/home/.config/i3 clock='status_command while :; do date +%H:%M; sleep 30; done'
    [ "$CLOCK" = on ] || clock=
    mkdir -p "$config"
    # i3 would start its bar itself and again after its end: the bar of this session is panel_start's.
    cat >"$config/config" <<CONF
# i3 config file (v4)
font pango:DejaVu Sans 10
ipc-socket $RUN/i3-ipc
bar {
    id bar-0
    i3bar_command true
    position ${BAR_POS:-top}
    $clock
}
CONF
    env_set XDG_CURRENT_DESKTOP i3
    spawn i3 i3 -c "$config/config"
    wait_for 40 test -S "$RUN/i3-ipc" || die "i3 did not start, see $DIR/log/i3.log"
}

panel_start() { spawn panel i3bar --bar_id=bar-0 --socket="$RUN/i3-ipc"; }

panel_ready() { tray_manager_runs && [ -n "$(inside xdotool search --onlyvisible --class i3bar)" ]; }

panel_main "$@"
