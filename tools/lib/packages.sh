#!/bin/bash
set -euo pipefail

usage()
{
    cat <<'END'
packages.sh PURPOSE...          installs what is missing of packages.list for these purposes
packages.sh --list PURPOSE...   only prints the packages, one a line

Needs bash, dpkg and apt alone. Without root and without sudo it says which packages to install,
changes nothing and ends with status 3. It never removes a package.
END
}

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
list=$root/packages.list

# packages_of PURPOSE: its packages and those of the purposes it takes in.
packages_of()
{
    local purpose=$1 depth=${2:-0} line in='' found=''
    [ "$depth" -lt 8 ] || { echo "packages.list: purposes take each other in: $purpose" >&2; exit 2; }
    while IFS= read -r line || [ -n "$line" ]; do
        line=${line%%#*}
        line=${line//[[:space:]]/}
        case $line in
            '') ;;
            "[$purpose]") in=1 found=1 ;;
            '['*) in='' ;;
            @*) [ -z "$in" ] || packages_of "${line#@}" $((depth + 1)) ;;
            *) [ -z "$in" ] || echo "$line" ;;
        esac
    done <"$list"
    [ -n "$found" ] || { echo "packages.list: no purpose named $purpose" >&2; exit 2; }
}

only_list=
if [ "${1:-}" = --list ]; then
    only_list=1
    shift
fi
[ $# -gt 0 ] || { usage >&2; exit 2; }

# of_this_release: of each line `a|b` the first that apt knows, or the last; other lines as they are.
of_this_release()
{
    local line name
    while IFS= read -r line; do
        while [[ $line == *'|'* ]]; do
            name=${line%%|*}
            line=${line#*|}
            ! apt-cache pkgnames "$name" 2>/dev/null | grep -Fx -e "$name" >/dev/null || line=$name
        done
        [ -z "$line" ] || printf '%s\n' "$line"
    done
}

lines=$(for purpose; do packages_of "$purpose" || exit; done) || exit

# find_missing: sets the packages that are `wanted`, and those of them that are `missing`.
find_missing()
{
    mapfile -t wanted < <(of_this_release <<<"$lines" | sort -u)
    # A package without a line in dpkg's answer is as absent as one that is not "installed".
    mapfile -t missing < <(comm -23 <(printf '%s\n' "${wanted[@]}") \
        <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p' | sort -u))
}

find_missing
if [ -n "$only_list" ]; then
    printf '%s\n' "${wanted[@]}"
    exit
fi
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" != 0 ]; then
    if ! sudo -n true 2>/dev/null; then
        printf 'Some packages are missing, and installing them needs root. Please run:\n\n' >&2
        printf '    apt-get install --no-install-recommends --no-remove %s\n\n' "${missing[*]}" >&2
        exit 3
    fi
    as_root=(sudo -n)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
# An index that cannot be renewed may still do; if it does not, installing says so.
"${apt[@]}" update >"$log" 2>&1 || { tail -n 5 "$log" >&2; }
# Before there was an index, apt knew no package of the release.
find_missing
printf 'Installing %d packages and what they need: %s\n' ${#missing[@]} "${missing[*]}" >&2
# How much there is to fetch, and how large it is then, in apt's own words; it refuses to install here.
LC_ALL=C "${apt[@]}" install --assume-no --no-install-recommends --no-remove "${missing[@]}" 2>/dev/null |
    grep -E '^(Need to get|After this operation)' >&2 || true
if ! "${apt[@]}" install -y --no-install-recommends --no-remove "${missing[@]}" >"$log" 2>&1; then
    tail -n 30 "$log" >&2
    echo "Installing packages failed." >&2
    exit 1
fi
