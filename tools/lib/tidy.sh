#!/bin/bash
# tidy.sh BUILD_DIR   clang-tidy over our sources of a built tree, as many at a time as there are cores.
#
# A file without findings leaves a stamp in build/tidy under a hash of all that its answer depends on: its
# text, our headers that it includes, the generated ones, the configuration, the compile command and
# clang-tidy itself. The same hash is not looked at again.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "$1" && pwd)
stamps=$root/build/tidy/stamps
mkdir -p "$stamps"
work=$(mktemp -d "$root/build/tidy/run.XXXXXX")
trap 'rm -rf "$work"' EXIT

# CMake writes one key a line, the file last; what it compiles to stands in the command. Generated sources are not ours.
awk -v root="$root" '
    match($0, /^ *"command": "/) {
        command = substr($0, RLENGTH + 1)
        output = command; sub(/.* -o /, "", output); sub(/ .*/, "", output)
    }
    match($0, /^ *"file": "/) {
        file = substr($0, RLENGTH + 1); sub(/",?$/, "", file)
        if (index(file, root "/src/") == 1 || index(file, root "/tests/") == 1 || index(file, root "/tools/") == 1)
            if (!seen[file]++) print file "\t" output "\t" command
    }' "$build/compile_commands.json" >"$work/files"
[ -s "$work/files" ] || { echo "tidy: no sources in $build/compile_commands.json" >&2; exit 1; }

# What each object was made from, as the compiler said when it was built; system headers stay as they are.
ninja -C "$build" -t deps | awk -v root="$root/" -v build="$build/" '
    /^[^ ].*: #deps/ { object = $1; sub(/:$/, "", object) }
    /^ / {
        path = $1
        if (path !~ /^\//) path = build path
        if (index(path, root) == 1) print object "\t" path
    }' >"$work/deps"

config=$(cat "$root/.clang-tidy" <(clang-tidy-19 --version) <(dpkg-query -W -f '${Version}' qt6-base-dev) | sha256sum)
looked=0 total=0
: >"$work/todo"
while IFS=$'\t' read -r file output command; do
    total=$((total + 1))
    hash=$({
        printf '%s\n%s\n' "$config" "$command"
        { echo "$file"; awk -F '\t' -v o="$output" '$1 == o { print $2 }' "$work/deps"; } | sort -u |
            xargs -d '\n' sha256sum 2>/dev/null
    } | sha256sum)
    hash=${hash%% *}
    if [ ! -e "$stamps/$hash" ]; then
        looked=$((looked + 1))
        printf '%s\0%s\0' "$file" "$stamps/$hash" >>"$work/todo"
    fi
    echo "$hash" >>"$work/current"
done <"$work/files"
echo "$total files, $((total - looked)) of them unchanged since they were found clean"

# One call a file: its findings stay together, and only a clean one gets its stamp.
export TIDY_BUILD=$build
# shellcheck disable=SC2016
one='log=$(mktemp) && if clang-tidy-19 --quiet -p "$TIDY_BUILD" "$1" >"$log" 2>&1; then : >"$2"; rm -f "$log"; else cat "$log"; rm -f "$log"; exit 1; fi'
status=0
xargs -0 -r -n 2 -P "$(nproc)" bash -c "$one" tidy <"$work/todo" || status=1

# Stamps of texts that are gone are of no more use.
for stamp in "$stamps"/*; do
    [ ! -e "$stamp" ] || grep -qxF "${stamp##*/}" "$work/current" || rm -f "$stamp"
done
exit "$status"
