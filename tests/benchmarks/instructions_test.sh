#!/bin/bash
# instructions_test.sh [--write]   fails when a step of benchmarks/instructions.sh executes over a tenth more than
# benchmarks/instructions.txt says for this version of Qt; with --write that file takes the figures instead.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=instructions_test.sh
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=../../tools/lib/build.sh
. "$root/tools/lib/build.sh"
figures=$root/benchmarks/instructions.txt

write=''
if [ $# -gt 0 ]; then
    [ "$*" = --write ] || die "usage: instructions_test.sh [--write]"
    write=1
fi
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$root/tools/lib/packages.sh" benchmarks
build_preset release
work=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-instructions.XXXXXX")
trap 'rm -rf "$work"' EXIT
read -r -a flags < <(pkg-config --cflags --libs xcb dbus-1)
gcc -std=gnu11 -O2 -Wall -Wextra -Werror -o "$work/trayhost" "$root/benchmarks/trayhost.c" "${flags[@]}"
"$root/benchmarks/instructions.sh" "$root/build/release" "$work" >"$work/rows"
qt="Qt $(pkg-config --modversion Qt6Core)"

if [ -n "$write" ]; then
    sed "s/^/$qt|/" "$work/rows" >"$work/new"
    awk -F '|' -v qt="$qt" '/^#/ || (NF && $1 != qt)' "$figures" >"$work/kept"
    cat "$work/kept" "$work/new" >"$figures"
    exit
fi
awk -F '|' -v qt="$qt" '
    FNR == NR { if ($1 == qt) { before[$2] = $3; missing[$2] } next }
    {
        delete missing[$1]
        if (!($1 in before)) { printf "%-70s %10.3f M, of which no figure is kept for %s\n", $1, $2, qt; bad = 1; next }
        change = 100 * ($2 / before[$1] - 1)
        printf "%-70s %10.3f M, %+.1f %%%s\n", $1, $2, change, (change > 10 ? ": over a tenth more" : "")
        if (change > 10) bad = 1
    }
    END {
        for (name in missing) { printf "%-70s was not counted\n", name; bad = 1 }
        exit bad
    }' "$figures" "$work/rows" || die "write the figures with tests/benchmarks/instructions_test.sh --write when they are meant to change"
