# shellcheck shell=bash
# The program's sources for the Mac against the headers of a newer Qt than this machine's; sourced by check.sh.
#
# The headers are those of a newer release of Debian, taken out of its packages: nothing is installed. BRIMWATCH_QT_RELEASE
# names another release than Debian 13: with `sid` it is the newest Qt that Debian has.

# shellcheck source=tools/lib/common.sh
. "${root:?}/tools/lib/common.sh"
# shellcheck source=tools/lib/mirror.sh
. "$root/tools/lib/mirror.sh"

qt_release=${BRIMWATCH_QT_RELEASE:-trixie}
qt_folder=$root/build/macos-check/qt-$qt_release

# An apt of its own, which asks the mirror of this machine's for one release and keeps what it has got.
apt_of_release()
{
    apt-get -qq -o Dir::Etc::SourceList="$qt_folder/sources.list" -o Dir::Etc::SourceParts=- -o Dir::State="$qt_folder/state" \
        -o Dir::State::Status=/dev/null -o Dir::Cache="$qt_folder/cache" -o APT::Sandbox::User= \
        -o APT::Update::Error-Mode=any -o Acquire::http::Timeout=30 "$@"
}

# release_is_reached: false without a mirror of Debian that answers.
release_is_reached()
{
    local from
    [ ! -e "$qt_folder/complete" ] || return 0
    rm -rf "$qt_folder"
    mkdir -p "$qt_folder/state/lists/partial" "$qt_folder/cache/archives/partial" "$qt_folder/packages"
    from=$(mirror) || return
    echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $from $qt_release main" >"$qt_folder/sources.list"
    apt_of_release update
}

headers_of_newer_qt()
{
    local package
    [ ! -e "$qt_folder/complete" ] || return 0
    (cd "$qt_folder/packages" && apt_of_release download qt6-{base,declarative}{,-private}-dev qt6-svg-dev) || return
    for package in "$qt_folder"/packages/*.deb; do dpkg-deb -x "$package" "$qt_folder/root" || return; done
    rm -rf "$qt_folder/state" "$qt_folder/cache"
    touch "$qt_folder/complete"
}

compile_with_newer_qt()
{
    python3 "${here:?}/other_qt.py" "${tree:?}" "$root/src" "$qt_folder/root/usr/include/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/qt6"
}

newer_qt_version() { sed -n 's/^.*QTCORE_VERSION_STR *"\(.*\)".*/\1/p' "$qt_folder"/root/usr/include/*/qt6/QtCore/qtcoreversion.h; }

check_newer_qt()
{
    # Deliberate: somebody without a network can check the rest.
    if ! release_is_reached; then
        echo "left out: the sources with another Qt, as no mirror with Debian's $qt_release answers"
        return
    fi
    [ -e "${tree:?}/build.ninja" ] || check "CMake configures the program for a Mac" configure_for_mac
    check "Debian's $qt_release has headers of another Qt" headers_of_newer_qt
    check "all of the sources compile with Qt $(newer_qt_version) too" compile_with_newer_qt
}
