# Tests: programs on GoogleTest, each case a test of its own for ctest.

if(NOT TESSEL_BUILD_TESTS)
  return()
endif()
enable_testing()
include(GoogleTest)
find_package(GTest REQUIRED)

# tessel_add_test(NAME SOURCE... [LAYERS LAYER...] [LINK LIBRARY...] [LABELS LABEL...]): a test program. It links the
# shared library and so sees what a user sees; with LAYERS it is made of the objects of these layers and the ones below
# instead, and sees their internals (their src/ folders too). LINK adds libraries; LABELS are those of ctest, and each
# has a target LABEL-tests that builds its programs.
function(tessel_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test "" "" "LAYERS;LINK;LABELS")
  add_executable(${name} ${test_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${test_LINK} GTest::gmock GTest::gtest GTest::gtest_main)

  if(test_LAYERS)
    tessel_layer_closure(layers ${test_LAYERS})
    target_link_libraries(${name} PRIVATE ${layers})
    foreach(layer IN LISTS test_LAYERS)
      target_include_directories(${name} PRIVATE $<TARGET_PROPERTY:${layer},SOURCE_DIR>/src)
    endforeach()
  else()
    target_link_libraries(${name} PRIVATE tessel::config_datamodel)
    if(TESSEL_PRECOMPILED_HEADERS)
      target_precompile_headers(${name} REUSE_FROM census-listener-sample)
    endif()
  endif()
  # What sees the foundation is held to leave no element behind.
  if(TARGET tessel_test_census AND (NOT test_LAYERS OR "diagnostics" IN_LIST layers))
    target_link_libraries(${name} PRIVATE tessel_test_census)
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)

  set(properties TIMEOUT 300)
  if(test_LABELS)
    list(JOIN test_LABELS "\\;" labels)
    list(APPEND properties LABELS "${labels}")
  endif()
  foreach(label IN LISTS test_LABELS)
    if(NOT TARGET ${label}-tests)
      add_custom_target(${label}-tests)
    endif()
    add_dependencies(${label}-tests ${name})
  endforeach()
  # Cases are read off the program when ctest starts: no build fails because a program can't run yet.
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES ${properties}
  )
endfunction()
