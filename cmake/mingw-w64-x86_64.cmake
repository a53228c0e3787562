# Cross-builds the Windows program with mingw-w64 (Debian's
# g++-mingw-w64-x86-64-posix: its std::mutex lets GoogleTest build). Programs
# link the runtime statically, so
# nothing needs to be shipped beside them; tests run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QUORVEX_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${QUORVEX_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUORVEX_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${QUORVEX_MINGW_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QUORVEX_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
