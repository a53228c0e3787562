# Cross-builds the Windows program (x86_64) with mingw-w64; it starts on
# Windows XP x64 (5.2), the first 64-bit Windows. Its tests run under Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QUORVEX_MINGW_TRIPLE x86_64-w64-mingw32)
set(QUORVEX_WINDOWS_VERSION 5.2)
set(QUORVEX_WINE_ARCH win64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
