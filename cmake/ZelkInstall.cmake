# What `cmake --install` makes, in parts: component `runtime` is what finished programs need,
# `development` what it takes to compile one, `tools` the command and the checker of certificates,
# `python` the package for Python. It works wherever it is put, or
# moved to as a whole.

include(CMakePackageConfigHelpers)

set(zelk_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zelk")
set(zelk_pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(
  TARGETS zelk zelk_convert zelk_real zelk_verify zelk_certify
  EXPORT zelkTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)

# For find_package(zelk). GMP has no package configuration of its own, so our module goes along.
install(
  EXPORT zelkTargets
  NAMESPACE zelk::
  DESTINATION "${zelk_package_dir}"
  COMPONENT development)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/zelkConfig.cmake.in" zelkConfig.cmake
                              INSTALL_DESTINATION "${zelk_package_dir}")
write_basic_package_version_file(zelkConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES "${PROJECT_BINARY_DIR}/zelkConfig.cmake" "${PROJECT_BINARY_DIR}/zelkConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/FindGMP.cmake"
  DESTINATION "${zelk_package_dir}"
  COMPONENT development)

# For pkg-config, by the way from a .pc file back to the prefix.
string(REGEX REPLACE "[^/]+" ".." pkgconfig_to_prefix "${zelk_pkgconfig_dir}")
foreach(name IN ITEMS zelk zelk-convert zelk-real zelk-verify zelk-certify)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" ${name}.pc @ONLY)
  install(
    FILES "${PROJECT_BINARY_DIR}/${name}.pc"
    DESTINATION "${zelk_pkgconfig_dir}"
    COMPONENT development)
endforeach()

if(ZELK_BUILD_CLI)
  install(TARGETS zelk_cli COMPONENT tools)
  install(
    PROGRAMS "${PROJECT_SOURCE_DIR}/scripts/check_certificate"
    DESTINATION "${CMAKE_INSTALL_BINDIR}"
    RENAME zelk-check-certificate
    COMPONENT tools)
  install(
    FILES "${PROJECT_BINARY_DIR}/cli/zelk.1" "${PROJECT_SOURCE_DIR}/docs/zelk-check-certificate.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
    COMPONENT tools)
  install(
    FILES "${PROJECT_BINARY_DIR}/cli/zelk.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    RENAME zelk
    COMPONENT tools)
endif()

if(ZELK_BUILD_PYTHON)
  set(ZELK_PYTHON_DIR "lib/python3/dist-packages" CACHE STRING "Where Python finds packages")
  install(TARGETS zelk_python LIBRARY DESTINATION "${ZELK_PYTHON_DIR}/zelk" COMPONENT python)
  install(
    DIRECTORY "${PROJECT_SOURCE_DIR}/python/zelk"
    DESTINATION "${ZELK_PYTHON_DIR}"
    COMPONENT python
    FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN __pycache__ EXCLUDE)
  # So that other tools of Python know that it is there.
  file(CONFIGURE OUTPUT METADATA
       CONTENT "Metadata-Version: 2.1\nName: zelk\nVersion: @PROJECT_VERSION@\n" @ONLY)
  install(
    FILES "${PROJECT_BINARY_DIR}/METADATA"
    DESTINATION "${ZELK_PYTHON_DIR}/zelk-${PROJECT_VERSION}.dist-info"
    COMPONENT python)
endif()

# Shared libraries are looked for by the way from whoever needs them.
if(BUILD_SHARED_LIBS)
  set_target_properties(zelk_convert zelk_real zelk_verify zelk_certify PROPERTIES INSTALL_RPATH "$ORIGIN")
  if(ZELK_BUILD_CLI)
    file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(zelk_cli PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  endif()
  if(ZELK_BUILD_PYTHON)
    file(RELATIVE_PATH python_to_lib "/${ZELK_PYTHON_DIR}/zelk" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(zelk_python PROPERTIES INSTALL_RPATH "$ORIGIN/${python_to_lib}")
  endif()
endif()
