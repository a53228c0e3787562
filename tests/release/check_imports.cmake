# Reads a Windows program's header and import table (the mingw objdump's
# "-p") and fails when the program could not start on the oldest Windows
# it is built for:
# - the subsystem and OS versions in the header must be that version
#   (Windows refuses a program that asks for a newer one);
# - every imported function must be in the list, with a first Windows
#   version no newer than that one (Windows refuses a program that
#   imports a function it lacks).
#   cmake -DOBJDUMP=... -DPROGRAM=quorvex.exe -DLIST=windows_imports.txt
#         -DWINDOWS=5.1 -P check_imports.cmake
foreach(v OBJDUMP PROGRAM LIST WINDOWS)
  if(NOT DEFINED ${v})
    message(FATAL_ERROR "check_imports.cmake: ${v} is not set")
  endif()
endforeach()

execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM}
  OUTPUT_VARIABLE dump RESULT_VARIABLE rc ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${OBJDUMP} -p ${PROGRAM}: ${err}")
endif()
string(REPLACE "\n" ";" lines "${dump}")

# The list: "DLL FUNCTION VERSION" a line, # comments; names of DLLs
# compared ignoring case, as Windows does.
file(STRINGS ${LIST} entries REGEX "^[^#]")
set(known "")
foreach(e IN LISTS entries)
  string(REGEX MATCH "^([^ \t]+)[ \t]+([^ \t]+)[ \t]+([0-9]+\\.[0-9]+)[ \t]*$" m "${e}")
  if(NOT m)
    message(FATAL_ERROR "${LIST}: not \"DLL FUNCTION VERSION\": ${e}")
  endif()
  string(TOLOWER "${CMAKE_MATCH_1}" dll)
  set("since_${dll}_${CMAKE_MATCH_2}" ${CMAKE_MATCH_3})
endforeach()

set(faults "")
set(count 0)
set(dll "")
set(header "")
foreach(line IN LISTS lines)
  if(line MATCHES "^(Major|Minor)(Subsystem|OSystem)Version[ \t]+([0-9]+)")
    set("${CMAKE_MATCH_1}${CMAKE_MATCH_2}" ${CMAKE_MATCH_3})
  elseif(line MATCHES "DLL Name: (.+)$")
    string(TOLOWER "${CMAKE_MATCH_1}" dll)
  elseif(line STREQUAL "" OR line MATCHES "^The ")
    # A table ends at a blank line or at the next section.
    if(line MATCHES "^The ")
      set(dll "")
    endif()
  elseif(dll AND line MATCHES "^\t[0-9a-f]+\t +[0-9]+ +([A-Za-z_0-9@?$]+)$")
    set(fn ${CMAKE_MATCH_1})
    math(EXPR count "${count} + 1")
    if(NOT DEFINED "since_${dll}_${fn}")
      list(APPEND faults "${dll} ${fn}: not in the list (add it with the first Windows version that has it)")
    elseif(since_${dll}_${fn} VERSION_GREATER WINDOWS)
      list(APPEND faults "${dll} ${fn}: needs Windows ${since_${dll}_${fn}}")
    endif()
  elseif(dll AND line MATCHES "^\t[0-9a-f]+\t +<none> +([0-9]+)")
    list(APPEND faults "${dll} ordinal ${CMAKE_MATCH_1}: imported by number, not by name")
  endif()
endforeach()

set(want "${WINDOWS}")
foreach(kind Subsystem OSystem)
  set(have "${Major${kind}}.${Minor${kind}}")
  if(NOT have STREQUAL want)
    string(REPLACE "OSystem" "operating system" what "${kind}")
    string(TOLOWER "${what}" what)
    list(APPEND faults "the header's ${what} version is ${have}, not ${want}")
  endif()
endforeach()
if(count EQUAL 0)
  list(APPEND faults "no imports read: has objdump's output changed?")
endif()

get_filename_component(name ${PROGRAM} NAME)
if(faults)
  list(JOIN faults "\n  " text)
  message(FATAL_ERROR "${name} would not start on Windows ${WINDOWS}:\n  ${text}")
endif()
message(STATUS "${name}: ${count} imports, all in Windows ${WINDOWS}; header ${want}")
