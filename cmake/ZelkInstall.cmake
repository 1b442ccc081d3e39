include(CMakePackageConfigHelpers)

set(zelk_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zelk")

install(
  TARGETS zelk zelk_convert
  EXPORT zelkTargets
  FILE_SET HEADERS)
install(
  EXPORT zelkTargets
  NAMESPACE zelk::
  DESTINATION "${zelk_package_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/zelkConfig.cmake.in" zelkConfig.cmake
                              INSTALL_DESTINATION "${zelk_package_dir}")
write_basic_package_version_file(zelkConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES "${PROJECT_BINARY_DIR}/zelkConfig.cmake" "${PROJECT_BINARY_DIR}/zelkConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/FindGMP.cmake"
  DESTINATION "${zelk_package_dir}")

if(ZELK_BUILD_CLI)
  install(TARGETS zelk_cli)
endif()
