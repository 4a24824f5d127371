# Builds the C program that opens the installed library, and runs it.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
execute_process(
  COMMAND ${C_COMPILER} -std=c11 -Wall -Wextra -Werror ${flags} ${CMAKE_CURRENT_LIST_DIR}/open.c -o ${WORK}/open -ldl
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/open ${LIBRARY} ${ENTRIES} COMMAND_ERROR_IS_FATAL ANY)
