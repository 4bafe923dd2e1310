# Cross-compiling for 64-bit Windows with Debian's mingw-w64 (POSIX threads variant), tests run under Wine.
#   cmake -S . -B build/mingw -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
#         -DCMAKE_PREFIX_PATH="$(tools/qt-mingw)"        (the windows: Qt built for Windows by tools/qt-mingw)
#   cmake ... -DVSS_GUI=OFF -DVSS_TESTS=OFF -DVSS_COM_TESTS=ON   (no Qt: the COM code, the console tool, their tests)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# A Qt for Windows named on CMAKE_PREFIX_PATH is a root of its own; its moc, rcc and uic come from the host's Qt
# of the same version.
list(APPEND CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH})
if(NOT QT_HOST_PATH)
    set(QT_HOST_PATH /usr)
    set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
endif()

# Static runtime: without it every program and DLL needs libstdc++, libgcc and winpthread DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Test programs run under Wine through a wrapper that keeps Wine's helper processes off CTest's pipes.
# The Wine prefix lives in the build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh --prefix ${CMAKE_BINARY_DIR}/wineprefix)
