#!/bin/bash
# tidy.sh BUILD_DIR   clang-tidy's checks over our sources and headers of a built tree, as many at a time as
# there are cores.
#
# The checks are run by clangd, which looks at one file's own lines; clang-tidy itself looks through every
# header of Qt for each file too, at several times the cost. The static analyzer, which clangd leaves out,
# goes over the sources of the program and its tools after that.
#
# A file without findings leaves a stamp in build/tidy under a hash of all that its answer depends on: its
# text, our headers that it includes, the generated ones, the configuration, the compile command and
# clangd itself. The same hash is not looked at again.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root"
build=$(cd "$1" && pwd)
stamps=$root/build/tidy/stamps
mkdir -p "$stamps"
work=$(mktemp -d "$root/build/tidy/run.XXXXXX")
trap 'rm -rf "$work"' EXIT

# CMake writes one key a line, the file last; what it compiles to stands in the command. Generated sources are not ours.
awk -v root="$root" '
    match($0, /^ *"command": "/) {
        command = substr($0, RLENGTH + 1)
        # The compiler has read common headers before; here each file stands for itself.
        gsub(/ -fpch-preprocess| -Winvalid-pch| -include [^ ]*cmake_pch\.hxx/, "", command)
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

# A header is looked at with what the first object made from it was made from, and by its command.
awk -F '\t' -v build="$build/" '
    NR == FNR { command[$2] = $3; next }
    $2 ~ /\.h$/ && index($2, build) != 1 && ($1 in command) && !seen[$2]++ {
        text = command[$1]; sub(/ -o .*/, "", text)
        print $2 "\t" $1 "\t" text " -x c++ " $2 "\","
    }' "$work/files" "$work/deps" >"$work/headers"
cat "$work/headers" >>"$work/files"
awk -F '\t' -v build="$build" '
    { printf "%s{\"directory\": \"%s\", \"command\": \"%s \"file\": \"%s\"}", (NR > 1 ? ",\n" : "["), build, $3, $1 }
    END { print "]" }' "$work/files" >"$work/compile_commands.json"

config=$(cat .clang-tidy tests/.clang-tidy .clangd "${BASH_SOURCE[0]}" <(clangd-19 --version) \
    <(dpkg-query -W -f '${Version}' qt6-base-dev) | sha256sum)
looked=0 total=0
: >"$work/todo"
while IFS=$'\t' read -r file output command; do
    total=$((total + 1))
    hash=$({
        printf '%s\n%s\n' "$config" "$command"
        { echo "$file"; awk -F '\t' -v o="$output" '$1 == o { print $2 }' "$work/deps"; } | sort -u |
            xargs -d '\n' sha256sum 2>/dev/null
        echo "$file"
    } | sha256sum)
    hash=${hash%% *}
    if [ ! -e "$stamps/$hash" ]; then
        looked=$((looked + 1))
        printf '%s\0%s\0' "$file" "$stamps/$hash" >>"$work/todo"
    fi
    echo "$hash" >>"$work/current"
done <"$work/files"
echo "$total files, $((total - looked)) of them unchanged since they were found clean"

# shellcheck disable=SC2317
# look FILE STAMP, from xargs: its findings stay together, and only a clean one gets its stamp.
look()
{
    local file=$1 name=${1#"$TIDY_ROOT"/} log status=0
    log=$(mktemp "$TIDY_WORK/log.XXXXXX")
    clangd-19 --check="$file" --check-locations=0 --check-warnings --compile-commands-dir="$TIDY_BUILD" >"$log" 2>&1 ||
        status=$?
    # It must have come to its end with nothing found; what it says else is its own diary.
    if [ "$status" != 0 ] || ! grep -q 'All checks completed, 0 errors$' "$log"; then
        grep -E '^E\[' "$log" | sed -E "s|^E\[[^]]*\] |$name: |" || tail -n 5 "$log"
        return 1
    fi
    if [[ $name =~ ^(src|tools)/.*\.cpp$ ]] &&
        ! clang-tidy-19 --quiet -p "$TIDY_BUILD" --checks='-*,clang-analyzer-*,-clang-analyzer-cplusplus.NewDeleteLeaks' \
            "$file" >"$log" 2>&1; then
        cat "$log"
        return 1
    fi
    rm -f "$log"
    : >"$2"
}
export -f look
export TIDY_BUILD=$work TIDY_ROOT=$root TIDY_WORK=$work
status=0
# shellcheck disable=SC2016
xargs -0 -r -n 2 -P "$(nproc)" bash -c 'look "$@"' tidy <"$work/todo" || status=1

# Stamps of texts that are gone are of no more use.
for stamp in "$stamps"/*; do
    [ ! -e "$stamp" ] || grep -qxF "${stamp##*/}" "$work/current" || rm -f "$stamp"
done
exit "$status"
