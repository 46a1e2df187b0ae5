#!/bin/bash
# helpers.sh   builds the small helpers of the panel scripts where they are missing or old, and
#              prints the folder that they are in.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=${BRIMWATCH_HELPERS:-$here/../../../build/helpers}
mkdir -p "$out"
out=$(cd "$out" && pwd)
# build NAME PKG_CONFIG_MODULE... or build NAME -COMPILER_OPTION...
build()
{
    local name=$1 flags=() partial=$out/.$1.$$
    shift
    [ ! "$out/$name" -nt "$here/$name.c" ] || return 0
    case ${1:-} in
        -*) flags=("$@") ;;
        *) read -r -a flags < <(pkg-config --cflags --libs "$@") ;;
    esac
    gcc -std=gnu11 -O1 -Wall -Wextra -Werror -o "$partial" "$here/$name.c" "${flags[@]}"
    mv "$partial" "$out/$name"
}
build x-windows xcb xcb-res
build x-settings xcb
build stay-root -shared -fPIC
echo "$out"
