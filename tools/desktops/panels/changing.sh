#!/bin/bash
# A session in which panels of several kinds follow each other: openbox on Xvfb.
# KIND=trayer|polybar|lxqt|xfce4 (for `start` and `panel`: which of them is started)
NAME=changing
KIND=${KIND:-trayer}
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"
# shellcheck disable=SC1090
. "$DESKTOPS/panels/$KIND.sh"
NAME=changing SERVICES="org.xfce.Xfconf ca.desrt.dconf"

session_start()
{
    local kind
    for kind in trayer polybar lxqt xfce4; do
        # shellcheck disable=SC1090
        (. "$DESKTOPS/panels/$kind.sh" && configure)
    done
    # Debian keeps the defaults of LXQt there; what a subshell sets is its own.
    env_set XDG_CONFIG_DIRS /usr/share/lxqt:/etc/xdg
    start_openbox
}

panel_main "$@"
