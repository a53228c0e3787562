# The 32-bit build of the Windows program (the client it drives is a
# 32-bit program of the Windows XP era, and so are many of the machines
# that still run it). Starts on Windows XP; its tests run under a 32-bit
# Wine (wine32, a prefix of its own).
set(CMAKE_SYSTEM_PROCESSOR x86)
set(QUORVEX_MINGW_TRIPLE i686-w64-mingw32)
set(QUORVEX_WINDOWS_VERSION 5.1)
set(QUORVEX_WINE_ARCH win32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
