# What a build can be asked for, and the compiler flags that follow from it for every target of the tree.

option(TESSEL_BRIDGE "Build the script bridge and the host class system" ON)
option(TESSEL_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(TESSEL_BUILD_BENCH "Build the benchmarks" OFF)
option(TESSEL_BUILD_FUZZERS "Build the fuzzers, which need clang++ and the apps" OFF)
option(TESSEL_BUILD_TOOLS "Build the programs under tools/" ${PROJECT_IS_TOP_LEVEL})
option(TESSEL_BUILD_APPS "Build the programs under apps/" ${PROJECT_IS_TOP_LEVEL})
option(TESSEL_BUILD_EXAMPLES "Build the programs under examples/" ${PROJECT_IS_TOP_LEVEL})
option(TESSEL_FAILURE_POINTS "Compile in the named failure points that the rollback tests arm" OFF)
option(TESSEL_WARNINGS_AS_ERRORS "Stop at a compiler warning" OFF)
option(TESSEL_PRECOMPILED_HEADERS "Precompile the headers that nearly every source includes" ON)
option(TESSEL_COMBINED_SOURCES "Compile generated sources several at a time" ON)
option(TESSEL_COVERAGE "Instrument for coverage" OFF)
set(TESSEL_SANITIZE "" CACHE STRING "Sanitizers to build with, comma separated: address,undefined or thread")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR})

# Instrumentation. Whatever links the library has to be built with it too, so the flags have a name of their own: the
# test that builds an outside project passes them on.
set(TESSEL_INSTRUMENTATION_FLAGS "")
if(TESSEL_SANITIZE)
  list(APPEND TESSEL_INSTRUMENTATION_FLAGS
    -fsanitize=${TESSEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
endif()
if(TESSEL_COVERAGE)
  list(APPEND TESSEL_INSTRUMENTATION_FLAGS --coverage)
endif()
add_compile_options(${TESSEL_INSTRUMENTATION_FLAGS})
add_link_options(${TESSEL_INSTRUMENTATION_FLAGS})
if(TESSEL_COVERAGE)
  add_compile_options(-fprofile-update=atomic)
endif()

# Calls between exported functions of the library stay inside it: nobody replaces one of them by preloading.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-semantic-interposition)
endif()
if(TESSEL_SANITIZE MATCHES "thread")
  # Deleting an element fences; the thread sanitizer knows the atomics beside the fence, not the fence itself.
  add_compile_options(-Wno-tsan)
endif()
add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(TESSEL_FAILURE_POINTS)
  add_compile_definitions(TESSEL_FAILURE_POINTS=1)
endif()

# For every target of the tree, whoever adds it, and for nobody who uses the library.
add_compile_options(
  -Wall -Wextra -Wpedantic $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
  -Wold-style-cast -Wcast-qual -Wundef -Wextra-semi -Wformat=2
  $<$<BOOL:${TESSEL_WARNINGS_AS_ERRORS}>:-Werror>
)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Optimising, these versions see sizes in the containers of Boost that cannot occur.
  add_compile_options(-Wno-stringop-overflow -Wno-stringop-overread)
endif()

# Programs are linked again when what they are made of has changed, not when the shared library has: the library they run
# with is found when they start, and a name that it has lost is told then.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

# The linker of LLVM, where there is one, needs a fifth of the time for the library with its debug information.
find_program(TESSEL_LLD ld.lld)
mark_as_advanced(TESSEL_LLD)
if(TESSEL_LLD)
  add_link_options(-fuse-ld=lld)
endif()

# A compiler cache, where there is one. The sloppiness is what it needs to know precompiled headers again. Paths below
# the checkout count as relative, so that presets with the same flags share what they compile.
find_program(TESSEL_CCACHE ccache)
mark_as_advanced(TESSEL_CCACHE)
if(TESSEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    ${CMAKE_CURRENT_LIST_DIR}/compiler-cache ${TESSEL_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# tessel_precompile_headers(TARGET [HEADER...]): the standard and Boost headers that the model's sources share, and
# HEADERs of the project that they all open with. A header is named as a source would include it.
function(tessel_precompile_headers target)
  get_target_property(type ${target} TYPE)
  if(NOT TESSEL_PRECOMPILED_HEADERS OR type STREQUAL "INTERFACE_LIBRARY")
    return()
  endif()
  target_precompile_headers(${target} PRIVATE
    <algorithm> <atomic> <cstdint> <functional> <map> <memory> <string> <utility> <vector>
    <boost/dynamic_bitset.hpp> <boost/optional.hpp> <boost/uuid/uuid.hpp>
    ${ARGN}
  )
endfunction()

# tessel_combine_generated_sources(TARGET): compiles the sources that tessel_generate_model() gave several at a time;
# sources written by hand stay alone. What a generated source keeps to itself therefore carries its class in its name.
function(tessel_combine_generated_sources target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${TESSEL_COMBINED_SOURCES} UNITY_BUILD_MODE GROUP)
endfunction()
