# capture_help.cmake - the --help output of PROGRAM (standard output, or
# standard error if it writes its help there) into OUT, for the program's
# page of the manual.
execute_process(COMMAND ${PROGRAM} --help OUTPUT_VARIABLE text ERROR_VARIABLE err RESULT_VARIABLE rc)
if(text STREQUAL "")
  set(text "${err}")
endif()
if(text STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} --help printed nothing (exit status ${rc})")
endif()
file(WRITE ${OUT} "${text}")
