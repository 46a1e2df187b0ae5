#!/bin/bash
# bundle_test.sh   what packaging/macos/bundle_libraries.sh says of bundles that were made up here
#
# The libraries are Mach-O files with nothing in them but what they load. Prints a line for each check that does not hold.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
script=$root/packaging/macos/bundle_libraries.sh
export OTOOL=llvm-otool-19
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
app=$work/Brimwatch.app frameworks=$work/Brimwatch.app/Contents/Frameworks brew=$work/homebrew/lib
failed=0

fail()
{
    echo "$1"
    sed 's/^/    /' "$work/said"
    failed=1
}

# mach_o OUTPUT KIND ID RPATH LOADED...: a program or library that loads those names.
mach_o()
{
    local output=$1 kind=$2 id=$3 rpath=$4 arguments=() name number=0
    shift 4
    mkdir -p "$(dirname "$output")" "$work/stubs"
    for name; do
        number=$((number + 1))
        # A stub of the library that is to be loaded: its name is all that the linker takes from it.
        printf '%s\n' '--- !tapi-tbd' 'tbd-version: 4' 'targets: [ arm64-macos ]' "install-name: '$name'" \
            'exports:' '  - targets: [ arm64-macos ]' "    symbols: [ _needed$number ]" '...' >"$work/stubs/lib$number.tbd"
        arguments+=("$work/stubs/lib$number.tbd" -u "_needed$number")
    done
    [ -z "$rpath" ] || arguments+=(-rpath "$rpath")
    case $kind in
        library) arguments+=(-dylib -install_name "$id") ;;
        # Not -e: a program of nothing but a symbol of the stub has no entry of its own.
        program) arguments+=(-bundle) ;;
    esac
    ld64.lld-19 -arch arm64 -platform_version macos 13.0 13.0 -undefined dynamic_lookup "${arguments[@]}" \
        "$work/empty.o" -o "$output" || { echo "cannot make $output"; exit 1; }
}
printf 'void nothing(void) {}\n' >"$work/empty.c"
clang-19 -target arm64-apple-macos13.0 -c "$work/empty.c" -o "$work/empty.o" || exit 1

# As macdeployqt leaves it where ICU is Homebrew's.
system=/usr/lib/libSystem.B.dylib
mach_o "$app/Contents/MacOS/Brimwatch" program '' @executable_path/../Frameworks \
    @rpath/libbrimwatch.dylib /System/Library/Frameworks/AppKit.framework/Versions/C/AppKit "$system"
mach_o "$frameworks/libbrimwatch.dylib" library @rpath/libbrimwatch.dylib @loader_path \
    @executable_path/../Frameworks/libicuuc.78.dylib "$system"
mach_o "$frameworks/libicuuc.78.dylib" library @executable_path/../Frameworks/libicuuc.78.dylib '' \
    @loader_path/libicudata.78.dylib "$system"
mach_o "$app/Contents/PlugIns/platforms/libqcocoa.dylib" library libqcocoa.dylib '' @rpath/libbrimwatch.dylib
mach_o "$brew/libicudata.78.1.dylib" library /opt/homebrew/opt/icu4c@78/lib/libicudata.78.dylib '' "$system"
ln -s libicudata.78.1.dylib "$brew/libicudata.78.dylib"
printf 'no library' >"$app/Contents/Frameworks/readme"

if "$script" check "$app" >"$work/said" 2>&1; then fail "a bundle without libicudata passes"; fi
grep -q 'Frameworks/libicuuc.78.dylib loads @loader_path/libicudata.78.dylib' "$work/said" || fail "the library is not named"
[ "$(grep -c loads "$work/said")" = 1 ] || fail "something else is complained about"

"$script" complete "$app" "$work/none" "$brew" >"$work/said" 2>&1 || fail "it cannot be completed"
if [ ! -f "$frameworks/libicudata.78.dylib" ] || [ -L "$frameworks/libicudata.78.dylib" ]; then fail "libicudata is not copied"; fi
"$script" check "$app" >"$work/said" 2>&1 || fail "a whole bundle does not pass"
grep -q '^all that 5 files load' "$work/said" || fail "not all files are looked at"

# What a bundle must not load: one line each.
refuse()
{
    local what=$1
    shift
    mach_o "$frameworks/libplanted.dylib" library @rpath/libplanted.dylib "$@"
    if "$script" check "$app" >"$work/said" 2>&1; then fail "$what passes"; fi
    grep -q 'Frameworks/libplanted.dylib loads' "$work/said" || fail "$what: the file is not named"
    rm "$frameworks/libplanted.dylib"
}
refuse "a path of Homebrew" '' /opt/homebrew/lib/libfmt.11.dylib
refuse "an absolute path into the bundle" '' "$frameworks/libbrimwatch.dylib"
refuse "a name that no run path has" '' @rpath/libnowhere.dylib
refuse "a folder beside the bundle" @loader_path/../../../homebrew/lib @rpath/libicudata.78.1.dylib
refuse "a name without a folder" '' libfmt.dylib

if "$script" check "$work" >"$work/said" 2>&1; then fail "a folder that is no bundle passes"; fi
if "$script" check "$work/none.app" >"$work/said" 2>&1; then fail "a bundle that is not there passes"; fi
[ "$failed" = 0 ]
