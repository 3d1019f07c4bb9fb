/* OpenBLAS built without threads hands out its packing buffers without a lock: two threads in dgemm at once may get the same
 * one, and wrong products. The linker leads its requests here (see cmake/tovik_blas.cmake), where they take turns; the
 * products themselves run side by side. */
#include <mutex>
#include <semaphore>

namespace {

constexpr int kBuffers = 100;  // of the 128 that there are: with none left the package gives up

std::counting_semaphore<kBuffers>& available() {
  static std::counting_semaphore<kBuffers> semaphore(kBuffers);
  return semaphore;
}

std::mutex& table() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

extern "C" {
void* __real_blas_memory_alloc(int purpose);
void __real_blas_memory_free(void* buffer);

void* __wrap_blas_memory_alloc(int purpose) {
  available().acquire();
  const std::scoped_lock alone(table());
  return __real_blas_memory_alloc(purpose);
}

void __wrap_blas_memory_free(void* buffer) {
  {
    const std::scoped_lock alone(table());
    __real_blas_memory_free(buffer);
  }
  available().release();
}
}
