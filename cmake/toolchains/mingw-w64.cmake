# Cross build for Windows with Debian's MinGW-w64. SENTRUNE_MINGW_ARCH picks
# the target: i686 (what the 32-bit VB6 IDE loads) or x86_64 (what the tests
# run under wine64). The posix thread model gives std::thread and std::mutex;
# -static links libstdc++, libgcc and winpthread into each binary, so that no
# MinGW DLL has to ship next to it.
if(NOT SENTRUNE_MINGW_ARCH)
  set(SENTRUNE_MINGW_ARCH x86_64)
endif()
set(triple ${SENTRUNE_MINGW_ARCH}-w64-mingw32)

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${SENTRUNE_MINGW_ARCH})
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

# Look for libraries and headers only in the MinGW sysroot: the Linux system
# headers must never enter a Windows build.
set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Windows 7 is the oldest system the binaries must run on.
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0601 -DWINVER=0x0601 -DUNICODE -D_UNICODE")
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0601 -DWINVER=0x0601")

# Test programs run under wine64, in the build tree's own Wine prefix; the
# i686 tree is built and checked, not run (32-bit Wine is not installable).
if(SENTRUNE_MINGW_ARCH STREQUAL "x86_64")
  get_filename_component(sentrune_root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${sentrune_root}/scripts/wine-run;${CMAKE_BINARY_DIR}/wine-prefix)
endif()
