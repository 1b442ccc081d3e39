# Finds GMP and, as component `gmpxx`, its C++ interface.
#
# Targets:   GMP::gmp, GMP::gmpxx
# Variables: GMP_FOUND, GMP_VERSION, GMP_gmpxx_FOUND; the cache entries GMP_INCLUDE_DIR, GMP_LIBRARY,
#            GMPXX_INCLUDE_DIR and GMPXX_LIBRARY point at an installation of your choice.

find_path(GMP_INCLUDE_DIR gmp.h)
find_library(GMP_LIBRARY gmp)
find_path(GMPXX_INCLUDE_DIR gmpxx.h)
find_library(GMPXX_LIBRARY gmpxx)
mark_as_advanced(GMP_INCLUDE_DIR GMP_LIBRARY GMPXX_INCLUDE_DIR GMPXX_LIBRARY)

unset(GMP_VERSION)
if(GMP_INCLUDE_DIR)
  # Some distributions put these lines in a header per architecture, which gmp.h includes.
  file(GLOB gmp_headers "${GMP_INCLUDE_DIR}/gmp.h" "${GMP_INCLUDE_DIR}/gmp-*.h")
  foreach(header IN LISTS gmp_headers)
    file(STRINGS "${header}" lines
         REGEX "^#define[ \t]+__GNU_MP_VERSION(_MINOR|_PATCHLEVEL)?[ \t]+[0-9]+")
    if(lines)
      list(TRANSFORM lines REPLACE "^#define[ \t]+__GNU_MP_VERSION[A-Z_]*[ \t]+([0-9]+).*" "\\1")
      list(JOIN lines "." GMP_VERSION)
      break()
    endif()
  endforeach()
  unset(gmp_headers)
endif()

if(GMPXX_INCLUDE_DIR AND GMPXX_LIBRARY)
  set(GMP_gmpxx_FOUND TRUE)
else()
  set(GMP_gmpxx_FOUND FALSE)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  GMP
  REQUIRED_VARS GMP_LIBRARY GMP_INCLUDE_DIR
  VERSION_VAR GMP_VERSION
  HANDLE_COMPONENTS)

if(GMP_FOUND AND NOT TARGET GMP::gmp)
  add_library(GMP::gmp UNKNOWN IMPORTED)
  set_target_properties(GMP::gmp PROPERTIES IMPORTED_LOCATION "${GMP_LIBRARY}"
                                            INTERFACE_INCLUDE_DIRECTORIES "${GMP_INCLUDE_DIR}")
endif()

if(GMP_FOUND AND GMP_gmpxx_FOUND AND NOT TARGET GMP::gmpxx)
  add_library(GMP::gmpxx UNKNOWN IMPORTED)
  set_target_properties(
    GMP::gmpxx
    PROPERTIES IMPORTED_LOCATION "${GMPXX_LIBRARY}"
               INTERFACE_INCLUDE_DIRECTORIES "${GMPXX_INCLUDE_DIR}"
               INTERFACE_LINK_LIBRARIES GMP::gmp)
endif()
