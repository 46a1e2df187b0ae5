#!/bin/bash
# Functions are handed to others by their names.
# shellcheck disable=SC2317
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
# The lowest version that the program runs on. CMakeLists.txt has it too, and `plist` compares.
minimum=13.0
frameworks=(AppKit Foundation CoreFoundation ServiceManagement UserNotifications)
architectures=(arm64 x86_64)

usage()
{
    cat <<'END'
check.sh [STEP...]   checks the macOS layer (src/platform/macos) on Linux, without a Mac and without its SDK

Steps, all of them when none is named:
  compile        the .mm files for both architectures at the deployment target, as ARC, warnings as errors
  link           universal, against stubs of the frameworks; every symbol has to come from one that we link
  sources        the program's other sources for the Mac, as CMake has them for it, and the link of all of it
  newer-qt       the same sources with the headers of Debian 13's Qt, or of $BRIMWATCH_QT_RELEASE's
  plist          Info.plist and the entitlements
  bundle         what the packaging script says of bundles that lack a library
  lint           clang-tidy and the static analyzer's checkers for Objective-C
  run            the unchanged .mm files on Linux, on fakes, under the sanitizers: tests/macos
  declarations   what we declare of the frameworks against GNUstep's headers

  --layer DIR    the folder of the .mm files, where it is not ours: for planted mistakes
  --file NAME    look at this one of them alone in `lint`
  --quick        stop at the first step that fails

One line for each check; the last line says how many passed and failed. README.md says what they prove.
END
}

layer=$root/src/platform/macos quick='' only='' steps=()
while [ $# -gt 0 ]; do
    case $1 in
        --layer)
            layer=$(cd "$2" && pwd)
            shift
            ;;
        --file)
            only=$2
            shift
            ;;
        --quick) quick=1 ;;
        -*)
            usage >&2
            exit 2
            ;;
        *) steps+=("$1") ;;
    esac
    shift
