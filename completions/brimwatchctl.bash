# bash completion for brimwatchctl

_brimwatchctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=''
    if [ "$previous" = = ] && [ "$COMP_CWORD" -ge 3 ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    elif [ "$current" = = ]; then
        current=''
    fi
    if [ "$COMP_CWORD" = 1 ]; then
        words='status history refresh toggle settings diagnostics --version --help'
    elif [ "${COMP_WORDS[1]}" = status ]; then
        case $previous in
            --format) words='text json waybar i3blocks template' ;;
            --template) ;;
            *) words='--format --template --watch' ;;
        esac
    elif [ "${COMP_WORDS[1]}" = history ]; then
        case $previous in
            --format) words='text json csv svg html' ;;
            *) words='--format --score --open --clear' ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _brimwatchctl brimwatchctl
