# fuzz/fuzz_<name>.cpp becomes the program fuzz_<name>, driven by clang's libFuzzer. Use the preset `fuzz`, which
# instruments the library as well.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
  message(FATAL_ERROR "The fuzz targets need clang: cmake --preset fuzz")
endif()
file(GLOB fuzz_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/fuzz_*.cpp)
foreach(source IN LISTS fuzz_sources)
  get_filename_component(target ${source} NAME_WE)
  add_executable(${target} ${source})
  target_link_libraries(${target} PRIVATE tovik_inner)
  target_link_options(${target} PRIVATE -fsanitize=fuzzer)
  tovik_warnings(${target})
endforeach()
