# shellcheck shell=bash
# Building a preset of CMakePresets.json; sourced after common.sh, with `root` set.

# A compiler cache is used where there is one.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER:-ccache}
    # Without these it keeps nothing that was compiled with precompiled headers.
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
fi

# build_preset PRESET [TARGET...]: configures and builds; on failure says where and shows the end of it.
build_preset()
{
    local preset=$1 log=${root:?}/build/$1.log
    shift
    mkdir -p "$root/build"
    say "Building $preset ..."
    if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 ||
        ! (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"}) >>"$log" 2>&1; then
        tail -n 60 "$log" >&2
        say "Building $preset failed; the whole of it is in $log"
        return 1
    fi
}
