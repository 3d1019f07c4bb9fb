# bench/micro_<name>.cpp becomes the program bench_<name>; it sees the inner components.
find_package(benchmark REQUIRED)
file(GLOB micro_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/bench/micro_*.cpp)
foreach(source IN LISTS micro_sources)
  get_filename_component(name ${source} NAME_WE)
  string(REPLACE "micro_" "bench_" target ${name})
  add_executable(${target} ${source})
  target_link_libraries(${target} PRIVATE tovik_inner benchmark::benchmark_main)
  target_compile_definitions(${target} PRIVATE TOVIK_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}")
  tovik_warnings(${target})
endforeach()

# bench/nodes: one program of several files; a peer is loaded at run time, where it is installed.
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
file(GLOB node_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/bench/nodes/*.cpp)
add_executable(bench_nodes ${node_sources})
target_link_libraries(bench_nodes PRIVATE tovik_inner CLI11::CLI11 nlohmann_json::nlohmann_json ${CMAKE_DL_LIBS})
target_compile_definitions(bench_nodes PRIVATE TOVIK_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}")
tovik_warnings(bench_nodes)

file(GLOB cholesky_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/bench/cholesky/*.cpp)
add_executable(bench_cholesky ${cholesky_sources})
target_link_libraries(bench_cholesky PRIVATE tovik_inner CLI11::CLI11)
tovik_warnings(bench_cholesky)

# bench/network: the peer is a program of its own, built where its headers are installed; nothing of ours links it.
set(network_folder ${CMAKE_CURRENT_SOURCE_DIR}/bench/network)
add_executable(bench_network ${network_folder}/main.cpp ${network_folder}/own_run.cpp ${network_folder}/families.cpp
  ${network_folder}/instance.cpp)
target_link_libraries(bench_network PRIVATE tovik_inner CLI11::CLI11)
tovik_warnings(bench_network)
find_path(LEMON_INCLUDE_DIR lemon/network_simplex.h)
find_library(LEMON_LIBRARY NAMES lemon)
if(LEMON_INCLUDE_DIR AND LEMON_LIBRARY)
  add_executable(bench_network_peer ${network_folder}/peer.cpp ${network_folder}/instance.cpp)
  # Its headers are of 2014: they use what later standards have dropped.
  set_target_properties(bench_network_peer PROPERTIES CXX_STANDARD 17)
  target_include_directories(bench_network_peer PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_include_directories(bench_network_peer SYSTEM PRIVATE ${LEMON_INCLUDE_DIR})
  target_link_libraries(bench_network_peer PRIVATE ${LEMON_LIBRARY})
  add_dependencies(bench_network bench_network_peer)
endif()
