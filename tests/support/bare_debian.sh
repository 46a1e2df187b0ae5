# shellcheck shell=bash
# A bare Debian of some release in a folder, made by debootstrap from where this machine's apt has its own packages, and entered
# with chroot: all of it needs root. Sourced after checks.sh.
#
#   bare               set before: the folder
#   inside_variables   set before: the whole environment of what runs inside, NAME=VALUE
#   script_arguments   set before, where the script has any: they are handed on when it starts over as root
#   inside_binds       may be set: folders of this machine that are seen inside, FOLDER=PLACE or FOLDER=PLACE:ro

# shellcheck source=../../tools/lib/mirror.sh
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/lib/mirror.sh"

inside_variables=() inside_binds=()

# as_root NAME=VALUE...: starts the script over as root, with those variables, where it is not.
as_root()
{
    [ "$(id -u)" != 0 ] || return 0
    sudo -n true 2>/dev/null || die "a bare Debian can be made and entered by root alone, and there is no sudo without a password"
    # shellcheck disable=SC2154 # whoever sources this has set it
    exec sudo -n env "PATH=$PATH" "HOME=$HOME" "$@" "$0" ${script_arguments[@]+"${script_arguments[@]}"}
}

# bare_debian CODENAME LOGS: makes it, with an apt that reaches what this machine's does. What debootstrap said is in LOGS.
bare_debian()
{
    local codename=$1 log=$2/debootstrap.log targets mirror proxy
    targets=$(main_targets)
    mirror=$(mirror) || exit
    [ "$codename" = "$(own_release)" ] || targets="$mirror $codename main"
    # What this machine needs to reach it, a proxy above all, is what debootstrap and the bare one need too.
    proxy=$(apt-config dump --format '%v' Acquire::http::Proxy)
    local -x http_proxy=${proxy:-${http_proxy:-}}
    # debootstrap itself would try for hours.
    case $mirror in
        http*)
            wget -q --spider --timeout=20 --tries=2 "${mirror%/}/dists/$codename/Release" ||
                { echo "        $mirror, from which $codename would come, does not answer or does not have it"; return 1; }
            ;;
    esac
    debootstrap --variant=minbase "$codename" "${bare:?}" "$mirror" >"$log" 2>&1 ||
        { tail -n 5 "$log"; return 1; }
    printf 'deb %s\n' "${targets//$'\n'/$'\n'deb }" >"$bare/etc/apt/sources.list"
    apt-config dump Acquire >"$bare/etc/apt/apt.conf.d/00machine"
    [ ! -e /etc/resolv.conf ] || cp -L /etc/resolv.conf "$bare/etc/resolv.conf"
    cp -L /etc/hosts "$bare/etc/hosts"
    # Nothing in it starts services.
    printf '#!/bin/sh\nexit 101\n' >"$bare/usr/sbin/policy-rc.d"
    chmod 755 "$bare/usr/sbin/policy-rc.d"
}

# mounts_allowed: nothing is mounted but for the programs inside, and it goes with them.
mounts_allowed() { unshare --mount true 2>/dev/null; }

# inside COMMAND...: as root of the bare Debian; with its own /proc and the folders of inside_binds, where the machine allows
# mounts.
inside()
{
    local enter=()
    ! mounts_allowed || enter=(unshare --mount)
    # shellcheck disable=SC2016
    "${enter[@]}" bash -c '
        bare=$1 may_mount=$2 binds=$3
        shift 3
        if [ -n "$may_mount" ]; then
            mount -t proc proc "$bare/proc"
            while [ "$binds" -gt 0 ]; do
                place=$bare${1#*=}
                mkdir -p "${place%:ro}"
                mount --bind "${1%%=*}" "${place%:ro}" || exit
                [ "$place" = "${place%:ro}" ] || mount -o remount,bind,ro "${place%:ro}" || exit
                binds=$((binds - 1))
                shift
            done
        fi
        exec chroot "$bare" /usr/bin/env -i "$@"' enter "$bare" "${enter[*]}" ${#inside_binds[@]} "${inside_binds[@]}" \
        "${inside_variables[@]}" "$@"
}
