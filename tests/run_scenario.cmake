# Runs one scenario through quorvex-sim and checks the transcript.
#   NAME.scn     the scenario
#   NAME.expect  what the transcript must hold (see tools/expect_main.cpp)
#   NAME.exit    optional: the expected exit status and a text stderr must
#                contain ("2 FILE:LINE: ..."), for scenarios that must be refused
# EMULATOR, when set, runs the programs (Wine for the Windows build).
get_filename_component(name ${SCENARIO} NAME_WE)
get_filename_component(dir ${SCENARIO} DIRECTORY)
file(MAKE_DIRECTORY ${WORK})
set(out ${WORK}/${name}.jsonl)
file(REMOVE ${out})
execute_process(COMMAND ${EMULATOR} ${SIM} ${SCENARIO} --out ${out}
  RESULT_VARIABLE rc ERROR_VARIABLE err WORKING_DIRECTORY ${dir})
if(EXISTS ${dir}/${name}.exit)
  file(READ ${dir}/${name}.exit want)
  string(STRIP "${want}" want)
  string(REGEX MATCH "^[0-9]+" want_rc "${want}")
  string(REGEX REPLACE "^[0-9]+ *" "" want_err "${want}")
  if(NOT rc EQUAL want_rc)
    message(FATAL_ERROR "${name}: exit status ${rc}, wanted ${want_rc}\n${err}")
  endif()
  string(FIND "${err}" "${want_err}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${name}: stderr lacks '${want_err}':\n${err}")
  endif()
  return()
endif()
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${name}: quorvex-sim exited with ${rc}\n${err}")
endif()
execute_process(COMMAND ${EMULATOR} ${EXPECT} ${out} ${dir}/${name}.expect
  RESULT_VARIABLE rc2 OUTPUT_VARIABLE o ERROR_VARIABLE e)
if(NOT rc2 EQUAL 0)
  message(FATAL_ERROR "${name}: ${e}${o}")
endif()
message(STATUS "${name}: ${o}")
