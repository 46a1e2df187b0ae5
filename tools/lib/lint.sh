#!/bin/bash
# Linters over everything that we wrote; ctest runs each as a test of its name.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root"

usage()
{
    cat <<'END'
lint.sh shell|format   shellcheck over the scripts, or clang-format over the sources
lint.sh qmllint BUILD  qmllint over the views of that build tree
END
}

# our_files: without git, which an unpacked archive has no use for: hidden folders and those that .gitignore names are not ours.
our_files()
{
    local ignored=() folder
    while IFS= read -r folder; do
        folder=${folder%/}
        ignored+=(-o -path ".$folder")
    done <.gitignore
    find . -type d \( -name '.?*' ! -name .ci "${ignored[@]}" \) -prune -o -type f -printf '%P\n' | sort
}

# Shell scripts are known by name or by their first line.
shell_scripts()
{
    local file line
    our_files | while IFS= read -r file; do
        case $file in
            *.sh) echo "$file" ;;
            *.*) ;;
            *)
                { IFS= read -r line <"$file"; } 2>/dev/null || continue
                [[ $line != '#!'*sh ]] || echo "$file"
                ;;
        esac
    done 2>/dev/null
}

# lint_all COMMAND...: over the files whose names come in; none at all is a failure.
lint_all()
{
    local files
    mapfile -t files
    [ ${#files[@]} -gt 0 ] || return
    echo "${#files[@]} files"
    "$@" "${files[@]}"
}

lint_qml()
{
    local log=$1/qmllint.log
    if ! cmake --build "$1" --target all_qmllint >"$log" 2>&1; then
        cat "$log"
        return 1
    fi
    # In Qt 6.4 a warning does not fail the target.
    ! grep -E '^(Warning|Error|Info):' "$log"
}

case $*  in
    shell) shell_scripts | lint_all shellcheck -x -P SCRIPTDIR ;;
    format) our_files | grep -E '^(src|tests|tools|benchmarks)/.*\.(cpp|h|mm)$' | lint_all clang-format-19 --dry-run --Werror ;;
    "qmllint ${2:-}") lint_qml "$2" ;;
    *)
        usage >&2
        exit 2
        ;;
esac
