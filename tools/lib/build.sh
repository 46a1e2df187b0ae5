# shellcheck shell=bash
# Building a preset of CMakePresets.json; sourced after common.sh, with `root` set.

# A compiler cache is used where there is one.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER:-ccache}
    # Without these it keeps nothing that was compiled with precompiled headers.
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
fi

# show_progress LOG: hands on to the log what a build prints, and of Ninja's count shows where it is: on a terminal in one line,
# else in a line for each tenth.
show_progress()
{
    local line tenth=0 now width=$(($(tput cols 2>/dev/null || echo 80) - 1))
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$1"
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        if [ -t 2 ]; then
            printf '\r\033[K%s' "${line:0:width}" >&2
        else
            now=$((10 * BASH_REMATCH[1] / BASH_REMATCH[2]))
            [ "$now" -le "$tenth" ] || say "${line%%]*}]"
            tenth=$now
        fi
    done
    [ ! -t 2 ] || printf '\r\033[K' >&2
}

# build_preset PRESET [TARGET...]: configures and builds; on failure says where and shows the end of it.
build_preset()
{
    local preset=$1 log=${root:?}/build/$1.log
    shift
    mkdir -p "$root/build"
    say "Building $preset ..."
    if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 ||
        ! (set -o pipefail && cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"} 2>&1 | show_progress "$log"); then
        tail -n 60 "$log" >&2
        say "Building $preset failed; the whole of it is in $log"
        return 1
    fi
}
