# Finds MPFR; GMP, which it stands on, must be found first.
#
# Targets:   MPFR::mpfr
# Variables: MPFR_FOUND, MPFR_VERSION; the cache entries MPFR_INCLUDE_DIR and MPFR_LIBRARY point at an
#            installation of your choice.

find_path(MPFR_INCLUDE_DIR mpfr.h)
find_library(MPFR_LIBRARY mpfr)
mark_as_advanced(MPFR_INCLUDE_DIR MPFR_LIBRARY)

unset(MPFR_VERSION)
if(MPFR_INCLUDE_DIR)
  file(STRINGS "${MPFR_INCLUDE_DIR}/mpfr.h" MPFR_VERSION REGEX "^#define[ \t]+MPFR_VERSION_STRING")
  string(REGEX REPLACE ".*\"([0-9.]+)[^\"]*\".*" "\\1" MPFR_VERSION "${MPFR_VERSION}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  MPFR
  REQUIRED_VARS MPFR_LIBRARY MPFR_INCLUDE_DIR
  VERSION_VAR MPFR_VERSION)

if(MPFR_FOUND AND NOT TARGET MPFR::mpfr)
  add_library(MPFR::mpfr UNKNOWN IMPORTED)
  set_target_properties(
    MPFR::mpfr
    PROPERTIES IMPORTED_LOCATION "${MPFR_LIBRARY}"
               INTERFACE_INCLUDE_DIRECTORIES "${MPFR_INCLUDE_DIR}"
               INTERFACE_LINK_LIBRARIES GMP::gmp)
endif()
