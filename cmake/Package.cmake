# Installation: headers, library, the CMake package and the pkg-config file, all to be moved about freely.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tessel_config_datamodel)
# A folder of their own, by version: the headers are those of many folders, whose names would stand among everybody's.
set(TESSEL_INSTALL_INCLUDEDIR
  ${CMAKE_INSTALL_INCLUDEDIR}/tessel_config_datamodel-${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

install(TARGETS tessel_config_datamodel
  EXPORT tessel_config_datamodel
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${TESSEL_INSTALL_INCLUDEDIR}
)
install(EXPORT tessel_config_datamodel
  FILE tessel_config_datamodel-targets.cmake
  NAMESPACE tessel::
  DESTINATION ${package_dir}
)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/tessel_config_datamodel-config.cmake.in
  ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel-config.cmake
  INSTALL_DESTINATION ${package_dir}
)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel-config-version.cmake
  COMPATIBILITY SameMinorVersion
)
install(FILES
  ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel-config.cmake
  ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel-config-version.cmake
  DESTINATION ${package_dir}
)

# The prefix in the pkg-config file is found from where the file lies.
file(RELATIVE_PATH pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
set(pc_definitions "")
if(TESSEL_FAILURE_POINTS)
  set(pc_definitions " -DTESSEL_FAILURE_POINTS=1")
endif()
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/tessel_config_datamodel.pc.in
  ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel.pc
  @ONLY
)
install(FILES ${PROJECT_BINARY_DIR}/package/tessel_config_datamodel.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
