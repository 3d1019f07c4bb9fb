# The BLAS that the library is linked with: target BLAS::BLAS. BLA_VENDOR and BLA_STATIC choose as FindBLAS says; it must
# bear calls from several threads at once. Without them OpenBLAS's archive without threads is taken where it is installed:
# loading it is quick and starts no threads, as the shared one with threads does before anybody can forbid it. The one thing
# in it that two threads must not do at once, asking for a buffer, goes through lp/cholesky/blas_buffers.cpp then, and which
# kernels it takes is said by lp/cholesky/blas_kernels.cpp (TOVIK_BLAS_LINK_OPTIONS).
set(TOVIK_BLAS_LINK_OPTIONS "")
if(NOT BLA_VENDOR)
  set(BLA_VENDOR OpenBLAS)
  set(BLA_STATIC ON)
  list(PREPEND CMAKE_LIBRARY_PATH /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/openblas-serial)
  find_package(BLAS QUIET)
  list(POP_FRONT CMAKE_LIBRARY_PATH)
  unset(BLA_VENDOR)
  unset(BLA_STATIC)
endif()
if(NOT BLAS_FOUND)
  find_package(BLAS REQUIRED)
endif()
if("${BLAS_LIBRARIES}" MATCHES "openblas[^;]*\\.a")
  # -u takes them out of an archive that stands before the one in need of them.
  set(TOVIK_BLAS_LINK_OPTIONS -Wl,--wrap=blas_memory_alloc,--wrap=blas_memory_free,--wrap=getenv
      -Wl,-u,__wrap_blas_memory_alloc,-u,__wrap_getenv)
  set_property(TARGET BLAS::BLAS APPEND PROPERTY INTERFACE_LINK_OPTIONS ${TOVIK_BLAS_LINK_OPTIONS})
endif()
