#!/bin/bash
# package_test.sh   makes the Debian package, and installs, runs, upgrades and purges it in a bare Debian.
#
# The bare Debian is made by debootstrap from where this machine's apt has its own packages, in a folder of its own, and
# entered with chroot: all of it needs root. The sample daemon is that of $BRIMWATCH_BUILD (default build/dev). Packages
# and logs stay in $BRIMWATCH_PACKAGE_LOGS (default build/package-test). Prints a line a check and `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=package_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"

build=${BRIMWATCH_BUILD:-$root/build/dev}
out=${BRIMWATCH_PACKAGE_LOGS:-$root/build/package-test}
[ $# = 0 ] || die "it takes no arguments"
# shellcheck source=../support/bare_debian.sh
. "$root/tests/support/bare_debian.sh"
as_root BRIMWATCH_BUILD="$build" BRIMWATCH_PACKAGE_LOGS="$out" "BRIMWATCH_PACKAGES_CHECKED=${BRIMWATCH_PACKAGES_CHECKED:-}"
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$root/tools/lib/packages.sh" package-test
export BRIMWATCH_PACKAGES_CHECKED=1
daemon=$build/tools/sample-daemon/brimwatch-sample-daemon
[ -x "$daemon" ] || die "$daemon is not built"

mkdir -p "$out"
out=$(cd "$out" && pwd)
rm -rf "${out:?}/packages" "$out/elsewhere" "$out/log"
mkdir -p "$out/packages" "$out/log"
# Not below the home of whoever builds: programs in there look at their own paths.
bare=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-bare.XXXXXX")
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-package.XXXXXX")
chmod 755 "$bare"
label=package logs=$out/log
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
# shellcheck source=../../tools/desktops/lib/services.sh
. "$root/tools/desktops/lib/services.sh"
# Nothing is mounted in it: what was, was so for the programs inside alone.
clean_up() { rm -rf --one-file-system "$bare" "$scratch"; }
logs_are() { echo "Logs: $out/log"; }

# The package --------------------------------------------------------------------------------------
version=$(dpkg-parsechangelog -l "$root/packaging/debian/changelog" -S Version)
newer=${version%.*}.$((${version##*.} + 1))
make() { "$root/packaging/debian/package.sh" "$@" >"$scratch/path" 2>>"$out/log/build.log"; }

needed "it is made" make --out "$out/packages"
package=$(cat "$scratch/path")
needed "a newer one too" make --version "$newer" --out "$out/packages"
upgrade=$(cat "$scratch/path")

# From a copy of the sources, in a folder of another name and depth.
made_elsewhere()
{
    local there=$out/elsewhere/a/much/longer/path/to/the/sources
    mkdir -p "$there"
    # It has no history there, so the date of the last commit is handed on; without a history here neither needs it.
    tar -c -C "$root" --exclude-vcs --exclude=./build --exclude=./dist --exclude=./pictures . | tar -x -C "$there" &&
        SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct 2>/dev/null) \
            "$there/packaging/debian/package.sh" --build "$out/elsewhere/build" --out "$out/elsewhere" \
            >"$scratch/path" 2>>"$out/log/build.log"
}
check "it is made in another folder" made_elsewhere &&
    check "with the same bytes" cmp "$package" "$(cat "$scratch/path")"
rm -rf "$out/elsewhere/a" "$out/elsewhere/build"

lintian_is_content()
{
    lintian --allow-root --tag-display-limit 0 --display-info --pedantic --fail-on error,warning "$package" \
        >"$out/log/lintian.log" 2>&1
    local status=$?
    cat "$out/log/lintian.log"
    return $status
}
check "lintian finds neither errors nor warnings" lintian_is_content
dependencies=$(dpkg-deb -f "$package" Depends)
check "it depends on no package for developers" is "$(grep -oE '[^ ,]+-dev\b' <<<"$dependencies" | xargs)" ''
check "and on the QML modules of the views" grep -q 'qml6-module-qtquick-templates' <<<"$dependencies"

# A bare Debian ----------------------------------------------------------------------------------
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
needed "a bare Debian $codename is made" bare_debian "$codename" "$out/log"
mkdir -p "$bare/packages" && mkdir -m 700 "$bare/root/run"
cp "$package" "$upgrade" "$bare/packages/"

inside_variables=(HOME=/root XDG_RUNTIME_DIR=/root/run PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8
    DEBIAN_FRONTEND=noninteractive DBUS_SESSION_BUS_ADDRESS=unix:path=/root/run/bus)
apt() { inside apt-get -q -y "$@" >>"$out/log/apt.log" 2>&1; }
listing() { (cd "$bare" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./sys -o -path ./root -o -path ./packages \) -prune -o -print) | sort; }
# shellcheck disable=SC2016
installed() { inside dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n'; }
# shellcheck disable=SC2016
installed_version() { inside dpkg-query -W -f '${Version}' brimwatch; }

needed "its apt finds the packages of Debian" apt update
# The session bus is the desktop's to bring.
needed "and installs a session bus" apt install --no-install-recommends dbus-daemon
before=$(installed)
listing >"$scratch/before"

# Install and run ----------------------------------------------------------------------------------
needed "apt installs it, with nothing but what it depends on" apt install --no-install-recommends "/packages/${package##*/}"
check "no package for developers came with it" is "$(installed | grep -E -- '-dev$' | xargs)" ''
check "dpkg finds each file as it was packed" is "$(inside dpkg --verify brimwatch)" ''
check "brimwatch runs" is "$(inside brimwatch --version)" "brimwatch ${version%-*}"
check "brimwatchctl runs" is "$(inside brimwatchctl --version)" "brimwatchctl ${version%-*}"

start_xvfb 1280x720
export DISPLAY=$xvfb_display
inside_variables+=("DISPLAY=$DISPLAY")
HOME=$bare/root start_sample_daemon "$build" --speed 0
check "without a bus brimwatchctl asks the daemon itself" is "$(inside brimwatchctl status --template '{source}')" daemon
spawn bus inside dbus-daemon --session --nofork --nopidfile --address=unix:path=/root/run/bus
wait_for 30 test -S "$bare/root/run/bus" || die "the bus inside did not start: $(cat "$out/log/bus.log")"

HELPERS=$("$root/tools/desktops/lib/helpers.sh")
# shellcheck source=../../tools/desktops/lib/item.sh
. "$root/tools/desktops/lib/item.sh"
owner()
{
    inside dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.GetConnectionUnixProcessID string:app.brimwatch.Brimwatch 2>/dev/null | awk '{ print $2 }'
}
runs() { program_pid=$(owner) && [ -n "$program_pid" ]; }
shown() { popover_open "$program_pid"; }
hidden() { popover_closed "$program_pid"; }
source_is() { [ "$(inside brimwatchctl status --template '{source}')" = "$1" ]; }
drawn()
{
    # shellcheck disable=SC2046
    "$root/tools/desktops/lib/shot.sh" "$out/log/$1.png" "$(geometry_of $(popover_places "$program_pid" | head -n 1))" 2>>"$out/log/shot.log" &&
        [ "$(identify -format %k "$out/log/$1.png")" -ge 40 ] &&
        [ "$(coloured_pixels "$out/log/$1.png" green)" -ge 40 ]
}
quits()
{
    inside dbus-send --session --type=method_call --dest=app.brimwatch.Brimwatch /app/brimwatch/Brimwatch app.brimwatch.Brimwatch1.Quit &&
        wait_for 30 gone "$program_pid"
}

check "toggle starts the program by its D-Bus service" inside brimwatchctl toggle
needed "it runs" wait_for 30 runs
check "it is the installed one" is "$(readlink "/proc/$program_pid/exe")" "$bare/usr/bin/brimwatch"
check "its popover opens" wait_for 30 shown
check "and shows the quota" wait_for 30 drawn popover
check "it tells its state" wait_for 30 source_is program
check "it quits" quits

# Upgrade, while it runs and before it has loaded its views ------------------------------------------
inside brimwatch >"$out/log/program.log" 2>&1 &
disown
needed "it starts again" wait_for 30 runs
running=$program_pid
check "apt upgrades it while it runs" apt install --no-install-recommends "/packages/${upgrade##*/}"
check "to the newer version" is "$(installed_version)" "$newer"
check "the running one stays" runs
check "and is the same" is "$program_pid" "$running"
check "it still tells its state" source_is program
check "and toggle asks it" inside brimwatchctl toggle
check "its popover opens" wait_for 30 shown
check "in the new program, as which it goes on" is "$(readlink "/proc/$program_pid/exe")" "$bare/usr/bin/brimwatch"
check "and shows the quota" wait_for 30 drawn upgraded

# Remove and purge -----------------------------------------------------------------------------------
check "apt removes it while it runs" apt remove brimwatch
check "the running one can still be quit" quits
program_pid=
check "there is no such program any more" test ! -e "$bare/usr/bin/brimwatch"
check "dpkg purges it" inside dpkg --purge brimwatch
check "and what came with it" apt autoremove --purge
check "dpkg knows the packages that it knew before, and no others" is "$(diff <(echo "$before") <(installed))" ''
listing >"$scratch/after"
# What apt, dpkg and the programs of other packages note down is theirs.
left=$(comm -13 "$scratch/before" "$scratch/after" | grep -vE '^\./var/(log|cache|lib/(apt|dpkg|systemd))(/|$)')
check "nothing of it is left" is "$(grep -i brimwatch <<<"$left")" ''
printf 'What other packages left: %s\n' "${left:-nothing}" >>"$out/log/left.log"
