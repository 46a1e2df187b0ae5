#!/bin/bash
# release_test.sh NAME   builds Brimwatch in another release of Debian, and runs its tests there.
#
#   debian-13         the release build, all test programs, and plays on the desktops that differ
#   debian-13-short   the same with three plays
#   newer-qt          the newest Qt and compiler, those of Debian's unstable release: compiles everything, runs the test programs
#
# The release is made by debootstrap, entered with chroot, and kept: a second run takes it and its build tree up again. All of
# it needs root. It stays in $BRIMWATCH_RELEASES (default build/releases), with pictures and logs. Prints a line a check and
# `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=release_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
script_arguments=("$@")

name=${1:-} plays=()
case $name in
    debian-13)
        codename=trixie
        plays=(panel-xfce4 panel-sway panel-lxqt panel-plasma-wayland panel-gnome-wayland notifications-dunst notifications-mako)
        ;;
    debian-13-short) codename=trixie plays=(panel-xfce4 panel-sway notifications-dunst) ;;
    newer-qt) codename=sid ;;
    *) die "usage: $PROGRAM.sh debian-13|debian-13-short|newer-qt" ;;
esac
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
# shellcheck source=../support/bare_debian.sh
. "$root/tests/support/bare_debian.sh"
all=${BRIMWATCH_RELEASES:-$root/build/releases}
as_root BRIMWATCH_RELEASES="$all" "BRIMWATCH_PACKAGES_CHECKED=${BRIMWATCH_PACKAGES_CHECKED:-}"
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$root/tools/lib/packages.sh" release-test || exit
mounts_allowed || die "this machine lets nobody mount anything, which a release to build in needs"

mkdir -p "$all/$codename"
kept=$(cd "$all/$codename" && pwd)
# Two at a time would build in one folder.
exec 7>"$kept/lock"
flock -n 7 || die "another test uses $kept"
bare=$kept/debian build=$kept/build logs=$kept/log label=$name
rm -rf "$logs"
mkdir -p "$logs" "$build/tmp" "$build/run"
chmod 700 "$build/run"
logs_are() { echo "Logs: $logs; pictures: $build/logs"; }
inside_binds=(/sys=/sys /dev=/dev /dev/pts=/dev/pts "$root=/src:ro" "$build=/build")
inside_variables=(HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive
    TMPDIR=/build/tmp XDG_RUNTIME_DIR=/build/run BRIMWATCH_HELPERS=/build/helpers BRIMWATCH_LOGS=/build/logs
    BRIMWATCH_PACKAGES_CHECKED=1)

# is_made: what an earlier run has not finished is no release.
is_made()
{
    [ ! -e "$kept/made" ] || return 0
    rm -rf --one-file-system "$bare"
    bare_debian "$codename" "$logs" && touch "$kept/made"
}
has_packages()
{
    inside /src/tools/lib/packages.sh test-programs "${plays[@]}" >"$logs/packages.log" 2>&1 ||
        { tail -n 20 "$logs/packages.log"; return 1; }
}
# As ./run builds it, with the tests.
is_built()
{
    inside sh -c 'cd /src && cmake --preset release -B /build/tree -DBRIMWATCH_TESTS=ON -DBRIMWATCH_SUITE=ON &&
        nice cmake --build /build/tree' >"$logs/build.log" 2>&1 || { grep -A8 -E 'FAILED|error' "$logs/build.log" | tail -n 60; return 1; }
}
# passes NAME CTEST_OPTION...: what it printed is in NAME.log.
passes()
{
    inside ctest --test-dir /build/tree --no-tests=error --output-on-failure --timeout 900 "${@:2}" >"$logs/$1.log" 2>&1 ||
        { grep -E '^FAIL|FAILED|Failed\)|\*\*\*|Loc:' "$logs/$1.log" | tail -n 40; return 1; }
}
# How many checks a play made is told, as its test is one here.
plays_well()
{
    passes "$1" -V -R "^$1\$" || return
    sed -n 's/^[0-9]*: \([0-9]* passed, [0-9]* failed\)$/        \1/p' "$logs/$1.log"
}

needed "$codename is there" is_made
needed "with the packages of the list" has_packages
needed "a release build compiles, tests included" is_built
# shellcheck disable=SC2016
inside sh -c '. /etc/os-release; echo "        $PRETTY_NAME, Qt $(qtpaths6 --qt-version), GCC $(gcc -dumpfullversion)"'
check "the test programs pass" passes unit -j 2 -L '^unit$'
for play in "${plays[@]}"; do check "$play passes" plays_well "$play"; done
