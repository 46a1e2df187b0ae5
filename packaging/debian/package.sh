#!/bin/bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
here=$root/packaging/debian
PROGRAM=package.sh
# shellcheck source=../../tools/lib/common.sh
. "$root/tools/lib/common.sh"

usage()
{
    cat <<'END'
package.sh [--version VERSION] [--build FOLDER] [--out FOLDER]   makes the Debian package of Brimwatch

  --version VERSION   another version than that of packaging/debian/changelog
  --build FOLDER      where it is built (default: build/package)
  --out FOLDER        where the package goes (default: dist)

Prints the package's path. The same commit makes the same bytes in any folder: its date stands for all dates
(SOURCE_DATE_EPOCH names another). Packages that are missing are installed, given root or sudo without a password.
END
}

version='' build=$root/build/package out=$root/dist
while [ $# -gt 0 ]; do
    case $1 in
        --version | --build | --out)
            if [ $# -lt 2 ] || [ -z "$2" ]; then
                usage >&2
                exit 2
            fi
            declare "${1#--}=$2"
            shift
            ;;
        --help)
            usage
            exit 0
            ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
    shift
done
[ -n "${BRIMWATCH_PACKAGES_CHECKED:-}" ] || "$root/tools/lib/packages.sh" package

# What machines and users have set must not show in the package.
umask 022
export LC_ALL=C.UTF-8 TZ=UTC
unset CFLAGS CXXFLAGS CPPFLAGS LDFLAGS
if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
    SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct 2>/dev/null) ||
        SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$here/changelog" -S Timestamp)
fi
export SOURCE_DATE_EPOCH
ours=$(dpkg-parsechangelog -l "$here/changelog" -S Version)
version=${version:-$ours}
dpkg --validate-version "$version" || die "no version: $version"

