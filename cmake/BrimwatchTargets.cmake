# How every target of ours is made, in one place.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Linked to our own targets alone: warnings of other people's headers are not ours to fix.
add_library(brimwatch_build_flags INTERFACE)
target_compile_options(brimwatch_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion)
if(BRIMWATCH_WARNINGS_ARE_ERRORS)
    target_compile_options(brimwatch_build_flags INTERFACE -Werror)
endif()
target_compile_definitions(brimwatch_build_flags INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_STRICT_ITERATORS
    QT_USE_QSTRINGBUILDER
    QT_DISABLE_DEPRECATED_BEFORE=0x060400
    # What later versions deprecate has to be called as long as Qt 6.4 has nothing in its place.
    QT_WARN_DEPRECATED_UP_TO=0x060400)
if(BRIMWATCH_SANITIZE)
    target_compile_options(brimwatch_build_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(brimwatch_build_flags INTERFACE -fsanitize=address,undefined)
endif()
if(BRIMWATCH_FUZZ)
    target_compile_options(brimwatch_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What generated QML code trips over is left out of this one.
add_library(brimwatch_strict_flags INTERFACE)
target_link_libraries(brimwatch_strict_flags INTERFACE brimwatch_build_flags)
target_compile_options(brimwatch_strict_flags INTERFACE -Wshadow)

# Newer Qt converts a count of milliseconds to int in the QTRY_ macros. Linked after the strict flags, and by tests alone.
add_library(brimwatch_test_flags INTERFACE)
target_compile_options(brimwatch_test_flags INTERFACE -Wno-conversion)

# What nearly every file of ours includes, read once for all of them; for whoever builds the tests again and again. A
# file still includes what it uses: without the option it has to, and clangd looks at it without.
if(BRIMWATCH_PRECOMPILED_HEADERS)
    # For compiler caches, which have to see what was read before.
    target_compile_options(brimwatch_build_flags INTERFACE -fpch-preprocess)
    # One kind of code for libraries and programs, as a compiler takes no header that was compiled for the other.
    # Targets of Qt 6.4 ask for it themselves, those of Qt 6.8 do not.
    target_compile_options(brimwatch_build_flags INTERFACE -fPIC)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Gui Network Qml Quick)
    file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/precompiled.cpp" CONTENT "")
    function(_brimwatch_precompile name)
        cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "MODULES;HEADERS")
        add_library(${name} OBJECT "${PROJECT_BINARY_DIR}/precompiled.cpp")
        target_link_libraries(${name} PRIVATE Qt6::Core brimwatch_strict_flags)
        # Not linked, which would define macros that not every target has.
        foreach(module IN LISTS arg_MODULES)
            target_include_directories(${name} SYSTEM PRIVATE
                $<TARGET_PROPERTY:Qt6::${module},INTERFACE_INCLUDE_DIRECTORIES>)
        endforeach()
        target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
    endfunction()
    set(headers
        <algorithm> <array> <chrono> <cmath> <functional> <limits> <memory> <optional> <string> <utility> <vector>
        <QByteArray> <QDateTime> <QDir> <QFile> <QFileInfo> <QJsonArray> <QJsonDocument> <QJsonObject> <QList>
        <QLoggingCategory> <QObject> <QProcess> <QPromise> <QString> <QStringList> <QTemporaryDir> <QTimer> <QUrl>
        <QVariant>)
    _brimwatch_precompile(brimwatch_precompiled
        MODULES DBus Gui
        HEADERS ${headers}
            <QColor> <QGuiApplication> <QImage> <QPainter>
            <QDBusArgument> <QDBusConnection> <QDBusError> <QDBusMessage> <QDBusMetaType> <QDBusPendingCallWatcher>)
    _brimwatch_precompile(brimwatch_precompiled_views
        MODULES Gui Network Qml Quick
        HEADERS ${headers} <QtQml/qqmlprivate.h> <QQmlEngine> <QQuickItem>)
endif()

# brimwatch_for_size(NAME PRECOMPILED): a released library is made short rather than fast, and with it what it is
# precompiled with, as the compiler takes no other.
function(brimwatch_for_size name precompiled)
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Os>)
    if(TARGET ${precompiled})
        target_compile_options(${precompiled} PRIVATE $<$<CONFIG:Release>:-Os>)
    endif()
endfunction()

# Where the private libraries are, from where the programs are, when they are installed. In the build tree it is the same, so
# that they have the same run path. Another one for the build tree would be written over on installing, and CMake makes room
# for that with empty elements, which the loader takes for the current folder.
set(_brimwatch_private "${CMAKE_INSTALL_LIBDIR}/brimwatch")

