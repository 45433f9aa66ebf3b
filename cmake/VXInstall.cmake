# Install contract: headers under <prefix>/include/vxcommon with their folder paths, the library
# under <prefix>/lib, a CMake package config and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS vxcommon EXPORT VXCommonTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES vxcommon.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vxcommon)
# Public headers one by one, so that internal ones stay out and no empty folder is made.
foreach(header IN LISTS VX_HEADERS)
  file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR} ${header})
  if(NOT rel IN_LIST VX_INTERNAL_HEADERS)
    get_filename_component(dir ${rel} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vxcommon/${dir})
  endif()
endforeach()
install(DIRECTORY data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vxcommon OPTIONAL)

install(EXPORT VXCommonTargets NAMESPACE VXCommon::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VXCommon)
configure_package_config_file(cmake/VXCommonConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VXCommonConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VXCommon)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VXCommonConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VXCommonConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VXCommonConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VXCommon)

# The pkg-config file finds its prefix from its own place (${pcfiledir}), not from the prefix
# given at configure time, so that `cmake --install --prefix` anywhere gives a right file.
file(RELATIVE_PATH VX_PC_RELATIVE_PREFIX /vxroot/${CMAKE_INSTALL_LIBDIR}/pkgconfig /vxroot)
string(REGEX REPLACE "/$" "" VX_PC_RELATIVE_PREFIX "${VX_PC_RELATIVE_PREFIX}")
configure_file(cmake/vxcommon.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vxcommon.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vxcommon.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