# Build ------------------------------------------------------------------------------------------
mkdir -p "$build" "$out"
build=$(cd "$build" && pwd)
out=$(cd "$out" && pwd)
# Debian's own flags, without symbols for debuggers: they would be taken out again. Paths of this machine are cut.
flags()
{
    (cd "$root" && DEB_BUILD_MAINT_OPTIONS=hardening=+all DEB_CFLAGS_STRIP=-g DEB_CXXFLAGS_STRIP=-g \
        dpkg-buildflags --get "$1")
}
# Of two that fit, the last one counts.
cut_paths="-ffile-prefix-map=$root=. -ffile-prefix-map=$build=build"
log=$build/package.log
# Resources have one date whatever the commit, so that what was built before does not keep another.
build_targets() { env -u SOURCE_DATE_EPOCH QT_RCC_SOURCE_DATE_OVERRIDE=1 QT_HASH_SEED=0 cmake --build "$build" --target "$@"; }
# What is made of the QML files, before it is built; what is as it should be keeps its date.
compile_qml()
{
    local file files
    mapfile -t files < <(ninja -C "$build" -t targets all | sed -n 's|^\(src/views/\.rcc/qmlcache/.*_qml\.cpp\): .*|\1|p')
    [ ${#files[@]} -gt 0 ] || { echo "no target is made of QML files"; return 1; }
    build_targets "${files[@]}" || return
    for file in "${files[@]}"; do
        awk -f "$here/steady-order.awk" "$build/$file" >"$build/ordered" || return
        cmp -s "$build/ordered" "$build/$file" || cp "$build/ordered" "$build/$file" || return
    done
}
say "Building the package in $build ..."
{
    cmake -S "$root" -B "$build" -G Ninja \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS_RELEASE=-DNDEBUG -DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG \
        -DCMAKE_INSTALL_PREFIX=/usr \
        -DCMAKE_BUILD_WITH_INSTALL_RPATH=ON \
        -DCMAKE_C_FLAGS="$(flags CFLAGS) $(flags CPPFLAGS) $cut_paths" \
        -DCMAKE_CXX_FLAGS="$(flags CXXFLAGS) $(flags CPPFLAGS) $cut_paths" \
        -DCMAKE_EXE_LINKER_FLAGS="$(flags LDFLAGS)" \
        -DCMAKE_SHARED_LINKER_FLAGS="$(flags LDFLAGS)" \
        -DBRIMWATCH_ZSH_COMPLETIONS=share/zsh/vendor-completions \
        -DBRIMWATCH_TESTS=OFF -DBRIMWATCH_SAMPLE_DAEMON=OFF -DBRIMWATCH_PRECOMPILED_HEADERS=ON &&
        compile_qml &&
        build_targets brimwatch brimwatchctl brimwatch_views brimwatch_fetch brimwatch_icons
} >"$log" 2>&1 || {
    tail -n 40 "$log" >&2
    die "building failed; the whole of it is in $log"
}
[ "${ours%-*}" = "$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")" ] ||
    die "packaging/debian/changelog tells of $ours, which is not the program's version"

# Stage ------------------------------------------------------------------------------------------
work=$build/debian-package
rm -rf "$work"
stage=$work/debian/brimwatch
mkdir -p "$stage/DEBIAN"
DESTDIR=$stage cmake --install "$build" >>"$log" 2>&1 || die "installing failed, see $log"
doc=$stage/usr/share/doc/brimwatch
programs=("$stage"/usr/bin/*)
mapfile -t libraries < <(find "$stage/usr/lib" -type f -name '*.so')
strip --strip-unneeded --remove-section=.comment --remove-section=.note "${programs[@]}" "${libraries[@]}"
find "$stage" -type d -exec chmod 755 {} +
find "$stage" -type f -exec chmod 644 {} +
chmod 755 "${programs[@]}"

{
    # A package of another version says no more than that it is one.
    [ "$version" = "$ours" ] || printf 'brimwatch (%s) %s; urgency=medium\n\n  * Rebuilt.\n\n -- %s  %s\n\n' "$version" \
        "$(dpkg-parsechangelog -l "$here/changelog" -S Distribution)" \
        "$(dpkg-parsechangelog -l "$here/changelog" -S Maintainer)" "$(date -R -d "@$SOURCE_DATE_EPOCH")"
    cat "$here/changelog"
} >"$doc/changelog.Debian"
cp "$root/CHANGELOG.md" "$doc/changelog"
cp "$here/copyright" "$doc/copyright"
gzip -9n "$doc/changelog.Debian" "$doc/changelog" "$stage"/usr/share/man/man1/*.1

# Dependencies -----------------------------------------------------------------------------------
# Of the libraries that the binaries name, by the symbols that they use ...
printf 'Source: brimwatch\n\nPackage: brimwatch\nArchitecture: any\n' >"$work/debian/control"
linked=$(cd "$work" && dpkg-shlibdeps -O "-l${libraries[0]%/*}" "${programs[@]}" "${libraries[@]}" 2>"$work/shlibdeps.log") ||
    die "no dependencies: $(cat "$work/shlibdeps.log")"
linked=${linked#shlibs:Depends=}
# ... of that very version of Qt, whose private interfaces leave no symbol to know them by ...
# Debian 13 has other names for the package and for what it provides.
# shellcheck disable=SC2016
abi=$(dpkg-query -W -f '${Provides}\n' 'libqt6core6*' | grep -o 'qt6-base-\(private-\)\{0,1\}abi ([^)]*)') ||
    die "no package says which version of Qt's private interfaces it has"
linked+=", $abi"
# ... and of the QML modules that the views import, and those import in their turn.
qml=$(qtpaths6 --query QT_INSTALL_QML)
modules=$("$(qtpaths6 --query QT_INSTALL_LIBEXECS)/qmlimportscanner" -rootPath "$root/src/views" -importPath "$qml" |
    sed -n 's/^ *"path": "\(.*\)",\{0,1\}$/\1/p' | sed 's|$|/qmldir|' | xargs dpkg-query -S | cut -d : -f 1 | sort -u)
[ -n "$modules" ] || die "the QML modules of the views were not found"

architecture=$(dpkg --print-architecture)
size=$(find "$stage" -type f -not -path "$stage/DEBIAN/*" -printf '%s\n' | awk '{ n += int(($1 + 1023) / 1024) } END { print n }')
sed -e "s/@VERSION@/$version/" -e "s/@ARCHITECTURE@/$architecture/" -e "s/@INSTALLED_SIZE@/$size/" \
    -e "s/@DEPENDS@/$linked, $(printf '%s' "$modules" | sed ':a;N;$!ba;s/\n/, /g')/" \
    "$here/control.in" >"$stage/DEBIAN/control"
(cd "$stage" && find usr -type f | LC_ALL=C sort | xargs md5sum >DEBIAN/md5sums)
chmod 644 "$stage"/DEBIAN/*

# The package ------------------------------------------------------------------------------------
find "$stage" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
package=$out/brimwatch_${version}_$architecture.deb
dpkg-deb --root-owner-group -Zxz --threads-max=1 --build "$stage" "$package" >>"$log" || die "dpkg-deb failed, see $log"
echo "$package"
