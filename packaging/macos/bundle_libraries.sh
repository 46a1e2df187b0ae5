#!/bin/bash
set -euo pipefail

usage()
{
    cat >&2 <<'END'
bundle_libraries.sh complete APP FOLDER...   copies what a program of the bundle loads, and the bundle lacks, from these folders
bundle_libraries.sh check APP                fails, with their names, where something is loaded that is neither the system's nor in it

macdeployqt follows absolute paths and @rpath. A library that another one finds beside itself (@loader_path), as Homebrew's
libicuuc does libicudata, it leaves out: the bundle starts where Homebrew is and nowhere else.

  OTOOL=PROGRAM   instead of otool: llvm-otool tells the same on Linux
END
    exit 2
}
[ $# -ge 2 ] || usage
command=$1 app=${2%/}
shift 2
otool=${OTOOL:-otool}
[ -d "$app/Contents/MacOS" ] || { echo "bundle_libraries.sh: $app is no bundle of a program" >&2; exit 1; }
# Paths with links in them would not compare.
app=$(cd "$app" && pwd -P)

is_mach_o()
{
    case $(od -An -tx1 -N4 "$1" | tr -d ' \n') in
        cffaedfe | cefaedfe | cafebabe | cafebabf) return 0 ;;
        *) return 1 ;;
    esac
}

mach_os()
{
    local file
    while IFS= read -r -d '' file; do
        if is_mach_o "$file"; then printf '%s\n' "$file"; fi
    done < <(find "$app/Contents" -type f -size +3c -print0)
}

# What the file loads, as it is written there; of both architectures, where there are two.
loaded_by()
{
    local own
    own=$("$otool" -D "$1" | tail -n 1)
    "$otool" -L "$1" | sed -n 's/^[[:space:]][[:space:]]*\(.*\) (compatibility version.*/\1/p' | sort -u | grep -vxF -- "$own" || true
}

rpaths_of() { "$otool" -l "$1" | sed -n '/ cmd LC_RPATH/,/ path /s/^ *path \(.*\) (offset.*/\1/p' | sort -u; }

executables=()
while IFS= read -r executable; do executables+=("$executable"); done < <(find "$app/Contents/MacOS" -type f)
[ ${#executables[@]} -gt 0 ] || { echo "bundle_libraries.sh: $app holds no program" >&2; exit 1; }

# expanded PATH FILE: the path as the loader reads it in that file. The program's folder is that of all of them.
expanded()
{
    case $1 in
        @executable_path/*) printf '%s\n' "$app/Contents/MacOS/${1#@executable_path/}" ;;
        @loader_path/*) printf '%s\n' "$(dirname "$2")/${1#@loader_path/}" ;;
        @executable_path | @loader_path) printf '%s\n' "$(dirname "$2")" ;;
        *) printf '%s\n' "$1" ;;
    esac
}

# Whether a path stands in the bundle: not through a link that leads out of it.
is_inside()
{
    [ -f "$1" ] || return 1
    local folder
    folder=$(cd "$(dirname "$1")" && pwd -P)
    case $folder/ in
        "$app"/*) return 0 ;;
        *) return 1 ;;
    esac
}

# is_found PATH FILE: whether the bundle or the system has what the file loads under that path.
is_found()
{
    local path=$1 file=$2 from folder
    case $path in
        /usr/lib/* | /System/*) return 0 ;;
        @rpath/*)
            for from in "$file" "${executables[@]}"; do
                while IFS= read -r folder; do
                    if is_inside "$(expanded "$folder" "$from")/${path#@rpath/}"; then return 0; fi
                done < <(rpaths_of "$from")
            done
            return 1
            ;;
        @*) is_inside "$(expanded "$path" "$file")" ;;
        # Deliberate: an absolute path is wrong even if it leads into this bundle, which will be moved.
        *) return 1 ;;
    esac
}

# Lines of FILE TAB PATH: what nobody would find on another Mac.
missing()
{
    local file path
    while IFS= read -r file; do
        while IFS= read -r path; do
            is_found "$path" "$file" || printf '%s\t%s\n' "$file" "$path"
        done < <(loaded_by "$file")
    done < <(mach_os)
}

case $command in
    complete)
        [ $# -gt 0 ] || usage
        copied=1
        while [ "$copied" = 1 ]; do
            copied=0
            while IFS=$'\t' read -r file path; do
                case $path in @loader_path/*) ;; *) continue ;; esac
                target=$(expanded "$path" "$file")
                [ ! -e "$target" ] || continue
                for folder; do
                    if [ -f "$folder/$(basename "$path")" ]; then
                        mkdir -p "$(dirname "$target")"
                        # -L: Homebrew's names are links to versions.
                        cp -L "$folder/$(basename "$path")" "$target"
                        chmod u+w "$target"
                        echo "copied $folder/$(basename "$path")"
                        copied=1
                        break
                    fi
                done
            done < <(missing)
        done
        ;;
    check)
        count=$(mach_os | wc -l | tr -d ' ')
        [ "$count" -gt 0 ] || { echo "bundle_libraries.sh: no Mach-O file in $app" >&2; exit 1; }
        lacking=$(missing)
        if [ -n "$lacking" ]; then
            while IFS=$'\t' read -r file path; do
                echo "bundle_libraries.sh: ${file#"$app"/} loads $path, which is not in the bundle" >&2
            done <<<"$lacking"
            exit 1
        fi
        echo "all that $count files load is the system's or in the bundle"
        ;;
    *) usage ;;
esac
