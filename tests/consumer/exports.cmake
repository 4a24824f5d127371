# Every name that the library exports is one of ours, or the name of a type (an exception of somebody else's class is
# caught by that name).
set(namespaces tessel vellum plinth corvid kestrel groundwork bridge)

set(own "")
foreach(namespace IN LISTS namespaces)
  string(LENGTH ${namespace} length)
  list(APPEND own ${length}${namespace})
endforeach()
list(JOIN own "|" own)
set(entry "ML(Initialize|Terminate)_tessel_")
set(allowed "^(_ZT[ISV]|_Z(T[hv][n0-9_]+)*(GV|Z)*N[KVRO]*(${own}|[0-9]+MetaPackageTessel_)|${entry})")

execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${LIBRARY}
  OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*" "" names "${names}")
string(REGEX MATCHALL "[^\n]+" names "${names}")
list(LENGTH names total)
if(total EQUAL 0)
  message(FATAL_ERROR "${LIBRARY} exports nothing")
endif()
list(FILTER names EXCLUDE REGEX "${allowed}")
if(names)
  list(JOIN names "\n" names)
  message(FATAL_ERROR "${LIBRARY} exports what is not its own:\n${names}")
endif()
message("all ${total} exported names are the library's own")
