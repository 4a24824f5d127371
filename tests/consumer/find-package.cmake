# Builds and runs the program as a project that finds the library by find_package.
include(${CMAKE_CURRENT_LIST_DIR}/expect.cmake)

file(REMOVE_RECURSE ${WORK})
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${PROGRAM} -B ${WORK} -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS}
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK} COMMAND_ERROR_IS_FATAL ANY)
expect_rolled_back(${WORK}/tessel-quickstart)
