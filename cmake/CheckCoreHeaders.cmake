# Fails the build when a source includes what its folder must not:
# - a Qt or Win32 header in the core: only the Win32 binding (src/win32)
#   and the desktop views (src/desktop) may include the platform's headers;
#   Qt is used nowhere;
# - GoogleTest, the test support (src/testing) or the simulated client
#   (src/sim) in production code: only tests (*_test.cpp) and src/testing
#   may, src/sim may include its own headers, and the scenario library
#   (src/scenario), which stages and runs the simulated client, may
#   include them too.
file(GLOB_RECURSE files ${SRC_DIR}/*.h ${SRC_DIR}/*.cpp)
set(bad "")
foreach(f ${files})
  if(f MATCHES "/src/(win32|desktop)/")
    continue()
  endif()
  file(STRINGS ${f} hits REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"](Q[A-Za-z]+|Qt[A-Za-z]*/[^>\"]*|windows\\.h|winuser\\.h|winbase\\.h|windef\\.h)[>\"]")
  if(hits)
    list(APPEND bad "${f}: ${hits}")
  endif()
  if(f MATCHES "_test\\.cpp$" OR f MATCHES "/src/testing/")
    continue()
  endif()
  file(STRINGS ${f} hits REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"](gtest/|gmock/|testing/)")
  if(hits)
    list(APPEND bad "${f}: ${hits}")
  endif()
  if(NOT f MATCHES "/src/(sim|scenario)/")
    file(STRINGS ${f} hits REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]sim/")
    if(hits)
      list(APPEND bad "${f}: ${hits}")
    endif()
  endif()
endforeach()
if(bad)
  message(FATAL_ERROR "A header its folder must not include:\n${bad}")
endif()