function(_brimwatch_target name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "PRECOMPILED" "")
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    get_target_property(type ${name} TYPE)
    if(type STREQUAL "SHARED_LIBRARY" AND NOT APPLE)
        set_target_properties(${name} PROPERTIES
            LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/src/${_brimwatch_private}"
            BUILD_WITH_INSTALL_RPATH ON
            INSTALL_RPATH "$ORIGIN")
    endif()
    if(BRIMWATCH_PRECOMPILED_HEADERS)
        if(NOT arg_PRECOMPILED)
            set(arg_PRECOMPILED brimwatch_precompiled)
        endif()
        target_precompile_headers(${name} REUSE_FROM ${arg_PRECOMPILED})
    endif()
endfunction()

# brimwatch_library(NAME [SHARED] SOURCES... [LINKS...] [PRIVATE_LINKS...]): a folder of src/ as a library. LINKS are what
# its headers use, PRIVATE_LINKS what only its sources do.
function(brimwatch_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SHARED" "" "SOURCES;LINKS;PRIVATE_LINKS")
    set(kind STATIC)
    if(arg_SHARED)
        set(kind SHARED)
    endif()
    add_library(${name} ${kind} ${arg_SOURCES})
    _brimwatch_target(${name})
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS} brimwatch_strict_flags)
endfunction()

# brimwatch_loads(TARGET MACRO LIBRARY): TARGET loads LIBRARY when it is needed, under the name that MACRO has in its
# sources. A name without a folder is looked for along the run path of TARGET, wherever it is installed.
function(brimwatch_loads target macro library)
    set(name "$<TARGET_FILE_NAME:${library}>")
    if(APPLE)
        # There it has to be asked for.
        string(PREPEND name "@rpath/")
    elseif(BRIMWATCH_SANITIZE)
        # The sanitizers stand between the program and the loader, which then sees their run path.
        set(name "$<TARGET_FILE:${library}>")
    endif()
    get_target_property(type ${target} TYPE)
    # Libraries stand beside each other.
    if(type STREQUAL "EXECUTABLE" AND NOT APPLE)
        set_target_properties(${target} PROPERTIES
            BUILD_WITH_INSTALL_RPATH ON
            INSTALL_RPATH "$ORIGIN/../${_brimwatch_private}")
    endif()
    target_compile_definitions(${target} PRIVATE "${macro}=\"${name}\"")
    add_dependencies(${target} ${library})
endfunction()

# brimwatch_executable(NAME SOURCES... LINKS...)
function(brimwatch_executable name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
    add_executable(${name} ${arg_SOURCES})
    _brimwatch_target(${name})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} brimwatch_strict_flags)
endfunction()

# brimwatch_test(NAME SOURCES... LINKS... [DBUS] [ARGUMENTS...] [LABELS...] [ENVIRONMENT...]): a Qt Test program known to
# ctest under NAME. It sees no display and its own empty home; with DBUS it runs on a session bus of its own,
# which starts only the services in that home.
function(brimwatch_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "DBUS" "" "SOURCES;LINKS;ARGUMENTS;LABELS;ENVIRONMENT")
    add_executable(${name} ${arg_SOURCES})
    _brimwatch_target(${name})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt6::Test brimwatch_strict_flags)
    # Not in Qt 6.4, but in Qt 6.8.
    if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
        target_link_libraries(${name} PRIVATE brimwatch_test_flags)
    endif()
    set(home "${CMAKE_CURRENT_BINARY_DIR}/${name}.home")
    set(command "$<TARGET_FILE:${name}>" ${arg_ARGUMENTS})
    if(arg_DBUS)
        set(bus "${CMAKE_CURRENT_BINARY_DIR}/${name}.bus.conf")
        configure_file("${PROJECT_SOURCE_DIR}/tests/support/session-bus.conf.in" "${bus}" @ONLY)
        set(command dbus-run-session --config-file=${bus} -- ${command})
    endif()
    add_test(NAME ${name}
        COMMAND "${PROJECT_SOURCE_DIR}/tests/support/in-empty-home.sh" "${home}" ${command})
    set_tests_properties(${name} PROPERTIES
        LABELS "unit;${arg_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FATAL_WARNINGS=1;LC_ALL=C.UTF-8;TZ=UTC;ASAN_OPTIONS=detect_leaks=0;${arg_ENVIRONMENT}")
endfunction()
