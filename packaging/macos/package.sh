#!/bin/bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root"

usage()
{
    cat <<'END'
package.sh [--dmg]   on a Mac: builds Brimwatch.app with everything that it needs inside, and signs it
package.sh --check   does what a script can do of the check list in docs/macos.md with the bundle that was made

  --dmg                  also dist/Brimwatch-VERSION.dmg
  --check                writes dist/check-report.txt; ends with failure where a line of it does
  BRIMWATCH_SIGN_AS=ID   the identity to sign with; without it the signature holds on this Mac alone

Written from the documentation of macdeployqt, codesign, hdiutil and open. It has NEVER BEEN RUN: nobody who
worked on it had a Mac. docs/macos.md says what else only a Mac can tell.
END
}

dmg='' check=''
for argument; do
    case $argument in
        --dmg) dmg=1 ;;
        --check) check=1 ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
done
if [ "$(uname -s)" != Darwin ]; then
    echo "package.sh: this runs on a Mac alone" >&2
    exit 1
fi

if [ -n "$check" ]; then
    exec packaging/macos/check.sh dist/Brimwatch.app dist/check-report.txt
fi

cmake --preset macos
cmake --build --preset macos
rm -rf dist
cmake --install build/macos --prefix dist

app=dist/Brimwatch.app
# It looks for the QML modules that our views import.
macdeployqt "$app" -qmldir="$root/src/views" -libpath="$app/Contents/Frameworks"

# What the libraries of the build load of Homebrew's is where that has the rest of it.
folders=()
while IFS= read -r folder; do folders+=("$folder"); done < <(
    find build/macos/src \( -name '*.dylib' -o -name Brimwatch -type f \) -exec otool -L {} + |
        sed -n 's|^[[:space:]]*\(/.*\)/[^/]* (compatibility version.*|\1|p' | grep -vE '^/(usr/lib|System)(/|$)' | sort -u
)
packaging/macos/bundle_libraries.sh complete "$app" ${folders[@]+"${folders[@]}"} "$(brew --prefix icu4c 2>/dev/null)/lib"
packaging/macos/bundle_libraries.sh check "$app"

# Inner code first; the bundle's own signature seals the rest.
sign() { codesign --force --timestamp=none --sign - "$@"; }
hardened=()
if [ -n "${BRIMWATCH_SIGN_AS:-}" ]; then
    sign() { codesign --force --timestamp --options runtime --sign "$BRIMWATCH_SIGN_AS" "$@"; }
    hardened=(--entitlements packaging/macos/Brimwatch.entitlements)
fi
while IFS= read -r -d '' library; do
    sign "$library"
done < <(find "$app/Contents" -name '*.dylib' -print0)
while IFS= read -r -d '' framework; do
    sign "$framework"
done < <(find "$app/Contents/Frameworks" -maxdepth 1 -name '*.framework' -print0)
sign ${hardened[@]+"${hardened[@]}"} "$app"
codesign --verify --deep --strict --verbose=2 "$app"

if [ -n "$dmg" ]; then
    version=$(/usr/libexec/PlistBuddy -c 'Print :CFBundleShortVersionString' "$app/Contents/Info.plist")
    staging=$(mktemp -d)
    trap 'rm -rf "$staging"' EXIT
    cp -R "$app" "$staging/"
    ln -s /Applications "$staging/Applications"
    hdiutil create -volname Brimwatch -srcfolder "$staging" -format UDZO -ov "dist/Brimwatch-$version.dmg"
fi
echo "$app"
