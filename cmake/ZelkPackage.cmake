# Debian packages by cpack, one for each component of the installation; scripts/package makes them.

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_CONTACT "The zelk authors <zelk@invalid.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/ZelkPackageDocs.cmake")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE zelk)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/zelk")

set(about "
zelk calculates with rational numbers of any size, without rounding. It
finds the convergents of their continued fractions, and encloses exp, sin,
cos and pi between two rational numbers as close to each other as asked for.
")

# Named after the SONAME, so that incompatible versions can be installed side by side.
get_target_property(soversion zelk SOVERSION)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzelk${soversion})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "exact rational numbers and their approximation - shared libraries${about}")
# The loader's cache is refreshed by a trigger. cpack writes scripts for that as well, unless they
# are in this list; it leaves out those that it does not find.
file(WRITE "${PROJECT_BINARY_DIR}/debian/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/debian/triggers" postinst
                                               postrm)

set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzelk-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libgmp-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "exact rational numbers and their approximation - development files${about}")

if(ZELK_BUILD_CLI)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME zelk)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION math)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS python3)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS gnuplot)
  set(CPACK_DEBIAN_TOOLS_DESCRIPTION
      "exact rational numbers and their approximation - command${about}")
endif()

if(ZELK_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_COMPONENT_PYTHON_DEPENDS runtime)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-zelk)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # The extension is for one minor version of Python.
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
      "python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next_minor})")
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION
      "exact rational numbers and their approximation - Python 3 package${about}")
  # Byte code is made when the package is installed, and goes before it does.
  file(WRITE "${PROJECT_BINARY_DIR}/debian/postinst"
       "#!/bin/sh\nset -e\nif [ \"$1\" = configure ]; then\n  py3compile -p python3-zelk\nfi\n")
  file(WRITE "${PROJECT_BINARY_DIR}/debian/prerm" "#!/bin/sh\nset -e\npy3clean -p python3-zelk\n")
  file(CHMOD "${PROJECT_BINARY_DIR}/debian/postinst" "${PROJECT_BINARY_DIR}/debian/prerm"
       PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                   WORLD_EXECUTE)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/debian/postinst"
                                                "${PROJECT_BINARY_DIR}/debian/prerm")
endif()

include(CPack)
