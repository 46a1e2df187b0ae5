#!/usr/bin/env bash
# The panel scripts read files of their folder as shell code: they take none from a folder that others can write.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-test.XXXXXX")
clean_up() { rm -rf "$scratch"; }
panel=$root/tools/desktops/panels/trayer.sh

# planted FOLDER: as somebody does who was there first.
planted()
{
    mkdir -p "$1"
    printf 'touch %q\n' "$scratch/ran" | tee "$1/state" >"$1/env"
}
# refused COMMAND...: for that reason, and nothing of the folder ran.
refused()
{
    local said
    ! said=$("$@" 2>&1 >/dev/null) && [[ $said == *"is not ours alone"* ]] && [ ! -e "$scratch/ran" ]
}

folder=$scratch/given
planted "$folder"
chmod 777 "$folder"
check "a folder that all can write is refused" refused "$panel" unpanel "$folder"
chmod 775 "$folder"
check "one that the group can write is refused" refused "$panel" crash "$folder"
chmod 755 "$folder"
ln -s "$folder" "$scratch/link"
check "a link is refused" refused "$panel" panel "$scratch/link"

export TMPDIR=$scratch
planted "$scratch/brimwatch-panels/trayer"
chmod 777 "$scratch/brimwatch-panels"
check "one in the temporary folder whose parent all can write is refused" refused "$panel" unpanel
