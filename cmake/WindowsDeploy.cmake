# Windows: every program lands in one folder, bin/, with the Qt DLLs and plugins beside it the way a deployment
# lays them out (platforms\, styles\ next to the executables), so that the programs start from the build tree, the
# tests run under Wine, and bin/ can be copied to a workstation as it is.

if(NOT WIN32 OR NOT VSS_GUI)
    return()
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

set(vss_qt_libraries Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Test)
set(vss_qt_plugins
    platforms Qt6::QWindowsIntegrationPlugin
    platforms Qt6::QOffscreenIntegrationPlugin
    styles Qt6::QWindowsVistaStylePlugin)

set(vss_deploy_commands)
foreach(library IN LISTS vss_qt_libraries)
    list(APPEND vss_deploy_commands
         COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${library}> ${CMAKE_BINARY_DIR}/bin)
endforeach()
while(vss_qt_plugins)
    list(POP_FRONT vss_qt_plugins folder plugin)
    if(NOT TARGET ${plugin})
        message(FATAL_ERROR "The Qt for Windows in use has no ${plugin}: the programs could not start.")
    endif()
    list(APPEND vss_deploy_commands
         COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/bin/${folder}
         COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${plugin}> ${CMAKE_BINARY_DIR}/bin/${folder})
endwhile()
add_custom_target(vss_qt_deploy ${vss_deploy_commands} COMMENT "Placing the Qt DLLs and plugins in bin/" VERBATIM)

# Every program depends on the deployment: a test program is run (to list its tests) right after it is linked.
function(vss_deploy_qt_for_programs dir)
    get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
        get_target_property(type ${target} TYPE)
        if(type STREQUAL "EXECUTABLE")
            add_dependencies(${target} vss_qt_deploy)
        endif()
    endforeach()
    get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
    foreach(subdir IN LISTS subdirs)
        vss_deploy_qt_for_programs(${subdir})
    endforeach()
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL vss_deploy_qt_for_programs ${CMAKE_SOURCE_DIR})
