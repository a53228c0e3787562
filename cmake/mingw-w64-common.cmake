# What both Windows builds share; the including file sets
# QUORVEX_MINGW_TRIPLE and CMAKE_SYSTEM_PROCESSOR first. Debian's -posix
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
