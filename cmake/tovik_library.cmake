# The shared library from all folders, and an all-in-one static archive for the tests of inner components.
set(tovik_objects "")
foreach(folder IN LISTS TOVIK_FOLDER_TARGETS)
  list(APPEND tovik_objects $<TARGET_OBJECTS:${folder}>)
endforeach()
add_library(tovik SHARED ${tovik_objects})
target_include_directories(tovik PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(tovik PRIVATE Threads::Threads)
set_target_properties(tovik PROPERTIES VERSION 12.2.0 SOVERSION 12)
add_library(tovik_inner STATIC EXCLUDE_FROM_ALL ${tovik_objects})
target_include_directories(tovik_inner PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/include)
target_link_libraries(tovik_inner PUBLIC Threads::Threads)
