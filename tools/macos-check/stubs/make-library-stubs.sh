#!/bin/bash
# make-library-stubs.sh OUT LIBRARY...: OUT/usr/lib/lib*.tbd with the names that Debian's own libraries
# export, less the mark of GCC's own strings: Qt6Core gives libQt6Core.tbd. Good for a look at whether all
# that we call is somewhere: a Mac's libraries export names of their own, most of them the same.
set -euo pipefail
out=$1
shift
mkdir -p "$out/usr/lib"
for library; do
    file=$(find /usr/lib -name "lib$library.so" -print -quit)
    [ -n "$file" ] || { echo "make-library-stubs.sh: no lib$library.so" >&2; exit 1; }
    {
        printf '%s\n' '--- !tapi-tbd' 'tbd-version: 4' 'targets: [ x86_64-macos, arm64-macos ]' \
            "install-name: '@rpath/lib$library.dylib'" 'exports:' '  - targets: [ x86_64-macos, arm64-macos ]'
        printf '    symbols: [ %s ]\n' "$(llvm-nm-19 -D --defined-only --format=just-symbols "$file" |
            sed -e 's/@.*//' -e 's/B5cxx11//' | grep -E '^(_Z|q|u)' | sort -u | sed "s/.*/'_&'/" | paste -sd ,)"
        echo '...'
    } >"$out/usr/lib/lib$library.tbd"
done
