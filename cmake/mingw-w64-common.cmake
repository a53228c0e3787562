# What both Windows builds share; the including file sets
# QUORVEX_MINGW_TRIPLE, CMAKE_SYSTEM_PROCESSOR, QUORVEX_WINDOWS_VERSION
# (the oldest Windows the program starts on, as "MAJOR.MINOR", which
# qv_oldest_windows in Quorvex.cmake applies) and QUORVEX_WINE_ARCH (the
# Wine its tests run under) first. Debian's -posix
# compiler variant is used: GoogleTest needs its std::mutex. Programs link
# the runtime statically, so nothing needs to be shipped beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${QUORVEX_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUORVEX_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${QUORVEX_MINGW_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QUORVEX_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# Tests run under Wine, in a prefix of the build's own architecture
# (scripts/wine-run.sh, scripts/wine32-run.sh).
if(QUORVEX_WINE_ARCH STREQUAL "win32")
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine32-run.sh)
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
endif()
