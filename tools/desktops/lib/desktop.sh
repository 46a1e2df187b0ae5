# shellcheck shell=bash
# The common part of the panel scripts: a panel on a display, a session bus and a home of its own.
#
# A desktop's script sets NAME, FACTS, [SERVICES], [DISPLAY_KIND=x11|none], [SIZE], [READY_S], [PURPOSE] (its packages), and
# defines
#   session_start   window manager and the like
#   panel_start     the panel: `spawn panel COMMAND...`
#   panel_ready     whether a tray can be used now
# then calls panel_main "$@". CLOCK=off leaves the clock out of the panel, so that only we change it.
set -euo pipefail
DESKTOPS=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=../../lib/common.sh
. "$DESKTOPS/../lib/common.sh"
# shellcheck source=services.sh
. "$DESKTOPS/lib/services.sh"
SIZE=${SIZE:-1280x720} READY_S=${READY_S:-40} DISPLAY_KIND=${DISPLAY_KIND:-x11} SERVICES=${SERVICES:-}
CLOCK=${CLOCK:-on} PROGRAM=${NAME:-panel} FACTS=("${FACTS[@]}")

# env_set NAME VALUE: a variable of the session, for what runs inside and for what we start.
env_set()
{
    printf 'export %s=%q\n' "$1" "$2" >>"$DIR/env.new"
    ENVV+=("$1=$2")
}

# env_unset NAME: what runs inside must not see it.
env_unset()
{
    local entry kept=()
    for entry in "${ENVV[@]}"; do
        [ "${entry%%=*}" = "$1" ] || kept+=("$entry")
    done
    ENVV=("${kept[@]}")
    printf 'unset %s\n' "$1" >>"$DIR/env.new"
}

# spawn NAME COMMAND...: in the background, in the session's environment alone, tagged for stop.
spawn()
{
    local name=$1
    shift
    setsid env -i "${ENVV[@]}" "BRIMWATCH_PANEL_ID=$ID" "$@" </dev/null >>"$logs/$name.log" 2>&1 &
    echo $! >"$DIR/$name.pid"
    disown
}

inside() { env -i "${ENVV[@]}" "$@"; }

# on_screen COMMAND...: on the display that shows the session, which is another one for a nested one.
on_screen()
{
    local outer
    outer=$(value_of BRIMWATCH_OUTER_DISPLAY)
    inside ${outer:+env DISPLAY="$outer"} "$@"
}

# No service is activated but those in $SERVICES: the bus must not start half a desktop.
start_session_bus()
{
    local service
    mkdir -p "$DIR/services"
    for service in $SERVICES; do
        ln -sf "/usr/share/dbus-1/services/$service.service" "$DIR/services/"
    done
    start_bus dbus-bus "$RUN/bus" "$DIR/services"
}

# An empty stand-in for programs that insist on one.
start_system_bus()
{
    start_bus dbus-system "$RUN/system"
    ENVV+=("DBUS_SYSTEM_BUS_ADDRESS=unix:path=$RUN/system")
}

# value_of NAME: the session's variable.
value_of() { printf '%s\n' "${ENVV[@]}" | sed -n "s/^$1=//p" | tail -n 1; }

start_openbox()
{
    spawn openbox openbox
    wait_for 40 window_manager_runs || die "openbox did not start, see $DIR/log/openbox.log"
}

# What "ready" can mean --------------------------------------------------------------------------
window_manager_runs() { inside xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }

sni_host_registered()
{
    inside dbus-send --session --print-reply=literal --dest=org.kde.StatusNotifierWatcher \
        /StatusNotifierWatcher org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:IsStatusNotifierHostRegistered 2>/dev/null | grep -q true
}

# Somebody owns the tray for XEmbed icons: the selection cannot be asked from a shell, its helper can.
tray_manager_runs() { inside "$HELPERS/x-windows" --tray-manager; }

# A server of notifications counts as a panel here.
notifications_served() { bus_has org.freedesktop.Notifications; }

