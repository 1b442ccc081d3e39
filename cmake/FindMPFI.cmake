# Finds MPFI; MPFR, which it stands on, must be found first.
#
# Targets:   MPFI::mpfi
# Variables: MPFI_FOUND; the cache entries MPFI_INCLUDE_DIR and MPFI_LIBRARY point at an installation
#            of your choice.

find_path(MPFI_INCLUDE_DIR mpfi.h)
find_library(MPFI_LIBRARY mpfi)
mark_as_advanced(MPFI_INCLUDE_DIR MPFI_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MPFI REQUIRED_VARS MPFI_LIBRARY MPFI_INCLUDE_DIR)

if(MPFI_FOUND AND NOT TARGET MPFI::mpfi)
  add_library(MPFI::mpfi UNKNOWN IMPORTED)
  set_target_properties(
    MPFI::mpfi
    PROPERTIES IMPORTED_LOCATION "${MPFI_LIBRARY}"
               INTERFACE_INCLUDE_DIRECTORIES "${MPFI_INCLUDE_DIR}"
               INTERFACE_LINK_LIBRARIES MPFR::mpfr)
endif()
