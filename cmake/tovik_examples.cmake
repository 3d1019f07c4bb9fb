# examples/<name>.c becomes the program example_<name>.
file(GLOB example_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/examples/*.c)
foreach(source IN LISTS example_sources)
  get_filename_component(name ${source} NAME_WE)
  add_executable(example_${name} ${source})
  target_link_libraries(example_${name} PRIVATE tovik)
  tovik_warnings(example_${name})
endforeach()
