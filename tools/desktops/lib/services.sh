# shellcheck shell=bash
# What sessions and tests start: an X server, a bus, the sample daemon, a desktop. Sourced after common.sh, where
# `spawn NAME COMMAND...` starts a process in the background whose output goes to $logs/NAME.log.

# start_xvfb SIZE: a display of its own, which is in `xvfb_display` then.
start_xvfb()
{
    : >"${logs:?}/display"
    spawn xvfb Xvfb -displayfd 8 -screen 0 "${1}x24" -nolisten tcp -noreset +extension GLX 8>"$logs/display"
    wait_for 30 test -s "$logs/display" || die "Xvfb did not start, see $logs/xvfb.log"
    # shellcheck disable=SC2034
    xvfb_display=:$(cat "$logs/display")
}

# start_bus NAME SOCKET [FOLDER]: a bus that starts the services in that folder alone.
start_bus()
{
    cat >"${logs:?}/$1.conf" <<XML
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=$2</listen><auth>EXTERNAL</auth>
${3:+<servicedir>$3</servicedir>}
<policy context="default"><allow user="*"/><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
XML
    spawn "$1" dbus-daemon --nofork --nosyslog --nopidfile --config-file="$logs/$1.conf"
    wait_for 40 test -S "$2" || die "the bus did not start, see $logs/$1.log"
}

# start_sample_daemon BUILD OPTION...: it announces itself in $HOME.
start_sample_daemon()
{
    spawn daemon "$1/tools/sample-daemon/brimwatch-sample-daemon" "${@:2}"
    wait_for 30 grep -q '^ready ' "${logs:?}/daemon.log" || die "the sample daemon did not start: $(tail -n 3 "$logs/daemon.log")"
}

# begin_work NAME: makes the folder `logs`. With the script ends what it has spawned, and the desktop that it has entered; the
# folder stays when the script fails.
begin_work()
{
    logs=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-$1.XXXXXX")
    trap end_work EXIT
    trap 'exit 130' INT TERM
}

# shellcheck disable=SC2317
end_work()
{
    local status=$?
    trap - EXIT INT TERM
    end_processes
    [ ${#entered[@]} = 0 ] || "${entered[0]}" stop "${entered[1]}" || true
    if [ "$status" = 0 ] || [ "$status" = 130 ]; then
        rm -rf "$logs"
    else
        say "Logs are in $logs"
    fi
    exit "$status"
}

entered=()
# enter_desktop SCRIPT DIR [OPTION...]: starts a desktop of tools/desktops, in whose session everything is from then on.
enter_desktop()
{
    entered=("$1" "$2")
    "$1" start "${@:2}" >/dev/null 2>"${logs:?}/session.log" || {
        tail -n 3 "$logs/session.log" >&2
        die "${1##*/} does not start, logs in $2/log"
    }
    # shellcheck source=/dev/null
    . "$2/env"
    HELPERS=$("$(dirname "${BASH_SOURCE[0]}")/helpers.sh")
    # shellcheck source=item.sh
    . "$(dirname "${BASH_SOURCE[0]}")/item.sh"
}
