#!/bin/bash
# commands_test.sh BUILD   tries the commands of README.md, CONTRIBUTING.md and docs/ with a running program.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PROGRAM=commands_test
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
build=$(cd "$1" && pwd)
# shellcheck source=../support/own_session.sh
. "$root/tests/support/own_session.sh"

own_home
own_daemon --speed 0
own_display
own_bus ""
export PATH=$build/src/cli:$build/src/app:$PATH
"$build/src/app/brimwatch" >"$scratch/program.log" 2>&1 &
disown
wait_for 30 runs || die "the program did not start: $(cat "$scratch/program.log")"
python3 "$root/tests/docs/commands.py" "$root" "$build" | tee "$scratch/commands"
read -r -a numbers < <(sed -n 's/^\([0-9]*\) passed, \([0-9]*\) failed$/\1 \2/p' "$scratch/commands")
[ ${#numbers[@]} = 2 ] || die "it did not come to its end"
passed=${numbers[0]} failed=${numbers[1]}
check "and the program still runs" runs
