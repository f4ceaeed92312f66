# Cross-compiling for 64-bit Windows with MinGW-w64 from Debian. The posix
# thread model: the win32 one lacks std::thread and std::mutex pieces that
# header-only Boost.Regex needs.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TEVOGL_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TEVOGL_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TEVOGL_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TEVOGL_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TEVOGL_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The GCC and pthread runtimes linked in: the programs then run under Wine
# (or on a Windows machine) with nothing beside them but our own DLLs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Tests and other build-time runs of the programs go through Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run)