bus_has()
{
    inside dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.NameHasOwner "string:$1" 2>/dev/null | grep -q true
}

# Start and stop ----------------------------------------------------------------------------------
# tagged ID: the processes whose start environment carries the tag, and no others.
tagged()
{
    local file
    for file in /proc/[0-9]*/environ; do
        if grep -qzsFx "BRIMWATCH_PANEL_ID=$1" "$file"; then
            file=${file#/proc/}
            echo "${file%/environ}"
        fi
    done
    return 0
}

all_gone() { [ -z "$(tagged "$1")" ]; }

session_stop()
{
    [ -f "$DIR/id" ] || return 0
    local id pids run
    id=$(cat "$DIR/id")
    mapfile -t pids < <(tagged "$id")
    [ ${#pids[@]} = 0 ] || kill "${pids[@]}" 2>/dev/null || true
    if ! wait_for 5 all_gone "$id"; then
        mapfile -t pids < <(tagged "$id")
        [ ${#pids[@]} = 0 ] || kill -9 "${pids[@]}" 2>/dev/null || true
        wait_for 5 all_gone "$id" || say "$NAME: some processes do not end: $(tagged "$id")"
    fi
    run=$(cat "$DIR/rundir" 2>/dev/null || true)
    case $run in
        /tmp/brimwatch-run.* | "$DIR/run") rm -rf -- "$run" ;;
    esac
    rm -f "$DIR/id" "$DIR/env" "$DIR/env.new" "$DIR/rundir" "$DIR/state" "$DIR"/*.pid
}

save_state() { declare -p ENVV ID RUN CLOCK HELPERS >"$DIR/state"; }

# own_folder FOLDER: nobody else can put a file into it, which we would run.
own_folder()
{
    if [ -L "$1" ] || [ ! -O "$1" ] || [ -n "$(find "$1" -maxdepth 0 -perm /022)" ]; then die "$1 is not ours alone"; fi
}

load_state()
{
    [ -f "$DIR/state" ] || die "nothing was started in $DIR"
    # Written by save_state; -g because we are in a function.
    # shellcheck source=/dev/null
    . <(sed 's/^declare /declare -g /' "$DIR/state")
}

start_panel()
{
    panel_start
    wait_for "$READY_S" panel_ready || die "the panel is not ready after $READY_S s, see $DIR/log"
}

end_panel()
{
    end_process "$(cat "$DIR/panel.pid")" || die "the panel does not end"
}

# in_session PID: the processes of the session that it leads.
in_session()
{
    local leader=$1 file stat
    for file in /proc/[0-9]*/stat; do
        { read -r stat <"$file"; } 2>/dev/null || continue
        # The name may hold anything; what follows it is state, parent, group and session.
        # shellcheck disable=SC2086
        set -- ${stat##*) }
        [ "$4" != "$leader" ] || [ "$1" = Z ] || echo "${stat%% *}"
    done
}

nobody_in_session() { [ -z "$(in_session "$1")" ]; }

crash_panel()
{
    local leader pids
    leader=$(cat "$DIR/panel.pid")
    mapfile -t pids < <(in_session "$leader")
    [ ${#pids[@]} -gt 0 ] || die "there is no panel"
    kill -9 "${pids[@]}" 2>/dev/null || true
    wait_for 10 nobody_in_session "$leader" || die "the panel does not end"
}

session_start_all()
{
    [ ! -f "$DIR/id" ] || all_gone "$(cat "$DIR/id")" || die "already running in $DIR"
    local t0
    rm -rf "${DIR:?}/home" "$DIR/services" "$DIR/env.new" "$DIR/log"
    mkdir -p "$DIR/home" "$DIR/log"
    [ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$DESKTOPS/../lib/packages.sh" "${PURPOSE:-panel-$PACKAGE_NAME}"
    HELPERS=$("$DESKTOPS/lib/helpers.sh")
    t0=$(now_ms)
    ID=$NAME-$$-$RANDOM
    echo "$ID" >"$DIR/id"
    RUN=$DIR/run
    # A socket's path ends at 107 bytes.
    [ ${#RUN} -le 60 ] || RUN=$(mktemp -d /tmp/brimwatch-run.XXXXXX)
    rm -rf "$RUN"
    mkdir -m 700 "$RUN"
    echo "$RUN" >"$DIR/rundir"
    ENVV=(PATH="$PATH" LANG=C.UTF-8 SHELL=/bin/sh USER="$(id -un)" LOGNAME="$(id -un)")
    : >"$DIR/env.new"
    trap 'exit 130' INT TERM
    trap 'session_stop' EXIT
    env_set HOME "$DIR/home"
    env_set XDG_RUNTIME_DIR "$RUN"
    env_set XDG_CONFIG_HOME "$DIR/home/.config"
    env_set XDG_CACHE_HOME "$DIR/home/.cache"
    env_set XDG_DATA_HOME "$DIR/home/.local/share"
    mkdir -p "$DIR/home/.config" "$DIR/home/.cache" "$DIR/home/.local/share"
    env_set DBUS_SESSION_BUS_ADDRESS "unix:path=$RUN/bus"
    env_set NO_AT_BRIDGE 1
    # What the surroundings run on is not what runs inside.
    printf 'unset WAYLAND_DISPLAY XAUTHORITY SWAYSOCK QT_QPA_PLATFORM BRIMWATCH_OUTER_DISPLAY BRIMWATCH_LAYERS\n' >>"$DIR/env.new"
    if [ "$DISPLAY_KIND" != none ]; then
        start_xvfb "$SIZE"
        env_set DISPLAY "$xvfb_display"
    fi
    start_session_bus
    session_start
    if [ "$WITH_PANEL" = yes ]; then
        start_panel
    fi
    save_state
    trap - INT TERM EXIT
    mv "$DIR/env.new" "$DIR/env"
    cat "$DIR/env"
    say "$NAME: ready in $(($(now_ms) - t0)) ms, logs in $DIR/log"
}

usage()
{
    cat <<END
${0##*/} start [DIR] [--no-panel]   print \`export ...\` lines (also in DIR/env); DIR/log has the logs
${0##*/} panel DIR                  start the panel program of a started session (again)
${0##*/} unpanel DIR                end the panel program alone
${0##*/} crash DIR                  the same without a word to it, with what it has started
${0##*/} stop [DIR]                 end only what that start began
${0##*/} run [DIR] -- COMMAND...    start, run COMMAND inside, stop; the command's status
${0##*/} facts                      print what tests have to know of it, as NAME=VALUE lines for \`eval\`
END
}

panel_main()
{
    local command=${1:-} given='' status fact
    shift || true
    if [ "$command" = facts ]; then
        for fact in "${FACTS[@]}"; do printf '%s=%q\n' "${fact%%=*}" "${fact#*=}"; done
        return
    fi
    WITH_PANEL=yes
    DIR=${TMPDIR:-/tmp}/brimwatch-panels/$NAME
    PACKAGE_NAME=${PACKAGE_NAME:-$NAME}
    if [ $# -gt 0 ] && [[ $1 != --* ]]; then
        DIR=$1 given=yes
        shift
    fi
    if [ "${1:-}" = --no-panel ]; then
        WITH_PANEL=no
        shift
    fi
    (umask 022 && mkdir -p "$DIR")
    # The folder in the temporary folder has a name that others can take before us.
    [ -n "$given" ] || own_folder "$(dirname "$DIR")"
    own_folder "$DIR"
    DIR=$(cd "$DIR" && pwd)
    logs=$DIR/log
    case $command in
        start) session_start_all ;;
        stop) session_stop ;;
        panel)
            load_state
            start_panel
            ;;
        unpanel)
            load_state
            end_panel
            ;;
        crash)
            load_state
            crash_panel
            ;;
        run)
            [ "${1:-}" != -- ] || shift
            session_start_all >/dev/null
            status=0
            (
                # shellcheck source=/dev/null
                . "$DIR/env"
                "$@"
            ) || status=$?
            session_stop
            exit "$status"
            ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
}
