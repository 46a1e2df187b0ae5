#!/bin/bash
# other_packages_test.sh   reads the packages for other distributions with their own tools, and compares what they install with
# what CMake does, and so the Debian package.
#
# The build is that of $BRIMWATCH_BUILD (default build/dev). Nothing is built for those distributions: their libraries are not
# here. Prints a line a check and `N passed, N failed` last.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"
# shellcheck source=../support/checks.sh
. "$root/tests/support/checks.sh"
build=${BRIMWATCH_BUILD:-$root/build/dev}
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$root/tools/lib/packages.sh" other-packages || exit
scratch=$(mktemp -d "${TMPDIR:-/tmp}/brimwatch-packages.XXXXXX")
clean_up() { rm -rf "$scratch"; }
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
spec=$root/packaging/rpm/brimwatch.spec

DESTDIR=$scratch/staged cmake --install "$build" --prefix /usr >"$scratch/install.log" 2>&1 ||
    die "cmake --install failed: $(tail -n 5 "$scratch/install.log")"
# Where the libraries are is each distribution's own matter.
library_folder=$(cd "$scratch/staged" && find usr/lib* -type d -name brimwatch)
mapfile -t installed < <(cd "$scratch/staged" && find . -type f -printf '/%P\n' | sed "s|^/${library_folder%/brimwatch}/|/LIB/|" | sort)

# The lines of %files, each a pattern of paths; a folder stands for what is in it.
# A document or licence of the sources is none of what CMake installs.
mapfile -t patterns < <(rpmspec -P -D '_libdir /LIB' -D '_docdir /usr/share/doc' "$spec" 2>"$scratch/spec.log" |
    awk '/^%files/ { in_files = 1; next } /^%/ && !/^%(dir|license)/ { in_files = 0 } in_files && !/^%/ && NF' |
    sed 's|/$|/*|')
# without_pattern: files that no pattern names.
without_pattern()
{
    local file pattern
    for file in "${installed[@]}"; do
        for pattern in "${patterns[@]}"; do
            # shellcheck disable=SC2053
            [[ $file != $pattern && $file.gz != $pattern ]] || continue 2
        done
        echo "$file"
    done
}
# without_file: patterns that name nothing, for which rpmbuild would stop.
without_file()
{
    local file pattern
    for pattern in "${patterns[@]}"; do
        for file in "${installed[@]}"; do
            # shellcheck disable=SC2053
            [[ $file != $pattern ]] || continue 2
        done
        echo "$pattern"
    done
}
check "rpmspec reads the file" test ${#patterns[@]} -gt 5
check "it is of this version" is "$(rpmspec -q --qf '%{VERSION}\n' "$spec" 2>/dev/null | sort -u)" "$version"
check "its list names each installed file" is "$(without_pattern)" ''
check "and no other" is "$(without_file)" ''

# makepkg refuses to run as root, and without a pacman, which it has nothing to ask here.
arch=$scratch/arch
mkdir "$arch"
cp "$root/packaging/arch/PKGBUILD" "$arch"
chmod -R a+rX "$scratch"
chmod a+rwx "$arch"
source_info()
{
    if [ "$(id -u)" = 0 ]; then
        (cd "$arch" && setpriv --reuid=65534 --regid=65534 --clear-groups env HOME="$arch" PACMAN=true makepkg --printsrcinfo)
    else
        (cd "$arch" && PACMAN=true makepkg --printsrcinfo)
    fi
}
info=$(source_info 2>"$scratch/makepkg.log") || cat "$scratch/makepkg.log"
check "makepkg reads the PKGBUILD" grep -qx 'pkgbase = brimwatch' <<<"$info"
check "it is of this version" is "$(sed -n 's/^\tpkgver = //p' <<<"$info")" "$version"
# It has no list: its package() is run on our build, and the licence comes to what CMake installs.
packed()
{
    mkdir "$scratch/packed" "$scratch/tree"
    ln -s "$build" "$scratch/tree/build"
    ln -s "$root" "$scratch/tree/brimwatch-$version"
    # shellcheck source=/dev/null
    (cd "$scratch/tree" && . "$arch/PKGBUILD" && pkgdir=$scratch/packed package) >"$scratch/package.log" 2>&1 ||
        tail -n 5 "$scratch/package.log"
    # The build may have another prefix.
    (cd "$scratch/packed" && find . -type f -printf '/%P\n' | sed "s|^${prefix:-/usr}/|/usr/|; s|^/${library_folder%/brimwatch}/|/LIB/|" | sort)
}
prefix=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$build/CMakeCache.txt")
check "its package() installs the same, and the licence" is "$(packed)" \
    "$(printf '%s\n' "${installed[@]}" /usr/share/licenses/brimwatch/LICENSE | sort)"
