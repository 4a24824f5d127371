# Generated code. The generator is needed before the build files can be written, because only it knows which files a
# table gives. So it is built while configuring, by a small project of its own (same compiler, no instrumentation), and
# names its outputs; during the build one command per model writes them whenever a table, a template or the generator
# has changed. A file whose text stays the same keeps its time stamp, and what includes it is not built again.

set(TESSEL_GENERATED_DIR ${PROJECT_BINARY_DIR}/generated)
set(TESSEL_GENERATED_INCLUDE_DIR ${TESSEL_GENERATED_DIR}/include)

# Builds the generator. A change of its sources configures anew, since the list of outputs may change with it.
function(tessel_build_modelgen)
  set(build_dir ${PROJECT_BINARY_DIR}/modelgen-host)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/modelgen/*.cpp
    ${PROJECT_SOURCE_DIR}/modelgen/*.hpp
    ${PROJECT_SOURCE_DIR}/modelgen/CMakeLists.txt)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources})

  message(STATUS "Building the model generator")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${PROJECT_SOURCE_DIR}/cmake/modelgen-host -B ${build_dir} -G ${CMAKE_GENERATOR}
      -DCMAKE_BUILD_TYPE=RelWithDebInfo
      -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
      "-DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}"
      -DMODELGEN_DIR=${PROJECT_SOURCE_DIR}/modelgen
    OUTPUT_VARIABLE log ERROR_VARIABLE log RESULT_VARIABLE failed)
  if(NOT failed)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${build_dir} --target modelgen
      OUTPUT_VARIABLE log ERROR_VARIABLE log RESULT_VARIABLE failed)
  endif()
  if(failed)
    message(FATAL_ERROR "The model generator does not build:\n${log}")
  endif()
  set(TESSEL_MODELGEN ${build_dir}/bin/modelgen CACHE INTERNAL "The generator of model code")
endfunction()

# tessel_generate_model(NAME MODEL FILE [IMPORTS FILE...] [TEMPLATES FOLDER OUTPUT FOLDER] [TOTALS N...]): generates the code
# of the model whose chief table is FILE; IMPORTS are those of the models it takes types from, each behind the ones it needs
# itself. TEMPLATES other than those of the model itself write to a folder of their own. Gives NAME_SOURCES and NAME_HEADERS,
# adds the headers to the global property TESSEL_GENERATED_HEADERS and their root to TESSEL_GENERATED_ROOTS, and adds a target
# NAME_code that generates and a test that what it wrote is up to date. TOTALS are the numbers in the last line of the
# generator's summary (classes, datatypes, enumerations, literals, properties, operations, handles); a test holds the tables
# to them. To be called in the folder whose target compiles the sources.
function(tessel_generate_model name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "MODEL;TEMPLATES;OUTPUT" "IMPORTS;TOTALS")
  if(NOT arg_TEMPLATES)
    set(arg_TEMPLATES ${PROJECT_SOURCE_DIR}/modelgen/templates)
    set(arg_OUTPUT ${TESSEL_GENERATED_DIR})
  endif()

  set(tables "")
  set(command ${TESSEL_MODELGEN} --model ${arg_MODEL})
  foreach(import IN LISTS arg_IMPORTS)
    list(APPEND command --import ${import})
  endforeach()
  list(APPEND command --templates ${arg_TEMPLATES} --out ${arg_OUTPUT})
  foreach(model IN LISTS arg_MODEL arg_IMPORTS)
    cmake_path(GET model PARENT_PATH folder)
    file(GLOB packages CONFIGURE_DEPENDS ${folder}/*/package.yaml)
    list(APPEND tables ${model} ${packages})
  endforeach()
  file(GLOB templates LIST_DIRECTORIES FALSE CONFIGURE_DEPENDS ${arg_TEMPLATES}/* ${arg_TEMPLATES}/kinds/*)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${tables})

  execute_process(COMMAND ${command} --list-outputs
    OUTPUT_VARIABLE outputs ERROR_VARIABLE log RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(failed)
    message(FATAL_ERROR "The tables of ${name} are refused:\n${log}")
  endif()
  string(REPLACE "\n" ";" outputs "${outputs}")
  list(TRANSFORM outputs PREPEND "${arg_OUTPUT}/" REGEX "^[^/]")

  # The stamp tells ninja that the command ran; the files are by-products, so that an untouched one counts as unchanged.
  set(stamp ${arg_OUTPUT}/${name}.stamp)
  add_custom_command(
    OUTPUT ${stamp}
    BYPRODUCTS ${outputs}
    COMMAND ${command}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${TESSEL_MODELGEN} ${tables} ${templates}
    COMMENT "Generating ${name}"
    VERBATIM
  )
  add_custom_target(${name}_code DEPENDS ${stamp})

  if(TESSEL_BUILD_TESTS)
    add_test(NAME ${name}.generated_code_is_up_to_date COMMAND ${command} --check)
    if(arg_TOTALS)
      list(JOIN arg_TOTALS " +" totals)
      add_test(NAME ${name}.tables_have_the_totals COMMAND ${command} --summary)
      set_tests_properties(${name}.tables_have_the_totals PROPERTIES PASS_REGULAR_EXPRESSION "\nall +${totals}\n")
    endif()
  endif()

  set(headers ${outputs})
  list(FILTER headers INCLUDE REGEX "\\.hpp$")
  set(sources ${outputs})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  # Most of the time that a generated source takes to compile goes into the headers, which they all share.
  set(count 0)
  foreach(source IN LISTS sources)
    math(EXPR group "${count} / 10")
    math(EXPR count "${count} + 1")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${name}_${group})
  endforeach()
  set(${name}_HEADERS ${headers} PARENT_SCOPE)
  set(${name}_SOURCES ${sources} PARENT_SCOPE)
  set_property(GLOBAL APPEND PROPERTY TESSEL_GENERATED_HEADERS ${headers})
  set_property(GLOBAL APPEND PROPERTY TESSEL_GENERATED_ROOTS ${arg_OUTPUT}/include)
endfunction()

tessel_build_modelgen()
