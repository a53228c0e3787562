# qv_library(NAME FOLDER DEPS...): a static library of every .cpp in
# src/FOLDER that is not a test.
function(qv_library name folder)
  file(GLOB srcs CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(FILTER srcs EXCLUDE REGEX "_test\\.cpp$")
  if(srcs)
    add_library(${name} STATIC ${srcs})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE ${ARGN})
  endif()
endfunction()

# qv_folder_tests(FOLDER EXTRA_DEPS...): one GoogleTest program per folder,
# built from src/FOLDER/*_test.cpp.
function(qv_folder_tests folder)
  if(NOT QUORVEX_BUILD_TESTS)
    return()
  endif()
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*_test.cpp)
  if(NOT tests)
    return()
  endif()
  set(exe qv_${folder}_test)
  add_executable(${exe} ${tests})
  target_link_libraries(${exe} PRIVATE qv_${folder} ${ARGN} GTest::gtest_main GTest::gmock)
  qv_discover_tests(${exe})
endfunction()

# qv_discover_tests(EXE): registers a GoogleTest program's tests. Under
# Wine they share one wineserver, kept up for the whole run by the "wine"
# fixture (see qv_wine_fixture).
function(qv_discover_tests exe)
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    gtest_discover_tests(${exe} DISCOVERY_TIMEOUT 60
      PROPERTIES FIXTURES_REQUIRED wine)
  else()
    gtest_discover_tests(${exe} DISCOVERY_TIMEOUT 60)
  endif()
endfunction()

# Under Wine: start the test prefix's wineserver before the first test and
# stop it after the last, so that no server outlives the run. The "wine_b"
# fixture does the same for the second prefix (QUORVEX_WINELANE=b), where
# a second stand-in client runs beside the first.
function(qv_wine_fixture)
  if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    return()
  endif()
  # The prefix of the build's architecture (the toolchain's).
  foreach(lane "" b)
    set(server env QUORVEX_WINEARCH=${QUORVEX_WINE_ARCH}
      QUORVEX_WINELANE=${lane} ${CMAKE_SOURCE_DIR}/scripts/wine-server.sh)
    if(lane STREQUAL "")
      set(fixture wine)
    else()
      set(fixture wine_${lane})
    endif()
    add_test(NAME ${fixture}.start COMMAND ${server} start)
    add_test(NAME ${fixture}.stop COMMAND ${server} stop)
    set_tests_properties(${fixture}.start PROPERTIES FIXTURES_SETUP ${fixture})
    set_tests_properties(${fixture}.stop PROPERTIES FIXTURES_CLEANUP ${fixture})
  endforeach()
endfunction()

# qv_windows_resources(TARGET): the program's icon, version and application
# manifest (src/desktop/resources), the version and the architecture filled
# in, compiled into TARGET.
function(qv_windows_resources target)
  set(QV_RESOURCES ${CMAKE_SOURCE_DIR}/src/desktop/resources)
  set(QV_MANIFEST ${CMAKE_BINARY_DIR}/resources/quorvex.manifest)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(QV_MANIFEST_ARCH amd64)
  else()
    set(QV_MANIFEST_ARCH x86)
  endif()
  configure_file(${QV_RESOURCES}/quorvex.manifest.in ${QV_MANIFEST} @ONLY)
  configure_file(${QV_RESOURCES}/quorvex.rc.in
    ${CMAKE_BINARY_DIR}/resources/quorvex.rc @ONLY)
  # windres reads the icon and the manifest itself: rebuild when they change.
  set_source_files_properties(${CMAKE_BINARY_DIR}/resources/quorvex.rc
    PROPERTIES OBJECT_DEPENDS "${QV_RESOURCES}/quorvex.ico;${QV_MANIFEST}")
endfunction()

# qv_oldest_windows(PROGRAM TARGET...): PROGRAM and the libraries of it
# that include the platform's headers start on the oldest Windows of the
# build (QUORVEX_WINDOWS_VERSION, set by the toolchain: 5.1 Windows XP, 5.2
# its 64-bit edition). The headers then declare nothing that Windows lacks,
# so that a newer call fails to compile, and the program file's header
# names it, which is what Windows reads before it starts a program. Test
# programs, never shipped, may use what Wine has. The import-table test
# (tests/release) checks what the headers cannot: the runtime's imports.
function(qv_oldest_windows program)
  string(REPLACE "." ";" parts "${QUORVEX_WINDOWS_VERSION}")
  list(GET parts 0 major)
  list(GET parts 1 minor)
  math(EXPR winnt "${major} * 256 + ${minor}" OUTPUT_FORMAT HEXADECIMAL)
  foreach(target ${program} ${ARGN})
    target_compile_definitions(${target} PRIVATE
      _WIN32_WINNT=${winnt} WINVER=${winnt})
  endforeach()
  target_link_options(${program} PRIVATE
    -Wl,--major-subsystem-version,${major},--minor-subsystem-version,${minor}
    -Wl,--major-os-version,${major},--minor-os-version,${minor})
endfunction()
