/* OpenBLAS chooses its kernels by the processor's model when it is loaded, and takes those of 2004 for models younger than
 * itself: a quarter of the speed, on the newest machines. The linker leads its question for OPENBLAS_CORETYPE here (see
 * cmake/tovik_blas.cmake), where it is answered by what the processor can do. What the user's environment says still wins. */
#include <cstdlib>
#include <cstring>

extern "C" {
char* __real_getenv(const char* name);

char* __wrap_getenv(const char* name) {
  char* const set = __real_getenv(name);
  if (set != nullptr || std::strcmp(name, "OPENBLAS_CORETYPE") != 0) return set;
#if defined(__x86_64__)
  static char avx512[] = "SKYLAKEX", avx2[] = "HASWELL";
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
      __builtin_cpu_supports("avx512cd"))
    return avx512;
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return avx2;
#endif
  return nullptr;
}
}
