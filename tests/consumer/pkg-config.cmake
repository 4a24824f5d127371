# Builds and runs the program with a bare compiler and the flags that pkg-config gives.
include(${CMAKE_CURRENT_LIST_DIR}/expect.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
execute_process(
  COMMAND ${PKG_CONFIG} --cflags --libs tessel_config_datamodel
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${FLAGS} ${flags}")
execute_process(
  COMMAND ${COMPILER} -std=c++17 ${PROGRAM}/main.cpp -o ${WORK}/program ${flags}
  COMMAND_ERROR_IS_FATAL ANY)
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
expect_rolled_back(${WORK}/program)
