# Builds and runs the first program, and one that looks across the library's boundary, with a bare compiler and the flags
# that pkg-config gives.
include(${CMAKE_CURRENT_LIST_DIR}/expect.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
execute_process(
  COMMAND ${PKG_CONFIG} --cflags --libs tessel_config_datamodel
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${FLAGS} ${flags}")
foreach(source ${PROGRAM}/main.cpp ${CMAKE_CURRENT_LIST_DIR}/boundary.cpp)
  cmake_path(GET source STEM name)
  execute_process(
    COMMAND ${COMPILER} -std=c++17 ${source} -o ${WORK}/${name} ${flags}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
expect_rolled_back(${WORK}/main)
execute_process(COMMAND ${WORK}/boundary COMMAND_ERROR_IS_FATAL ANY)
