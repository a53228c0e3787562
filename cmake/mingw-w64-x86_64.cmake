# Cross-builds the Windows program (x86_64) with mingw-w64; its tests run
# under Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QUORVEX_MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
