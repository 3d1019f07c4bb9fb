# The program `tovik`; it uses the library through the public header only.
file(GLOB cli_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/cli/*.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/cli/*/*.cpp)
if(cli_sources AND TOVIK_BUILD_PROGRAM)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  add_executable(tovik_program ${cli_sources})
  set_target_properties(tovik_program PROPERTIES OUTPUT_NAME tovik
    INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  target_include_directories(tovik_program PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  # The commit is looked up at each build and written only when it is another one.
  set(tovik_commit_source ${CMAKE_CURRENT_BINARY_DIR}/commit.cpp)
  add_custom_target(tovik_commit COMMAND ${CMAKE_COMMAND} -DSOURCE=${CMAKE_CURRENT_SOURCE_DIR}
    -DSOURCE_FILE=${tovik_commit_source} -P ${CMAKE_CURRENT_SOURCE_DIR}/cmake/write_commit.cmake
    BYPRODUCTS ${tovik_commit_source})
  add_dependencies(tovik_program tovik_commit)
  target_sources(tovik_program PRIVATE ${tovik_commit_source})
  target_link_libraries(tovik_program PRIVATE tovik CLI11::CLI11 nlohmann_json::nlohmann_json)
  tovik_warnings(tovik_program)
  install(TARGETS tovik_program)
  install(FILES cli/share/tovik.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES cli/share/tovik.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tovik)
  install(FILES cli/share/_tovik DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES cli/share/tovik.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
