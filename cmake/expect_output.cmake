# cmake -DPROGRAM=... -DEXPECTED=file -P expect_output.cmake: the program succeeds and prints exactly what the file holds.
execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}\n--- expected\n${expected}--- printed\n${output}--- errors\n${errors}")
endif()
