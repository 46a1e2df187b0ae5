# shellcheck shell=bash
# Checks that are counted, and processes that end with the test; sourced after common.sh. The script that sources it
# prints a line a check and `N passed, N failed` last, and fails when a check did or there was none.
#
#   label          set before: the prefix of each check's sentence
#   clean_up       redefined: what else is to be undone at the end
#   check_failed   redefined: what is to be kept of a failure, whose number is $failed
#   logs_are       redefined: says where the logs are, after a failure

passed=0 failed=0 program_pid=''
label=${label:-}
clean_up() { :; }
check_failed() { :; }
logs_are() { :; }

finish()
{
    local status=$?
    trap - EXIT INT TERM
    end_process "$program_pid"
    end_processes
    clean_up
    if [ "$status" != 0 ] && [ "$failed" = 0 ]; then
        failed=1
    fi
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ] || logs_are
    # Without a number it would end with the status from before the trap.
    if [ "$failed" = 0 ] && [ "$passed" -gt 0 ]; then exit 0; else exit 1; fi
}
trap finish EXIT
trap 'exit 130' INT TERM

# check SENTENCE COMMAND...: one result.
check()
{
    local sentence=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
        printf 'ok      %s%s\n' "${label:+$label: }" "$sentence"
    else
        failed=$((failed + 1))
        printf 'FAILED  %s%s\n' "${label:+$label: }" "$sentence"
        check_failed
        return 1
    fi
}

# needed SENTENCE COMMAND...: the same, and nothing that follows makes sense without it.
needed() { check "$@" || exit 1; }

# is VALUE WANTED: says both when they differ.
is() { [ "$1" = "$2" ] || { printf 'got: %s\nnot: %s\n' "$1" "$2" >&2; return 1; }; }
