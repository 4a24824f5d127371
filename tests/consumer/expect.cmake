# expect_rolled_back(PROGRAM): runs the first program; the value set inside its transaction must be gone after it.
function(expect_rolled_back program)
  execute_process(COMMAND ${program} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  message("${output}")
  if(NOT output MATCHES "inside the transaction: +3\nafter it ended: +1\\.5\n")
    message(FATAL_ERROR "The first program printed something else than it should")
  endif()
endfunction()
