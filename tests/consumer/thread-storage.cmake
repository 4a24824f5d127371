# The thread storage of the library. A loader gives a library that is opened at run time no more than what it keeps in
# reserve, which is a few hundred bytes for all such libraries of the process.
set(limit 256)

execute_process(COMMAND ${READELF} --wide --program-headers ${LIBRARY}
  OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
if(NOT headers MATCHES " TLS +0x[0-9a-f]+ 0x[0-9a-f]+ 0x[0-9a-f]+ 0x[0-9a-f]+ (0x[0-9a-f]+)")
  message(FATAL_ERROR "${READELF} names no thread storage of ${LIBRARY}:\n${headers}")
endif()
math(EXPR size ${CMAKE_MATCH_1})
message("${LIBRARY} has ${size} bytes of thread storage; the limit is ${limit}")
if(size GREATER limit)
  message(FATAL_ERROR "That is too much: what is large belongs behind a pointer")
endif()
