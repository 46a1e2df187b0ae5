# The program as an application bundle of macOS. Included where the program's target is made.

set(BRIMWATCH_BUNDLE_BUILD "${BRIMWATCH_BUILD_NUMBER}")
if(BRIMWATCH_BUNDLE_BUILD STREQUAL "")
    # The system asks every bundle for a build number.
    set(BRIMWATCH_BUNDLE_BUILD "${PROJECT_VERSION}")
endif()

set(icon "${CMAKE_CURRENT_BINARY_DIR}/Brimwatch.icns")
add_custom_command(
    OUTPUT "${icon}"
    COMMAND "$<TARGET_FILE:brimwatch-app-icon>" "${PROJECT_SOURCE_DIR}/packaging/icons/brimwatch.svg" "${icon}"
    DEPENDS brimwatch-app-icon "${PROJECT_SOURCE_DIR}/packaging/icons/brimwatch.svg"
    VERBATIM)
set_source_files_properties("${icon}" PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
target_sources(brimwatch PRIVATE "${icon}")

set_target_properties(brimwatch PROPERTIES
    MACOSX_BUNDLE ON
    OUTPUT_NAME Brimwatch
    MACOSX_BUNDLE_INFO_PLIST "${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in"
    # In the build tree our libraries stand where they were built; in the bundle beside the frameworks.
    BUILD_RPATH "$<TARGET_FILE_DIR:brimwatch_views>;$<TARGET_FILE_DIR:brimwatch_service>"
    INSTALL_RPATH "@executable_path/../Frameworks")
set_target_properties(brimwatch_service brimwatch_tls brimwatch_views PROPERTIES
    INSTALL_RPATH "@loader_path")
set_target_properties(brimwatch_service PROPERTIES BUILD_RPATH "@loader_path")

# Signed for this machine alone: the system shows notifications of, and starts at login, only what is signed.
find_program(BRIMWATCH_CODESIGN codesign)
if(BRIMWATCH_CODESIGN)
    add_custom_command(TARGET brimwatch POST_BUILD
        COMMAND "${BRIMWATCH_CODESIGN}" --force --sign - "$<TARGET_BUNDLE_DIR:brimwatch>"
        VERBATIM)
endif()

install(TARGETS brimwatch BUNDLE DESTINATION .)
install(TARGETS brimwatch_service brimwatch_tls brimwatch_views LIBRARY DESTINATION Brimwatch.app/Contents/Frameworks)
