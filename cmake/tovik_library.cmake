# The shared library from all folders, a static one on request, and an all-in-one archive for the tests of inner
# components.
include(CMakePackageConfigHelpers)

set(tovik_objects "")
foreach(folder IN LISTS TOVIK_FOLDER_TARGETS)
  list(APPEND tovik_objects $<TARGET_OBJECTS:${folder}>)
endforeach()

function(tovik_public_header target)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endfunction()

target_link_libraries(tovik_fileio_xml PRIVATE EXPAT::EXPAT)
target_link_libraries(tovik_fileio_stream PRIVATE ZLIB::ZLIB BZip2::BZip2)
target_link_libraries(tovik_mip_search PRIVATE ZLIB::ZLIB)
target_link_libraries(tovik_lp_cholesky PRIVATE AMD::AMD METIS::METIS)
if(NOT TOVIK_BLAS_LINK_OPTIONS)
  set_source_files_properties(lp/cholesky/blas_buffers.cpp lp/cholesky/blas_kernels.cpp PROPERTIES HEADER_FILE_ONLY ON)
endif()
set(tovik_needs Threads::Threads EXPAT::EXPAT ZLIB::ZLIB BZip2::BZip2 $<LINK_ONLY:AMD::AMD> $<LINK_ONLY:METIS::METIS> BLAS::BLAS)
add_library(tovik SHARED ${tovik_objects})
add_library(tovik::tovik ALIAS tovik)
tovik_public_header(tovik)
target_link_libraries(tovik PRIVATE ${tovik_needs})
set_target_properties(tovik PROPERTIES VERSION ${tovik_VERSION_MAJOR}.${tovik_VERSION_MINOR}.${tovik_VERSION_PATCH}
  SOVERSION ${tovik_VERSION_MAJOR} LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/tovik.map)
# The map keeps instantiated templates of the standard library out of the exports, which visibility flags do not.
target_link_options(tovik PRIVATE -Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/cmake/tovik.map)
if(NOT TOVIK_SANITIZE)
  target_link_options(tovik PRIVATE -Wl,-z,defs)
endif()

add_library(tovik_inner STATIC EXCLUDE_FROM_ALL ${tovik_objects})
target_include_directories(tovik_inner PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/include)
target_link_libraries(tovik_inner PUBLIC ${tovik_needs})

set(tovik_installed tovik)
if(TOVIK_BUILD_STATIC)
  add_library(tovik_static STATIC ${tovik_objects})
  add_library(tovik::tovik_static ALIAS tovik_static)
  tovik_public_header(tovik_static)
  target_link_libraries(tovik_static PRIVATE ${tovik_needs})
  set_target_properties(tovik_static PROPERTIES OUTPUT_NAME tovik)
  list(APPEND tovik_installed tovik_static)
endif()

# Installed tree: library, header, CMake package `tovik`, pkg-config module `tovik`.
set(tovik_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tovik)
install(TARGETS ${tovik_installed} EXPORT tovikTargets)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES include/tovik.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT tovikTargets NAMESPACE tovik:: DESTINATION ${tovik_package_dir})
configure_package_config_file(cmake/tovikConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/tovikConfig.cmake
  INSTALL_DESTINATION ${tovik_package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/tovikConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tovikConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/tovikConfigVersion.cmake
  DESTINATION ${tovik_package_dir})
if(TOVIK_BUILD_STATIC)
  install(FILES cmake/FindAMD.cmake cmake/FindMETIS.cmake cmake/tovik_blas.cmake DESTINATION ${tovik_package_dir})
endif()
file(RELATIVE_PATH tovik_pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH tovik_pc_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH tovik_pc_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
string(JOIN " " tovik_pc_blas ${TOVIK_BLAS_LINK_OPTIONS} ${BLAS_LIBRARIES})
configure_file(cmake/tovik.pc.in ${CMAKE_CURRENT_BINARY_DIR}/tovik.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tovik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
