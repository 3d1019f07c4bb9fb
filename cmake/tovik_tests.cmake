# tests/<group>/test_<name>.cpp becomes the program test_<group>_<name>. Groups unit and property see the inner
# components; the other groups see the public header only. The label is the group, or <group>_parallel for
# test programs whose name says that they run threads; the thread sanitizer runs those.
find_package(GTest REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
include(GoogleTest)
add_custom_target(tovik_parallel_tests)
foreach(group unit property api fileio regress)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/${group}/test_*.cpp)
  foreach(source IN LISTS tests)
    get_filename_component(name ${source} NAME_WE)
    string(REPLACE "test_" "test_${group}_" target ${name})
    add_executable(${target} ${source})
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/tests)
    if(group STREQUAL unit OR group STREQUAL property)
      target_link_libraries(${target} PRIVATE tovik_inner GTest::gtest_main)
    else()
      target_link_libraries(${target} PRIVATE tovik GTest::gtest_main)
    endif()
    target_compile_definitions(${target} PRIVATE TOVIK_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}")
    tovik_warnings(${target})
    set(label ${group})
    if(name MATCHES "parallel|thread|concurrent")
      set(label ${group}_parallel)
      add_dependencies(tovik_parallel_tests ${target})
    endif()
    gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600 LABELS ${label})
  endforeach()
endforeach()

# The tests of the program run it; without the program they skip.
find_package(nlohmann_json REQUIRED)
if(TARGET tovik_program)
  add_library(tovik_wrong_values MODULE tests/api/wrong_values.c)
  target_include_directories(tovik_wrong_values PRIVATE include)
  target_link_libraries(tovik_wrong_values PRIVATE ${CMAKE_DL_LIBS})
endif()
foreach(test test_api_program test_api_program_check test_api_program_mip test_api_program_network
        test_api_program_usage test_api_program_verify)
  target_link_libraries(${test} PRIVATE nlohmann_json::nlohmann_json)
  if(TARGET tovik_program)
    add_dependencies(${test} tovik_program tovik_wrong_values)
    target_compile_definitions(${test} PRIVATE TOVIK_PROGRAM="$<TARGET_FILE:tovik_program>"
      TOVIK_WRONG_VALUES="$<TARGET_FILE:tovik_wrong_values>")
  else()
    target_compile_definitions(${test} PRIVATE TOVIK_PROGRAM="" TOVIK_WRONG_VALUES="")
  endif()
endforeach()

# The public header as a C compiler sees it.
add_executable(test_api_c99 tests/api/compile_c99.c)
target_link_libraries(test_api_c99 PRIVATE tovik)
target_compile_options(test_api_c99 PRIVATE -Wall -Wextra -pedantic -Wstrict-prototypes -Werror)
add_test(NAME api.c99 COMMAND test_api_c99)

# The installed tree, used from outside by both of its doors.
add_test(NAME install.consumers COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tests/install/run
  ${CMAKE_COMMAND} ${CMAKE_CURRENT_BINARY_DIR} ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER})
set_tests_properties(install.consumers PROPERTIES LABELS install TIMEOUT 300)

# The example models and programs.
file(GLOB example_models CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/examples/*.lp ${CMAKE_CURRENT_SOURCE_DIR}/examples/*.mps
     ${CMAKE_CURRENT_SOURCE_DIR}/examples/*.net)
if(TARGET tovik_program AND TARGET example_production)
  add_test(NAME examples COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/tests/install/check_examples.py
    --program $<TARGET_FILE:tovik_program> --example $<TARGET_FILE:example_production> ${example_models})
endif()

# Random calls of everything that is exported, from a table made of the header: a short run here, a long one with sanitizers
# in .ci/run.
set(random_calls_table ${CMAKE_CURRENT_BINARY_DIR}/random_calls_table.cpp)
add_custom_command(OUTPUT ${random_calls_table}
  COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_random_calls.py
    ${CMAKE_CURRENT_SOURCE_DIR}/include/tovik.h ${random_calls_table}
  DEPENDS fuzz/make_random_calls.py include/tovik.h)
add_executable(random_calls fuzz/random_calls.cpp fuzz/random_caller.cpp fuzz/random_arguments.cpp ${random_calls_table})
target_include_directories(random_calls PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(random_calls PRIVATE tovik)
tovik_warnings(random_calls)
add_test(NAME fuzz.random_calls COMMAND random_calls --seconds 3 --seed 1)
set_tests_properties(fuzz.random_calls PROPERTIES LABELS fuzz TIMEOUT 120)

# House rules.
set(ci ${CMAKE_CURRENT_SOURCE_DIR}/.ci)
add_test(NAME house.exports COMMAND Python3::Interpreter ${ci}/check_exports.py $<TARGET_FILE:tovik>)
add_test(NAME house.includes COMMAND Python3::Interpreter ${ci}/check_includes.py)
add_test(NAME house.words COMMAND Python3::Interpreter ${ci}/check_words.py)
add_test(NAME house.parameters COMMAND Python3::Interpreter ${ci}/check_parameters.py)
add_test(NAME house.header COMMAND ${ci}/check_header ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER})
find_program(CLANG_FORMAT clang-format-14)
if(CLANG_FORMAT)
  add_test(NAME house.format COMMAND ${ci}/check_format ${CLANG_FORMAT})
  set_tests_properties(house.format PROPERTIES LABELS house)
endif()
set_tests_properties(house.exports house.includes house.words house.parameters house.header PROPERTIES LABELS house)

if(TOVIK_COVERAGE)
  find_program(GCOVR gcovr REQUIRED)
  add_custom_target(coverage COMMAND ${CMAKE_CTEST_COMMAND} --output-on-failure
    COMMAND ${GCOVR} --root ${CMAKE_CURRENT_SOURCE_DIR} --exclude tests/ --exclude build/ --print-summary
      --html-details ${CMAKE_CURRENT_BINARY_DIR}/coverage.html
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} USES_TERMINAL)
endif()
