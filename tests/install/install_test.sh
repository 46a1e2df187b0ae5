#!/bin/bash
# install_test.sh BUILD   installs a build into folders of its own, looks at each file and runs the program from there.
#
# Prints a line a check and `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=install_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
build=$(cd "$1" && pwd)
# shellcheck source=../support/own_session.sh
. "$root/tests/support/own_session.sh"

# The files ----------------------------------------------------------------------------------------
DESTDIR=$scratch/staged cmake --install "$build" --prefix /opt/brimwatch >"$scratch/staged.log" 2>&1 ||
    die "cmake --install failed: $(tail -n 5 "$scratch/staged.log")"
# Empty, an element of a run path is the folder that somebody happens to be in.
run_paths() { readelf -d "$@" | sed -n 's/.*(RUNPATH).*\[\(.*\)\].*/\1/p'; }
nobody_loads_from_the_current_folder()
{
    local path paths
    [ $# = 12 ] || { echo "programs and libraries: $*"; return 1; }
    paths=$(run_paths "$@")
    [ -n "$paths" ] || return
    while IFS= read -r path; do
        [[ :$path: != *::* ]] || { echo "run path: $path"; return 1; }
    done <<<"$paths"
}
mapfile -t found < <(find "$build"/src/lib* "$scratch"/staged/opt/brimwatch/lib* -name '*.so')
check "neither what is built nor what is installed loads libraries from the current folder" \
    nobody_loads_from_the_current_folder "$build/src/app/brimwatch" "$build/src/cli/brimwatchctl" \
    "$scratch"/staged/opt/brimwatch/bin/* "${found[@]}"
check "with DESTDIR nothing is installed outside the prefix" is \
    "$(cd "$scratch/staged" && find . -mindepth 1 -not -path './opt/brimwatch*')" ./opt

# A path with a space, for it has to be quoted in the files that name it.
prefix="$scratch/in here"
cmake --install "$build" --prefix "$prefix" >"$scratch/install.log" 2>&1 ||
    die "cmake --install failed: $(tail -n 5 "$scratch/install.log")"
id=app.brimwatch.Brimwatch
libraries=$(cd "$prefix" && find lib* -name brimwatch -type d)
sides='16 22 24 32 36 48 64 72 96 128 192 256 512'
expected=$({
    printf '%s\n' bin/brimwatch bin/brimwatchctl \
        "$libraries"/libbrimwatch.so "$libraries"/libbrimwatch-fetch.so \
        "$libraries"/libbrimwatch-tls.so "$libraries"/libbrimwatch-views.so \
        share/applications/$id.desktop share/dbus-1/services/$id.service \
        share/dbus-1/interfaces/app.brimwatch.Brimwatch1.xml share/metainfo/$id.metainfo.xml \
        share/icons/hicolor/scalable/apps/$id.svg share/man/man1/brimwatch.1 share/man/man1/brimwatchctl.1 \
        share/bash-completion/completions/brimwatchctl share/zsh/site-functions/_brimwatchctl \
        share/fish/vendor_completions.d/brimwatchctl.fish share/doc/brimwatch/brimwatchctl.schema.json
    for side in $sides; do echo "share/icons/hicolor/${side}x$side/apps/$id.png"; done
    (cd "$root" && find examples -type f | sed 's|^|share/doc/brimwatch/|')
} | sort)
check "what is installed is what is expected, and nothing else" is "$(cd "$prefix" && find . -type f | sed 's|^\./||' | sort)" "$expected"
check "a staged install holds the same files" is "$(cd "$scratch/staged/opt/brimwatch" && find . -type f | sed 's|^\./||' | sort)" "$expected"

entry=$prefix/share/applications/$id.desktop
check "the desktop entry is valid" is "$(desktop-file-validate "$entry" 2>&1)" ''
check "and names the installed program" grep -qxF "Exec=\"$prefix/bin/brimwatch\"" "$entry"
check "the staged one names the program where it will be" \
    grep -qxF 'Exec="/opt/brimwatch/bin/brimwatch"' "$scratch/staged/opt/brimwatch/share/applications/$id.desktop"
icon=$(sed -n 's/^Icon=//p' "$entry")
check "its icon is an installed one" test -f "$prefix/share/icons/hicolor/48x48/apps/$icon.png"
for side in $sides; do
    check "the icon of $side pixels is as large as its folder says" is \
        "$(identify -format '%wx%h' "$prefix/share/icons/hicolor/${side}x$side/apps/$id.png")" "${side}x$side"
done
# Deliberate: it has no homepage, of which AppStream 1.0 and newer warn; whoever publishes it has one to add.
metadata_is_valid()
{
    local findings
    findings=$(appstreamcli validate --no-net --no-color "$prefix/share/metainfo/$id.metainfo.xml") && return
    echo "$findings"
    [ "$(grep -E '^[EW]:' <<<"$findings" | sed 's/.*: //' | sort -u)" = url-homepage-missing ]
}
check "the metadata for software centres is valid" metadata_is_valid
check "and its newest release is this version" is \
    "$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$prefix/share/metainfo/$id.metainfo.xml" | head -n 1)" \
    "$("$build/src/app/brimwatch" --version | cut -d ' ' -f 2)"
check "and it belongs to the desktop entry" grep -qF ">$id.desktop<" "$prefix/share/metainfo/$id.metainfo.xml"
check "the manual pages have no fault" mandoc -T lint -W warning "$prefix"/share/man/man1/*.1
help=$("$prefix/bin/brimwatch" --help)
while read -r option; do
    check "brimwatch(1) has $option" grep -q -- "$option" <(sed 's/\\-/-/g' "$prefix/share/man/man1/brimwatch.1")
done < <(grep -o -- '--[a-z]*' <<<"$help" | sort -u)

# The programs ---------------------------------------------------------------------------------------
own_home
unset XDG_STATE_HOME
export XDG_DATA_DIRS=$prefix/share:/usr/share
mv "$scratch/staged/opt/brimwatch" "$scratch/moved"
check "the program runs where the folder was moved to" is "$("$scratch/moved/bin/brimwatch" --version)" "$("$build/src/app/brimwatch" --version)"

own_daemon --speed 0
check "brimwatchctl finds its library for asking the daemon itself" is \
    "$("$prefix/bin/brimwatchctl" status --template '{source}')" daemon

# action NAME: starts what the desktop entry has for that action, as a desktop does.
action()
{
    local exec
    exec=$(sed -n "/^\[Desktop Action $1\]/,\$s/^Exec=//p" "$entry" | head -n 1)
    eval "$exec"
}

# What opens the page is asked for by its name.
mkdir "$scratch/openers"
cat >"$scratch/openers/xdg-open" <<END
#!/bin/sh
echo "\$1" >"$scratch/opened"
END
chmod +x "$scratch/openers/xdg-open"
opened() { [ -s "$scratch/opened" ]; }
page=$HOME/.local/state/brimwatch/history/usage.html
usage_history() { PATH=$scratch/openers:$PATH action history; }
check "the action for the history ends well" usage_history
check "and opens a page" wait_for 30 opened
check "which stands beside the history" is "$(cat "$scratch/opened")" "$page"
check "for its owner alone" is "$(stat -c %a "$page")" 600
check "and is one without scripts" is "$(grep -c '<script' "$page") $(grep -c '<h1>Usage History</h1>' "$page")" '0 1'

own_display
# Only what is installed here is started by this bus.
own_bus "$prefix/share/dbus-1/services"

HELPERS=$("$root/tools/desktops/lib/helpers.sh")
# shellcheck source=../../tools/desktops/lib/item.sh
. "$root/tools/desktops/lib/item.sh"

shown() { popover_open "$program_pid"; }
hidden() { popover_closed "$program_pid"; }
if check "the action of the desktop entry starts the program over the bus" action popover && wait_for 30 runs; then
    check "it is the installed one" is "$(readlink "/proc/$program_pid/exe")" "$prefix/bin/brimwatch"
    check "and its popover opens" wait_for 30 shown
    mapped=$(sed -n 's|^[^/]*\(/.*/libbrimwatch[^/]*\)$|\1|p' "/proc/$program_pid/maps" | sort -u)
    check "with the libraries that were installed with it" is "$mapped" \
        "$(printf '%s\n' "$prefix/$libraries/libbrimwatch-views.so" "$prefix/$libraries/libbrimwatch.so")"
    check "the same action closes it" action popover
    check "and it is closed" wait_for 30 hidden
    "$prefix/bin/brimwatch" 2>"$scratch/second.log"
    check "a second start opens it" wait_for 30 shown
    check "and says so" grep -q 'its popover is open now' "$scratch/second.log"
    check "the action for refreshing ends well" action refresh
    check "the action for the settings ends well" action settings
fi