done
[ ${#steps[@]} -gt 0 ] || steps=(compile link sources newer-qt plist bundle lint run declarations)

mkdir -p "$root/build"
work=$(mktemp -d "$root/build/macos-check.XXXXXX")
trap 'rm -rf "$work"' EXIT
passed=0 failed=0

# check SENTENCE COMMAND...: shows what the command says only when it fails.
check()
{
    local sentence=$1 start=$SECONDS
    shift
    if "$@" >"$work/log" 2>&1; then
        passed=$((passed + 1))
        printf 'ok    %s (%d s)\n' "$sentence" $((SECONDS - start))
        return
    fi
    failed=$((failed + 1))
    printf 'FAIL  %s\n' "$sentence"
    sed 's/^/      /' "$work/log" | head -n 200
    if [ -n "$quick" ]; then
        finish
    fi
}

finish()
{
    printf '\n%d passed, %d failed\n' "$passed" "$failed"
    [ $((passed + failed)) -gt 0 ] && [ "$failed" = 0 ]
    exit
}

mapfile -t layer_sources < <(find "$layer" -maxdepth 1 -name '*.mm' | sort)
[ ${#layer_sources[@]} -gt 0 ] || { echo "check.sh: no .mm files in $layer" >&2; exit 1; }
# Headers are included from src; planted ones stand before ours.
includes=(-I "$(cd "$layer/../.." && pwd)" -I "$root/src")

# The build's own warnings, and those that find what ARC and the two architectures trip over.
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -Wno-unused-parameter
    -Wunguarded-availability -Wimplicit-retain-self -Warc-repeated-use-of-weak -Wundeclared-selector
    -Wstrict-selector-match -Wformat=2 -Wno-unused-command-line-argument)
headers=(-nostdlibinc -isystem "$here/libcxx" -isystem /usr/lib/llvm-19/include/c++/v1
    -isystem "$here/libc" -isystem "$here/declarations")
language=(-std=c++20 -fobjc-arc -fblocks -fvisibility=hidden -O1 -g)

# A compiler cache is used where there is one.
compiler=(clang-19)
if command -v ccache >/dev/null; then compiler=(ccache clang-19); fi

# for_mac ARCHITECTURE ARGUMENT...
for_mac() { "${compiler[@]}" -target "$1-apple-macos$minimum" "${headers[@]}" "${language[@]}" "${warnings[@]}" "${@:2}"; }

# each_of COMMAND ARGUMENT... -- FILE...: the command for each file, as many at a time as there are cores.
each_of()
{
    local status=0 pid pids=() command=() source
    while [ "$1" != -- ]; do
        command+=("$1")
        shift
    done
    for source in "${@:2}"; do
        "${command[@]}" "$source" &
        pids+=($!)
        if [ ${#pids[@]} -ge "$(nproc)" ]; then
            wait "${pids[0]}" || status=1
            pids=("${pids[@]:1}")
        fi
    done
    for pid in "${pids[@]}"; do wait "$pid" || status=1; done
    return "$status"
}

each_source() { each_of "$@" -- "${layer_sources[@]}"; }

object_of() { echo "$work/$1/$(basename "$2" .mm).o"; }

compile_one() { for_mac "$1" "${includes[@]}" -c "$2" -o "$(object_of "$1" "$2")"; }
compile_layer()
{
    mkdir -p "$work/$1"
    each_source compile_one "$1"
}

compile_step()
{
    for architecture in "${architectures[@]}"; do
        check "the layer compiles for $architecture and macOS $minimum" compile_layer "$architecture"
    done
}

# ---- link ----

make_sysroot()
{
    [ -d "$work/sysroot" ] || "$here/stubs/make-stubs.sh" "$work/sysroot"
}

# link_for ARCHITECTURE OUTPUT ARGUMENT...
link_for()
{
    local architecture=$1 output=$2 arguments=() framework
    shift 2
    for framework in "${frameworks[@]}"; do arguments+=(-framework "$framework"); done
    clang-19 -target "$architecture-apple-macos$minimum" -fuse-ld=lld -nostdlib++ -isysroot "$work/sysroot" \
        "-Wl,-platform_version,macos,$minimum,$minimum" "$@" -lc++ -lobjc "${arguments[@]}" -o "$output"
}

# Everything that the layer offers, so that nothing of it is missing. The two bodies of the popover are one at a time.
layer_objects()
{
    local architecture=$1 left_out=$2 source
    for source in "${layer_sources[@]}"; do
        [ "$(basename "$source" .mm)" = "$left_out" ] || object_of "$architecture" "$source"
    done
}

link_layer()
{
    local left_out=$1 architecture objects slices=()
    make_sysroot || return
    for architecture in "${architectures[@]}"; do
        [ -d "$work/$architecture" ] || compile_layer "$architecture" || return
        mapfile -t objects < <(layer_objects "$architecture" "$left_out")
        link_for "$architecture" "$work/layer-$architecture.dylib" -dynamiclib -Wl,-undefined,error "${objects[@]}" || return
        slices+=("$work/layer-$architecture.dylib")
        llvm-objdump-19 --macho --private-headers "$work/layer-$architecture.dylib" >"$work/headers" || return
        grep -A 4 LC_BUILD_VERSION "$work/headers" | grep -q "minos $minimum" ||
            { echo "the lowest version is not $minimum"; return 1; }
    done
    llvm-lipo-19 -create "${slices[@]}" -output "$work/layer.dylib" || return
    file "$work/layer.dylib" | grep -q 'Mach-O universal binary with 2 architectures'
}

link_step()
{
    check "it links, universal, with the system's popover" link_layer native_popover_panel
    check "it links, universal, with a panel of our own" link_layer native_popover
}

# ---- lint ----

lint_one()
{
    [ -z "$only" ] || [ "$(basename "$1")" = "$only" ] || return 0
    clang-tidy-19 --quiet --warnings-as-errors='*' --checks='-*,bugprone-*,clang-analyzer-*,darwin-*,objc-*,google-objc-*,performance-*,-bugprone-easily-swappable-parameters,-performance-no-int-to-ptr,-performance-enum-size,-google-objc-function-naming,-google-objc-global-variable-declaration,-bugprone-casting-through-void,-clang-analyzer-optin.osx.cocoa.localizability*' \
        "$1" -- -target "arm64-apple-macos$minimum" "${headers[@]}" "${language[@]}" "${includes[@]}" 2>/dev/null
}

lint_step() { check "clang-tidy and the analyzer find nothing" each_source lint_one; }

# ---- run ----

# Apple's code generation on ELF. UBSan's checks of calls and types know nothing of Objective-C's.
sanitizers=("-fsanitize=address,undefined" "-fno-sanitize=vptr,function,alignment" -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer)
linux=("${compiler[@]}" -std=c++20 -stdlib=libc++ "-fobjc-runtime=macosx-$minimum" -fobjc-arc -fblocks -O1 -g
    -isystem "$here/declarations" -isystem "$here" "${sanitizers[@]}" -Wall -Wextra -Wno-unused-parameter)

# Fakes, runtime and tests change seldom: they are compiled again when they, or any header of theirs, are newer.
prepared=$root/build/macos-check/objects
prepare_one()
{
    local source=$1 object
    object=$prepared/$(basename "${source%.*}").o
    if [ -f "$object" ] && [ -z "$(find "$here" "$root/tests/macos" "$root/src/platform/macos" -newer "$object" \
        \( -name '*.h' -o -path "$source" \) -print -quit)" ]; then
        return
    fi
    mkdir -p "$prepared"
    local flags=(-I "$root/src" -I "$root/tests")
    case $source in
        *.cpp) flags+=(-x c++ -Wno-cast-function-type-mismatch) ;;
    esac
    "${linux[@]}" "${flags[@]}" -c "$source" -o "$object.new" && mv "$object.new" "$object"
}

run_one() { "${linux[@]}" "${includes[@]}" -c "$1" -o "$(object_of linux "$1")"; }

link_and_run()
{
    local name=$1 left_out=$2 objects fakes
    shift 2
    fakes=("$here"/fakes/*.mm)
    fakes=("${fakes[@]/#*\//$prepared/}")
    mapfile -t objects < <(layer_objects linux "$left_out")
    clang++-19 -stdlib=libc++ -fuse-ld=lld "${sanitizers[@]}" "$prepared/mini_objc.o" "${fakes[@]/%.mm/.o}" \
        "$prepared/main.o" "$@" "${objects[@]}" -o "$work/$name" || return
    (
        # The address sanitizer's shadow is larger than any limit of the whole; what the program asks for is not.
        ulimit -t 60
        ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:hard_rss_limit_mb=1000 \
            ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-19 timeout 120 "$work/$name"
    ) >"$work/$name.log" 2>&1
    local status=$?
    # What holds is not worth a line.
    grep -v '^ok ' "$work/$name.log"
    [ "$status" = 0 ] && grep -qE '^[1-9][0-9]* sentences, [1-9][0-9]* checks, 0 failed$' "$work/$name.log"
}

run_step()
{
    if [ "$(uname -m)" != x86_64 ]; then
        # The runtime for the tests is written for one processor.
        failed=$((failed + 1))
        echo "FAIL  the tests run on x86-64 alone"
        return
    fi
    local test tests=() of_panel=()
    mkdir -p "$work/linux"
    for test in "$root"/tests/macos/*_test.mm; do
        check "$(basename "$test") compiles" prepare_one "$test"
        case $test in
            */native_popover_panel_test.mm) of_panel+=("$prepared/native_popover_panel_test.o") ;;
            */any_popover_test.mm)
                of_panel+=("$prepared/any_popover_test.o")
                tests+=("$prepared/any_popover_test.o")
                ;;
            *) tests+=("$prepared/$(basename "${test%.*}").o") ;;
        esac
    done
    local support
    for support in "$root/tests/macos/main.mm" "$here/runtime/mini_objc.cpp"; do
        check "$(basename "$support") compiles" prepare_one "$support"
    done
    check "the fakes compile" each_of prepare_one -- "$here"/fakes/*.mm
    check "the layer compiles for the fakes" each_source run_one
    check "tests of the layer with the system's popover" link_and_run popover native_popover_panel "${tests[@]}"
    [ ! -f "$work/popover.log" ] || tail -n 1 "$work/popover.log" | sed 's/^/      /'
    check "tests of the layer with a panel of our own" link_and_run panel native_popover "${of_panel[@]}"
    [ ! -f "$work/panel.log" ] || tail -n 1 "$work/panel.log" | sed 's/^/      /'
}

# ---- declarations ----

# Two header sets, the same methods: their kinds of types must agree. What GNUstep does not have is in a list.
ours=(clang-19 -target "arm64-apple-macos$minimum" "${headers[@]}" "${language[@]}")
theirs=(clang-19 -std=c++20 -fobjc-runtime=gcc -fblocks -fexceptions -fobjc-exceptions -DGNUSTEP -DGNU_RUNTIME=1
    -fconstant-string-class=NSConstantString -isystem "$here/witness/include" -isystem /usr/include/GNUstep)
compare_declarations()
{
    printf '#import <%s>\n' AppKit/AppKit.h ServiceManagement/ServiceManagement.h \
        UserNotifications/UserNotifications.h >"$work/ours.mm"
    printf '#import <AppKit/AppKit.h>\n' >"$work/theirs.mm"
    theirs+=(-idirafter "$(dirname "$(find /usr/lib/gcc -path '*/include/objc' -type d | sort | tail -n 1)")")
    local dump=(-w -fsyntax-only -fno-color-diagnostics -Xclang -ast-dump)
    "${ours[@]}" "${dump[@]}" "$work/ours.mm" >"$work/ours.txt" || return
    "${theirs[@]}" "${dump[@]}" "$work/theirs.mm" >"$work/theirs.txt" || return
    python3 "$here/witness/compare_declarations.py" "$work/ours.txt" "$work/theirs.txt" \
        "$here/witness/unverified.txt" >"$work/witness.log"
    local status=$?
    cat "$work/witness.log"
    return "$status"
}

enumerators_in() { sed -n "s/.*EnumConstantDecl .* \(NS[A-Za-z0-9]*\) '.*/\1/p" "$1" | sort -u; }

# values_by FILE COMPILER...: the numbers behind the enumerators that both have, as the compiler sees them.
values_by()
{
    "${@:2}" -w -S -emit-llvm -o - "$1" | sed -n 's/^@values = .*\(\[i64 .*\]\).*/\1/p'
}

compare_values()
{
    [ -s "$work/theirs.txt" ] || return
    local names mine other
    # Of a tracking area's options GNUstep numbers those from 8 on without the gap that the documentation has there.
    mapfile -t names < <(comm -12 <(enumerators_in "$work/ours.txt") <(enumerators_in "$work/theirs.txt") |
        grep -vE '^NSTracking(Active|InVisibleRect)')
    [ ${#names[@]} -gt 5 ] || { echo "only ${#names[@]} names in both"; return 1; }
    printf '%s\n' "${#names[@]} enumerators are in both: ${names[*]}" >"$work/values.log"
    {
        echo 'extern const long long values[] = {'
        printf '    (long long)%s,\n' "${names[@]}"
        echo '};'
    } | tee -a "$work/ours.mm" >>"$work/theirs.mm"
    mine=$(values_by "$work/ours.mm" "${ours[@]}")
    other=$(values_by "$work/theirs.mm" "${theirs[@]}")
    cat "$work/values.log"
    printf '%s\n' "ours:   $mine" "theirs: $other"
    [ -n "$mine" ] && [ "$mine" = "$other" ]
}

declarations_step()
{
    check "what we declare agrees with GNUstep's headers" compare_declarations
    [ ! -f "$work/witness.log" ] || tail -n 1 "$work/witness.log" | sed 's/^/      /'
    check "so do the values of the enumerations that both have" compare_values
    [ ! -f "$work/values.log" ] || cut -c 1-90 "$work/values.log" | sed 's/^/      /'
}

# ---- plist, sources ----

plist_step() { check "Info.plist and the entitlements say what they must" python3 "$here/check_plists.py" "$root" "$minimum"; }

bundle_step() { check "the packaging script finds every library that a bundle lacks" "$here/bundle_test.sh"; }

sources_step()
{
    # shellcheck source=tools/macos-check/sources.sh
    . "$here/sources.sh"
    check_sources
}

newer_qt_step()
{
    # shellcheck source=tools/macos-check/sources.sh
    . "$here/sources.sh"
    # shellcheck source=tools/macos-check/newer_qt.sh
    . "$here/newer_qt.sh"
    check_newer_qt
}

for step in "${steps[@]}"; do
    case $step in
        compile) compile_step ;;
        link) link_step ;;
        sources) sources_step ;;
        newer-qt) newer_qt_step ;;
        plist) plist_step ;;
        bundle) bundle_step ;;
        lint) lint_step ;;
        run) run_step ;;
        declarations) declarations_step ;;
        *)
            echo "check.sh: no step named $step" >&2
            exit 2
            ;;
    esac
done
finish
