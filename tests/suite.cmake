# The tests that need more than what was built: linters, real desktops, the macOS layer, the Debian package. Each has its
# name as a label too, so that ./test can ask for names and kinds in one expression.

# Deliberate: of what is below, a play on a desktop mostly waits and a linter computes for many minutes, so one of each runs
# at a time: the linters at the lowest priority, the short ones first, and the plays one after another, as they share a
# screen's worth of processor time.
function(_brimwatch_suite_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;COST;LOCK" "COMMAND;LABELS")
    # It ends a little before ctest would end it, so that a script can still clean up and print its logs.
    math(EXPR limit "${arg_TIMEOUT} - 30")
    add_test(NAME ${name} COMMAND timeout --foreground --kill-after=20 ${limit} ${arg_COMMAND})
    set_tests_properties(${name} PROPERTIES
        LABELS "${name};${arg_LABELS}"
        TIMEOUT ${arg_TIMEOUT}
        COST ${arg_COST}
        ENVIRONMENT "BRIMWATCH_BUILD=${PROJECT_BINARY_DIR}")
    if(arg_LOCK)
        set_tests_properties(${name} PROPERTIES RESOURCE_LOCK ${arg_LOCK})
    endif()
endfunction()

set(tools "${PROJECT_SOURCE_DIR}/tools")
_brimwatch_suite_test(shell COMMAND nice -n 19 "${tools}/lib/lint.sh" shell LABELS lint TIMEOUT 1800 COST 4000 LOCK lint)
_brimwatch_suite_test(format COMMAND nice -n 19 "${tools}/lib/lint.sh" format LABELS lint TIMEOUT 1800 COST 4000 LOCK lint)
_brimwatch_suite_test(qmllint COMMAND nice -n 19 "${tools}/lib/lint.sh" qmllint "${PROJECT_BINARY_DIR}"
    LABELS lint TIMEOUT 1800 COST 4000 LOCK lint)
_brimwatch_suite_test(tidy COMMAND nice -n 19 "${tools}/lib/tidy.py" "${PROJECT_BINARY_DIR}"
    LABELS lint TIMEOUT 3600 COST 3000 LOCK lint)
_brimwatch_suite_test(macos COMMAND nice -n 19 "${tools}/macos-check/check.sh" LABELS lint TIMEOUT 3600 COST 1000 LOCK lint)
_brimwatch_suite_test(package COMMAND "${CMAKE_CURRENT_LIST_DIR}/package/package_test.sh"
    TIMEOUT 7200 COST 2000 LOCK desktop)
_brimwatch_suite_test(forecast COMMAND "${CMAKE_CURRENT_LIST_DIR}/forecast/score_test.sh" "${PROJECT_BINARY_DIR}"
    TIMEOUT 1800 COST 3000)
_brimwatch_suite_test(benchmarks COMMAND "${CMAKE_CURRENT_LIST_DIR}/benchmarks/instructions_test.sh"
    TIMEOUT 3600 COST 1000 LOCK release)
_brimwatch_suite_test(other-packages COMMAND "${CMAKE_CURRENT_LIST_DIR}/package/other_packages_test.sh"
    TIMEOUT 600 COST 1000 LOCK install)
# They compile for long, without a desktop of this machine, and so one at a time beside the rest.
foreach(release IN ITEMS debian-13 debian-13-short newer-qt)
    _brimwatch_suite_test(${release} COMMAND "${CMAKE_CURRENT_LIST_DIR}/releases/release_test.sh" ${release}
        TIMEOUT 10800 COST 5000 LOCK release)
endforeach()

# What desktops show.
add_custom_target(brimwatch_shown DEPENDS brimwatch brimwatch_views brimwatchctl brimwatch_fetch brimwatch-sample-daemon)

# brimwatch_plays(KIND PREFIX NAMES...): a test PREFIX-NAME for each: the script of its own in tests/KIND, or that of both of
# its kinds, or that of all. A desktop that says `weight=heavy` in tools/desktops is labelled KIND-heavy.
function(brimwatch_plays kind prefix)
    set(folder "${PROJECT_SOURCE_DIR}/tests/${kind}")
    foreach(name IN LISTS ARGN)
        set(script "")
        string(REGEX REPLACE "-wayland$" "" both "${name}")
        string(REGEX REPLACE "s$" "" all "${kind}")
        foreach(candidate IN ITEMS ${all} ${both} ${name})
            if(EXISTS "${folder}/${candidate}_test.sh")
                set(script "${folder}/${candidate}_test.sh")
            endif()
        endforeach()
        if(NOT script)
            message(FATAL_ERROR "no script in ${folder} plays ${name}")
        endif()
        set(label ${kind})
        set(desktop "${PROJECT_SOURCE_DIR}/tools/desktops/${kind}/${name}.sh")
        if(EXISTS "${desktop}")
            set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${desktop}")
            file(STRINGS "${desktop}" heavy REGEX "weight=heavy")
            if(heavy)
                set(label ${kind}-heavy)
            endif()
        endif()
        # A play that hangs must leave the others their turn; --soak takes longer and says how long.
        _brimwatch_suite_test(${prefix}-${name}
            COMMAND sh -c "exec timeout --foreground --kill-after=20 \"\${BRIMWATCH_PLAY_SECONDS:-870}\" \"$@\"" sh
                "${script}" ${name}
            LABELS ${label} TIMEOUT 3600 COST 2000 LOCK desktop)
    endforeach()
endfunction()

brimwatch_plays(panels panel
    xfce4 trayer mate lxqt i3bar polybar changing screens-x11 sway swaybar screens-sway weston
    plasma plasma-wayland gnome gnome-plain gnome-wayland gnome-plain-wayland)
brimwatch_plays(notifications notifications dunst xfce4-notifyd mako)
brimwatch_plays(bars bar waybar i3blocks polybar tmux)
