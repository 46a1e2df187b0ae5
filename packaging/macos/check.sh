#!/bin/bash
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
if [ $# != 2 ]; then
    cat >&2 <<'END'
check.sh APP REPORT   what a script can do of the check list in docs/macos.md, on a Mac: package.sh --check calls it

Starts the bundle, looks, and ends it again. One line for each check: ok, FAIL or look, where a person has to. The report
holds them with the versions of what took part; it holds nothing of your account but the name of the processor.

It has NEVER BEEN RUN: nobody who worked on it had a Mac.
END
    exit 2
fi
app=$1 report=$2 program=$1/Contents/MacOS/Brimwatch identifier=app.brimwatch.Brimwatch
[ -x "$program" ] || { echo "check.sh: there is no $program; make it with packaging/macos/package.sh" >&2; exit 1; }
if pgrep -x Brimwatch >/dev/null; then
    echo "check.sh: quit the Brimwatch that runs first" >&2
    exit 1
fi
mkdir -p "$(dirname "$report")"
: >"$report"
log=$(mktemp) stamp=$(mktemp)
started=''
# Ends what was started here, and nothing else.
end() { [ -z "$started" ] || kill "$started" 2>/dev/null; }
trap 'end; rm -f "$log" "$stamp"' EXIT

failed=0
say() { printf '%s\n' "$*" | tee -a "$report"; }
check()
{
    local sentence=$1
    shift
    if "$@" >"$log" 2>&1; then
        say "ok    $sentence"
        return
    fi
    failed=$((failed + 1))
    say "FAIL  $sentence"
    head -n 20 "$log" | sed 's/^/      /' | tee -a "$report"
}

within() # SECONDS COMMAND...: waits until the command succeeds
{
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.2
    done
}

plist() { /usr/libexec/PlistBuddy -c "Print :$1" "$app/Contents/Info.plist"; }
front() { lsappinfo info -only bundleid "$(lsappinfo front)"; }
running() { started=$(pgrep -xn Brimwatch); }
gone() { ! kill -0 "$started" 2>/dev/null; }

say "Brimwatch $(plist CFBundleShortVersionString) ($(plist CFBundleVersion)), $(date -u +%Y-%m-%d)"
say "macOS $(sw_vers -productVersion) ($(sw_vers -buildVersion)), $(uname -m)"
say "$(xcodebuild -version 2>/dev/null | tr '\n' ' ')"
say "Qt $(otool -L "$program" | sed -n 's/.*QtCore.*current version \([0-9.]*\).*/\1/p' | head -n 1)"

check "all that the bundle loads is in it or the system's" "$here/bundle_libraries.sh" check "$app"
check "its signature holds" codesign --verify --deep --strict "$app"
check "its identifier is $identifier" test "$(plist CFBundleIdentifier)" = "$identifier"
check "it has no Dock icon" test "$(plist LSUIElement)" = true
check "it tells its version without a display" "$program" --version

# A value that the user has set already stays as it is.
before=$(front)
start()
{
    # -g: not in front; a second Brimwatch would end at once.
    open -g "$app" && within 20 running
}
check "the system starts it" start
sleep 3 # Qt would activate it once launching has finished: nothing tells that it has not.
check "another program is in front, as before" test "$(front)" = "$before"
# shellcheck disable=SC2016
check "it is an accessory to the system" bash -c 'lsappinfo info -only ApplicationType "$1" | grep -q UIElement' - "$identifier"
# shellcheck disable=SC2016
check "a second start by path says that one is running" bash -c '"$1" 2>&1 | grep -q "already running"' - "$program"
say "look  the popover is open now, below the item: the second start asked for it"
if screencapture -x "${report%.txt}.png" 2>/dev/null; then
    say "look  ${report%.txt}.png shows the menu bar and the popover"
fi
size=$(ps -o rss= -p "$started" | tr -d ' ')
say "      resident memory: $((size / 1024)) MB, processor: $(ps -o %cpu= -p "$started" | tr -d ' ') %"
kill "$started"
check "it ends when it is told to" within 10 gone
started=''
reports=$(find "$HOME/Library/Logs/DiagnosticReports" -name 'Brimwatch*' -newer "$stamp" 2>/dev/null)
check "there is no report of a crash" test -z "$reports"
check "the settings are in the domain of the bundle, and nowhere else" bash -c \
    '! defaults read com.brimwatch-app.Brimwatch >/dev/null 2>&1'

say ''
say "$failed failed. Please send us $report, with the lines of docs/macos.md that only you can see."
[ "$failed" = 0 ]
