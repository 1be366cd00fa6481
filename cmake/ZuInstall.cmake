# Installs libraries, public headers, the CMake package and the pkg-config files. All of it can be moved as one folder.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zuGeometry)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/zuGeometry)

foreach(library zuFoundation zuGeometry)
  target_compile_features(${library} PUBLIC cxx_std_17)
endforeach()
# A library finds the other one beside it wherever the installation is moved.
set_target_properties(zuGeometry PROPERTIES INSTALL_RPATH $ORIGIN)

install(TARGETS zuFoundation zuGeometry EXPORT zuGeometryTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${header_dir})
foreach(folder foundation geometry)
  # Headers for use inside the library are named *Private.h.
  install(DIRECTORY ${folder}/ DESTINATION ${header_dir}/${folder} FILES_MATCHING PATTERN "*.h" PATTERN "*Private.h" EXCLUDE)
endforeach()

install(EXPORT zuGeometryTargets NAMESPACE zu:: DESTINATION ${package_dir})
configure_package_config_file(cmake/zuGeometryConfig.cmake.in ${PROJECT_BINARY_DIR}/zuGeometryConfig.cmake
  INSTALL_DESTINATION ${package_dir})
# Before 1.0 a minor version may break clients.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zuGeometryConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zuGeometryConfig.cmake ${PROJECT_BINARY_DIR}/zuGeometryConfigVersion.cmake
  DESTINATION ${package_dir})

# The files find their prefix from where they lie themselves.
file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library zuFoundation zuGeometry)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
