# Fails when a source file is not formatted as .clang-format says.
file(GLOB_RECURSE files
  ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp
  ${SOURCE_DIR}/tools/*.h ${SOURCE_DIR}/tools/*.cpp
  ${SOURCE_DIR}/bench/*.h ${SOURCE_DIR}/bench/*.cpp)
execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${files}
  WORKING_DIRECTORY ${SOURCE_DIR}
  RESULT_VARIABLE rc ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "not formatted (run clang-format -i):\n${err}")
endif()
