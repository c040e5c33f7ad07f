# cmake -DPROGRAM=... -DEXPECTED=file [-DEMULATOR=...] -P expect_output.cmake: the program succeeds and prints exactly what the file
# holds, in lines as its system ends them.
execute_process(COMMAND ${EMULATOR} ${PROGRAM} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
string(REPLACE "\r\n" "\n" output "${output}")
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}\n--- expected\n${expected}--- printed\n${output}--- errors\n${errors}")
endif()
