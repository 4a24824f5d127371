# Compiles every installed header, with plain -I and more warnings than the library itself is built with: none of them
# may give a user a warning that he can't mend.
file(GLOB_RECURSE headers RELATIVE ${HEADERS} ${HEADERS}/*.hpp)
list(LENGTH headers total)
if(total EQUAL 0)
  message(FATAL_ERROR "There are no headers below ${HEADERS}")
endif()
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
list(JOIN headers "" source)

file(REMOVE_RECURSE ${WORK})
file(WRITE ${WORK}/all.cpp "${source}")
execute_process(
  COMMAND ${COMPILER} -std=c++17 -fsyntax-only -I${HEADERS} ${WORK}/all.cpp
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  COMMAND_ERROR_IS_FATAL ANY)
message("${total} headers give no warning")
