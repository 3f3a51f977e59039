# run_example.cmake - run PROGRAM; it must exit with 0 and print on standard
# output exactly the text of EXPECTED.  With ZORVS_WRITE_GOLDEN=1 in the
# environment the output is written to EXPECTED instead, to be read by eye
# before a commit.
execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE rc OUTPUT_VARIABLE got ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} exited with ${rc}\n${err}")
endif()
if("$ENV{ZORVS_WRITE_GOLDEN}" STREQUAL "1")
  file(WRITE ${EXPECTED} "${got}")
  return()
endif()
file(READ ${EXPECTED} want)
if(NOT got STREQUAL want)
  message(FATAL_ERROR "output of ${PROGRAM} differs from ${EXPECTED}\n--- printed:\n${got}--- expected:\n${want}")
endif()
