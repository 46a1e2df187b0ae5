#!/bin/bash
# words_test.sh BRIMWATCHCTL   the manual page and the completions know what the program knows.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
ctl=$1
page=$root/docs/man/brimwatchctl.1
failed=0

check()
{
    local sentence=$1
    shift
    if "$@"; then
        echo "ok      $sentence"
    else
        failed=$((failed + 1))
        echo "FAILED  $sentence"
    fi
}

is() { [ "$1" = "$2" ] || { printf 'got: %s\nnot: %s\n' "$1" "$2" >&2; return 1; }; }

commands='diagnostics history refresh settings status toggle'
formats='i3blocks json template text waybar'
history_formats='csv html json svg text'

# in_bash WORD...: what the shell offers for the last word.
in_bash()
{
    bash -c '
        . "$1"
        shift
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        _brimwatchctl
        printf "%s\n" "${COMPREPLY[@]}"' - "$root/completions/brimwatchctl.bash" "$@" | sort | xargs
}

in_fish()
{
    fish --no-config -c "source $root/completions/brimwatchctl.fish; complete -C '$*'" | cut -f1 | sort | xargs
}

# zsh completes only for a line editor, so a terminal of its own is asked to.
in_zsh()
{
    zsh -f -c '
        zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell "fpath=($1 \$fpath); autoload -Uz compinit; compinit -D -u; PS1=; LISTMAX=0; bindkey \"^I\" complete-word; zstyle \":completion:*\" list-colors"
        zpty -w shell "comppostfuncs=(print_matches); print_matches() { compstate[list]=; compstate[insert]= }"
        zpty -w shell "compadd() { builtin compadd -O found -D found_descriptions \"\$@\" 2>/dev/null; builtin compadd -A found \"\$@\"; print -r -- \"FOUND \$found\" >>$2; builtin compadd \"\$@\" }"
        zpty -w -n shell "$3"$'"'\\t'"'
        for i in {1..200}; do
            zpty -r -t shell text
            [[ -s $2 ]] && break
            sleep 0.05
        done
        zpty -d shell' - "$root/completions" "$1" "$2"
}

check "bash offers the commands" is "$(in_bash brimwatchctl '')" "--help --version $commands"
check "bash completes a command" is "$(in_bash brimwatchctl to)" toggle
check "bash offers the options of status alone" is "$(in_bash brimwatchctl status --)" "--format --template --watch"
check "and none to the others" is "$(in_bash brimwatchctl toggle --)" ''
check "bash offers the formats" is "$(in_bash brimwatchctl status --format '')" "$formats"
check "also behind an equals sign" is "$(in_bash brimwatchctl status --format = wa)" waybar
check "bash offers the options of history" is "$(in_bash brimwatchctl history --)" "--clear --format --open --score"
check "bash offers the formats of history" is "$(in_bash brimwatchctl history --format '')" "$history_formats"
check "fish offers the formats of history" is "$(in_fish 'brimwatchctl history --format ')" "$history_formats"
check "fish offers the options of history" is "$(in_fish 'brimwatchctl history --')" "--clear --format --open --score"
check "fish offers the commands" is "$(in_fish 'brimwatchctl ')" "$commands"
check "fish offers the formats" is "$(in_fish 'brimwatchctl status --format ')" "$formats"
check "fish offers the options of status" is "$(in_fish 'brimwatchctl status --')" "--format --template --watch"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
in_zsh "$scratch/commands" 'brimwatchctl ' >/dev/null 2>&1
for command in $commands; do
    check "zsh offers $command" grep -qsw -- "$command" "$scratch/commands"
done
in_zsh "$scratch/formats" 'brimwatchctl status --format=' >/dev/null 2>&1
for format in $formats; do
    check "zsh offers the format $format" grep -qsw -- "$format" "$scratch/formats"
done

in_zsh "$scratch/history_formats" 'brimwatchctl history --format=' >/dev/null 2>&1
for format in $history_formats; do
    check "zsh offers the format $format of history" grep -qsw -- "$format" "$scratch/history_formats"
done

check "the manual page has no fault" mandoc -T lint -W warning "$page"
help=$("$ctl" --help)
for word in $commands $formats $history_formats --format --template --watch --score --open --clear --version --help; do
    check "the help has $word" grep -qw -- "$word" <<<"$help"
    check "the manual page has $word" grep -qw -- "$word" <(sed 's/\\-/-/g' "$page")
done
# Each field of the page fills in.
while read -r field; do
    "$ctl" status --template "$field" >"$scratch/out" 2>"$scratch/err"
    check "the field $field exists" [ $? != 3 ]
done < <(sed -n '/^\.SH TEMPLATES/,/^\.SH EXIT/p' "$page" | grep -o '{[a-z][a-z0-9.]*}' | sort -u)

[ "$failed" = 0 ]
