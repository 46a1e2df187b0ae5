#!/bin/bash
# tmux with the example's status line in an xterm, with openbox on Xvfb. `brimwatchctl` is found in PATH.
NAME=tmux
FACTS=(mode=asks colors=lowest strip=1000x32+0+196 place=560x24+460+198)
PURPOSE=bar-tmux
# shellcheck source=../lib/desktop.sh
. "$(dirname "${BASH_SOURCE[0]}")/../lib/desktop.sh"

session_start() { start_openbox; }

panel_start()
{
    # Asked for often: nobody wants to wait for the next quarter of a minute.
    sed 's/status-interval 15/status-interval 1/' "$DESKTOPS/../../examples/tmux/brimwatch.conf" >"$DIR/home/.tmux.conf"
    cat >>"$DIR/home/.tmux.conf" <<'CONF'
set -g default-terminal "tmux-256color"
set -ga terminal-overrides ",*:Tc"
set -g status-style "bg=#303030,fg=#ffffff"
set -g status-left ""
CONF
    spawn panel xterm -fa 'DejaVu Sans Mono' -fs 12 -u8 -geometry 100x10+0+0 -e tmux -S "$RUN/tmux" -f "$DIR/home/.tmux.conf" new sleep 1000000
}

panel_ready() { inside tmux -S "$RUN/tmux" list-sessions; }

panel_main "$@"
