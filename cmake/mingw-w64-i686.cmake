# The 32-bit build of the Windows program (the client it drives is a
# 32-bit program). Built, not run here: Wine runs 64-bit programs only.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(QUORVEX_MINGW_TRIPLE i686-w64-mingw32)
set(CMAKE_C_COMPILER ${QUORVEX_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUORVEX_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${QUORVEX_MINGW_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QUORVEX_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
