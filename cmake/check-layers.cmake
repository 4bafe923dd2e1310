# Checks the floors of the source tree and prints them. Each folder includes only its own headers and those of
# the floors below it:
#   0  driver                                   the contract alone
#   1  simulator, com, storage, controls        the contract's two implementations, setting files, value controls
#   2  kit                                      the shared shapes of the windows
#   3  the window folders                       one source unit per window; they do not include each other
#   4  app                                      the program
# Folders on one floor do not include each other, with one exception: the COM path's server (com/server/) wraps
# the simulated instrument to serve it through COM. With no include running sideways or upward, no circle can
# form between folders. tools/, tests/, bench/ and fuzz/ stand beside the floors and may use any of them.
# Run as: cmake -DROOT=<source dir> -P check-layers.cmake
cmake_minimum_required(VERSION 3.25)
set(floors
    "driver"
    "simulator com storage controls"
    "kit"
    "operation customer factory piezo service frontpanel"
    "app")

set(folders "")
set(level 0)
foreach(floor IN LISTS floors)
    string(REPLACE " " ";" members "${floor}")
    foreach(folder IN LISTS members)
        set(floor_${folder} ${level})
        list(APPEND folders ${folder})
    endforeach()
    math(EXPR level "${level} + 1")
endforeach()

# Whether source (relative to ROOT) may include a header of folder target although target is not below it.
function(allowed_sideways source target result)
    set(${result} FALSE PARENT_SCOPE)
    if(target STREQUAL "simulator" AND source MATCHES "^com/server/")
        set(${result} TRUE PARENT_SCOPE)
    endif()
endfunction()

# Every folder that holds sources must have a floor, so that a new folder cannot escape the check.
file(GLOB children LIST_DIRECTORIES true RELATIVE "${ROOT}" "${ROOT}/*")
set(beside tools tests bench fuzz docs cmake build)
foreach(child IN LISTS children)
    if(NOT IS_DIRECTORY "${ROOT}/${child}" OR child MATCHES "^\\." OR child IN_LIST beside OR child MATCHES "^build")
        continue()
    endif()
    file(GLOB_RECURSE any "${ROOT}/${child}/*.h" "${ROOT}/${child}/*.cpp")
    if(any AND NOT DEFINED floor_${child})
        message(FATAL_ERROR "The folder ${child}/ has sources but no floor: add it to the floors in check-layers.cmake")
    endif()
endforeach()

set(violations "")
set(edges "")
foreach(folder IN LISTS folders)
    file(GLOB_RECURSE sources "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
    foreach(source IN LISTS sources)
        file(RELATIVE_PATH rel "${ROOT}" "${source}")
        file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include[ \t]+\"[a-z]+/")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]+\"([a-z]+)/.*" "\\1" target "${line}")
            if(target STREQUAL folder OR NOT DEFINED floor_${target})
                continue()
            endif()
            list(APPEND edges "${folder} -> ${target}")
            allowed_sideways("${rel}" "${target}" sideways)
            if(NOT floor_${target} LESS floor_${folder} AND NOT sideways)
                string(APPEND violations "  ${rel}: ${line}\n")
            endif()
        endforeach()
    endforeach()
endforeach()

if(violations)
    message(FATAL_ERROR "These includes run upward or sideways between floors:\n${violations}")
endif()

list(REMOVE_DUPLICATES edges)
list(SORT edges)
set(level 0)
foreach(floor IN LISTS floors)
    message(STATUS "floor ${level}: ${floor}")
    math(EXPR level "${level} + 1")
endforeach()
list(LENGTH edges edge_count)
message(STATUS "the contract stands alone on floor 0; ${edge_count} folder dependencies, every one downward "
               "(com/server -> simulator the one allowed sideways): no include runs upward, no circle")
