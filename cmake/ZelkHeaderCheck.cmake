# zelk_header_check(TARGET...): that every public header of the targets compiles alone, and defines
# nothing twice when two units include it.
#
# Each header is a unit of its own, and all of them together are one more, which holds `main`; the
# units are linked into one program. Building `header_check` is the whole check.
function(zelk_header_check)
  set(dir "${CMAKE_CURRENT_BINARY_DIR}/header_units")
  set(all "")
  set(units "")
  foreach(target IN LISTS ARGN)
    get_target_property(headers ${target} HEADER_SET)
    foreach(header IN LISTS headers)
      cmake_path(RELATIVE_PATH header BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
      string(MAKE_C_IDENTIFIER "${header}" name)
      set(include "#include \"${header}\"\n")
      file(CONFIGURE OUTPUT "${dir}/${name}.cpp" CONTENT "@include@" @ONLY)
      list(APPEND units "${dir}/${name}.cpp")
      string(APPEND all "${include}")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT "${dir}/all.cpp" CONTENT "@all@int main() {}\n" @ONLY)

  add_executable(header_check "${dir}/all.cpp" ${units})
  target_link_libraries(header_check PRIVATE ${ARGN} zelk_warnings)
  # The quickest to compile, and nothing that is defined twice is inlined out of sight.
  target_compile_options(header_check PRIVATE -O0)
endfunction()
