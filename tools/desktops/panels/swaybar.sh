#!/bin/bash
# sway (headless, software-rendered) with its own bar, which holds SNI items; Xwayland on demand.
# BAR_HEIGHT=28 BAR_POS=top|bottom CLOCK=on
NAME=swaybar
FACTS=(protocol=sni form=badge restarts=yes bus=needed display=sway)
DISPLAY_KIND=none
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck source=../lib/sway-session.sh
. "$DESKTOPS/lib/sway-session.sh"

session_start()
{
    local clock='status_command while :; do date +%H:%M; sleep 30; done'
    [ "$CLOCK" = on ] || clock=
    # sway would start its bar itself: the bar of this session is panel_start's.
    SWAY_CONFIG="bar bar-0 {
    swaybar_command true
    position ${BAR_POS:-top}
    height ${BAR_HEIGHT:-28}
    tray_output *
    $clock
}"
    start_sway
}

panel_start() { spawn panel swaybar -b bar-0; }

panel_ready() { sni_host_registered; }

panel_main "$@"
