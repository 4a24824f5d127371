# Installs a build into an empty prefix.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX} COMMAND_ERROR_IS_FATAL ANY)
