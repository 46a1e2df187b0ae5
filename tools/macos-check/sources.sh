# shellcheck shell=bash
# The whole program for the Mac, as its own CMake files have it there; sourced by check.sh.
#
# CMake is made to believe that it runs on a Mac, and takes our branches for one. What it would compile is compiled, with moc and
# the QML tools before it; what it would link is linked here, because the libraries on this machine are Linux's: against
# their names alone.

tree=${root:?}/build/macos-check/tree
qt_libraries=(Qt6Core Qt6Gui Qt6Network Qt6Qml Qt6QmlModels Qt6QmlWorkerScript Qt6Quick Qt6Svg)

configure_for_mac()
{
    local library here=${here:?} minimum=${minimum:?} sysroot=$root/build/macos-check/sysroot portable=$root/build/macos-check/headers
    mkdir -p "$portable"
    for library in unicode fmt tl zlib.h zconf.h; do ln -sfn "/usr/include/$library" "$portable/$library"; done
    "$here/stubs/make-stubs.sh" "$sysroot" || return
    cmake -G Ninja -S "$root" -B "$tree" -DCMAKE_TOOLCHAIN_FILE="$here/toolchain.cmake" \
        -DCMAKE_PROJECT_INCLUDE="$here/stand-ins.cmake" -DCMAKE_BUILD_TYPE=Debug -DBRIMWATCH_TESTS=ON -DBRIMWATCH_WARNINGS_ARE_ERRORS=ON \
        -DMACOS_CHECK="$here" -DMACOS_SYSROOT="$sysroot" -DMACOS_HEADERS="$portable" -DMACOS_MINIMUM="$minimum"
}

# Objects by the folder of the target that they belong to.
objects_of()
{
    local target=$1
    ninja -C "$tree" -t targets all | sed -n "s|^\(.*/CMakeFiles/$target\.dir/.*\.o\): .*|$tree/\1|p" | sort -u
}

compile_sources()
{
    local objects
    mapfile -t objects < <(ninja -C "$tree" -t targets all | sed -n 's|^\(.*\.o\): .*|\1|p' | sort -u)
    [ ${#objects[@]} -gt 50 ] || { echo "only ${#objects[@]} objects"; return 1; }
    ninja -C "$tree" -j "$(nproc)" "${objects[@]}"
}

link_program()
{
    local target shared=() views secure program libraries=(-lQt6Core -lQt6Gui -lQt6Network -lQt6Qml -lQt6QmlModels -lQt6QmlWorkerScript -lQt6Quick -lQt6Svg)
    make_sysroot || return
    "${here:?}/stubs/make-library-stubs.sh" "${work:?}/sysroot" "${qt_libraries[@]}" icuuc icui18n || return
    for target in brimwatch_core brimwatch_model brimwatch_forecast brimwatch_discovery brimwatch_platform brimwatch_service; do
        mapfile -t -O ${#shared[@]} shared < <(objects_of $target)
    done
    mapfile -t views < <(objects_of 'brimwatch_views[a-z_0-9]*')
    mapfile -t secure < <(for target in brimwatch_secure_connection brimwatch_tls; do objects_of $target; done)
    mapfile -t program < <(
        for target in brimwatch brimwatch_app brimwatch_app_delegate brimwatch_macos_adapters brimwatch_macos; do objects_of $target; done
    )
    # Names with the C++ library's types in them are not those of Debian's libraries, which were built with another.
    local foreign=() name
    while read -r name; do foreign+=("-Wl,-U,$name"); done < <(
        llvm-nm-19 --undefined-only --format=just-symbols "${shared[@]}" "${views[@]}" "${secure[@]}" "${program[@]}" |
            grep -E '^__Z.*(St3__1|3fmt)' | grep -vE '^__Z(T[VIS])?N?K?St3__1|9brimwatch' | sort -u
    )
    link_for arm64 "$work/libbrimwatch.dylib" -dynamiclib -Wl,-undefined,error "${shared[@]}" "${foreign[@]}" \
        "${libraries[@]}" -licuuc -licui18n || return
    link_for arm64 "$work/libbrimwatch-views.dylib" -dynamiclib -Wl,-undefined,error "${views[@]}" \
        "$work/libbrimwatch.dylib" "${foreign[@]}" "${libraries[@]}" || return
    link_for arm64 "$work/libbrimwatch-tls.dylib" -dynamiclib -Wl,-undefined,error "${secure[@]}" "${foreign[@]}" \
        -lQt6Core -lQt6Network || return
    link_for arm64 "$work/Brimwatch" "${program[@]}" "$work/libbrimwatch.dylib" "${foreign[@]}" "${libraries[@]}" || return
    file "$work/Brimwatch" | grep -q 'Mach-O 64-bit arm64 executable'
}

check_sources()
{
    check "CMake configures the program for a Mac" configure_for_mac
    check "all of its sources compile for arm64 and macOS ${minimum:?}" compile_sources
    check "all of it links, the program and its three libraries" link_program
}
