#!/bin/bash
# make-stubs.sh OUT: writes OUT/System/Library/Frameworks/*.framework/*.tbd and OUT/usr/lib/*.tbd, which
# the linker takes for the system's libraries. The names come from frameworks.txt, those of the C++ library
# from Debian's own libc++.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=$1
mkdir -p "$out/usr/lib"

# emit FILE INSTALL_NAME NAME...: a class's name has an @ before it.
emit()
{
    local file=$1 install_name=$2 word classes='' symbols=''
    shift 2
    mkdir -p "$(dirname "$file")"
    for word; do
        case $word in
            @*) classes+="${classes:+, }${word#@}" ;;
            *) symbols+="${symbols:+, }'_$word'" ;;
        esac
    done
    {
        printf '%s\n' '--- !tapi-tbd' 'tbd-version: 4' 'targets: [ x86_64-macos, arm64-macos ]' \
            "install-name: '$install_name'" 'exports:' '  - targets: [ x86_64-macos, arm64-macos ]'
        [ -z "$symbols" ] || echo "    symbols: [ $symbols ]"
        [ -z "$classes" ] || echo "    objc-classes: [ $classes ]"
        echo '...'
    } >"$file"
}

kind='' name='' path='' words=()
flush()
{
    case $kind in
        framework) emit "$out/System/Library/Frameworks/$name.framework/$name.tbd" "$path" "${words[@]}" ;;
        library) emit "$out/usr/lib/lib$name.tbd" "$path" "${words[@]}" ;;
    esac
}
while read -r line; do
    case $line in
        '' | '#'*) ;;
        'framework '* | 'library '*)
            flush
            read -r kind name path <<<"$line"
            words=()
            ;;
        *)
            read -r -a more <<<"$line"
            words+=("${more[@]}")
            ;;
    esac
done <"$here/frameworks.txt"
flush

library=/usr/lib/llvm-19/lib
[ -e "$library/libc++.so.1" ] || library=/usr/lib/x86_64-linux-gnu
mapfile -t names < <(llvm-nm-19 -D --defined-only --format=just-symbols "$library/libc++.so.1" "$library/libc++abi.so.1" |
    sed 's/@.*//' | grep -E '^(_Z|__cxa|__gxx|__dynamic_cast)' | sort -u)
[ ${#names[@]} -gt 0 ] || { echo "make-stubs.sh: no names in $library/libc++.so.1" >&2; exit 1; }
emit "$out/usr/lib/libc++.tbd" /usr/lib/libc++.1.dylib "${names[@]}"
