# The 32-bit build of the Windows program (the client it drives is a
# 32-bit program). Built, not run here: Wine runs 64-bit programs only.
set(CMAKE_SYSTEM_PROCESSOR x86)
set(QUORVEX_MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
