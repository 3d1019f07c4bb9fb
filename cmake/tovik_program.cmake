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
  target_link_libraries(tovik_program PRIVATE tovik CLI11::CLI11 nlohmann_json::nlohmann_json)
  tovik_warnings(tovik_program)
  install(TARGETS tovik_program)
endif()
