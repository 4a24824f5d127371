# The shared library: the objects of all layers, with the public headers of all layers as its own.

add_library(tessel_config_datamodel SHARED)
add_library(tessel::config_datamodel ALIAS tessel_config_datamodel)

# File sets want their files by name. Generated headers are known by the generator's list, the others by looking.
get_property(header_files GLOBAL PROPERTY TESSEL_GENERATED_HEADERS)
get_property(header_roots GLOBAL PROPERTY TESSEL_GENERATED_ROOTS)
list(REMOVE_DUPLICATES header_roots)
foreach(layer IN LISTS TESSEL_LAYERS)
  if(NOT TARGET ${layer})
    continue()
  endif()
  get_target_property(type ${layer} TYPE)
  if(type STREQUAL "OBJECT_LIBRARY")
    target_sources(tessel_config_datamodel PRIVATE $<TARGET_OBJECTS:${layer}>)
  endif()
  get_target_property(folder ${layer} SOURCE_DIR)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${folder}/include/*.hpp ${folder}/include/*.h)
  if(headers)
    list(APPEND header_roots ${folder}/include)
    list(APPEND header_files ${headers})
  endif()
endforeach()

target_sources(tessel_config_datamodel PUBLIC
  FILE_SET HEADERS BASE_DIRS ${header_roots} FILES ${header_files})
target_compile_features(tessel_config_datamodel PUBLIC cxx_std_17)
target_link_libraries(tessel_config_datamodel PUBLIC Boost::headers)
if(TESSEL_FAILURE_POINTS)
  target_compile_definitions(tessel_config_datamodel INTERFACE TESSEL_FAILURE_POINTS=1)
endif()
# What -fno-semantic-interposition promises the compiler holds at run time as well: calls between exported functions go
# straight, without the table that a preloaded library could change.
target_link_options(tessel_config_datamodel PRIVATE -Wl,-Bsymbolic-functions)
if(NOT TESSEL_SANITIZE)
  target_link_options(tessel_config_datamodel PRIVATE -Wl,--no-undefined)
endif()
# What the compiler instantiates of other people's templates stays inside. The names that carry identity, those of
# types, go out all the same: an exception of Boost's that the library throws is caught by its class.
set(exports ${PROJECT_SOURCE_DIR}/cmake/tessel_config_datamodel.map)
target_link_options(tessel_config_datamodel PRIVATE -Wl,--version-script=${exports})
set_property(TARGET tessel_config_datamodel APPEND PROPERTY LINK_DEPENDS ${exports})
# The metamodel lives until the process ends, with statics that other libraries may share; a dlclose that took the code
# away from under them would leave it dangling. So the library says of itself that it stays.
target_link_options(tessel_config_datamodel PRIVATE -Wl,-z,nodelete)
# Before version 1 every minor version may change the binary interface.
set_target_properties(tessel_config_datamodel PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
  EXPORT_NAME config_datamodel
  VERIFY_INTERFACE_HEADER_SETS ON
)
