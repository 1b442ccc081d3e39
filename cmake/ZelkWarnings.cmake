# Warnings for our own sources. Targets link this through $<BUILD_INTERFACE:...> and PRIVATE, so it
# is neither exported nor passed on to those who use the library.
add_library(zelk_warnings INTERFACE)
target_compile_options(
  zelk_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                          $<$<BOOL:${ZELK_WERROR}>:-Werror>)

# GCC 12 sees overlaps in the inlined members of std::string that cannot happen (GCC bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(zelk_warnings INTERFACE -Wno-restrict)
endif()
