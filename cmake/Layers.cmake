# The layers of the library: one OBJECT library each, which sees the headers of the layers below it and no others.

# tessel_add_layer(NAME [SEES LAYER...] [SOURCES FILE...] [INCLUDES FOLDER...]): a layer of the current folder. Public
# headers stand below include/, sources and headers of its own below src/; SOURCES and INCLUDES add what stands elsewhere
# (generated code). A layer without any source is one of headers alone.
function(tessel_add_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 layer "" "" "SEES;SOURCES;INCLUDES")
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/src/*.cpp)
  list(APPEND sources ${layer_SOURCES})

  if(sources)
    add_library(${name} OBJECT ${sources})
    tessel_combine_generated_sources(${name})
    set(scope PUBLIC)
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${CMAKE_CURRENT_SOURCE_DIR}/include ${layer_INCLUDES})
  target_compile_features(${name} ${scope} cxx_std_17)
  target_link_libraries(${name} ${scope} ${layer_SEES} Boost::headers)
endfunction()

# tessel_layer_closure(OUT LAYER...): the LAYERs and every layer below them. Objects are not passed on along links, so
# a program made of layers has to name them all.
function(tessel_layer_closure out)
  set(pending ${ARGN})
  set(closure "")
  while(pending)
    list(POP_FRONT pending layer)
    get_target_property(type ${layer} TYPE)
    if(layer IN_LIST closure OR NOT type MATCHES "OBJECT_LIBRARY|INTERFACE_LIBRARY")
      continue()
    endif()
    list(APPEND closure ${layer})
    get_target_property(seen ${layer} INTERFACE_LINK_LIBRARIES)
    foreach(lower IN LISTS seen)
      if(lower IN_LIST TESSEL_LAYERS AND TARGET ${lower})
        list(APPEND pending ${lower})
      endif()
    endforeach()
  endwhile()
  set(${out} ${closure} PARENT_SCOPE)
endfunction()

# Every layer that the shared library can be made of, lowest first.
set(TESSEL_LAYERS groundwork kestrel plinth diagnostics collections frame meta siblings model corvid bridge)
