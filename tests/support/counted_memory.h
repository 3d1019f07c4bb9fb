/* An operator new that counts what lives, for the one source file of a test program that includes this. */
#pragma once

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace support {

inline std::atomic<std::size_t> live_bytes{0}, most_bytes{0};

/* The most that lives at once while `work` runs, beyond what lived before. */
template <class Work>
std::size_t most_memory_of(Work&& work) {
  const std::size_t before = live_bytes;
  most_bytes = before;
  work();
  return most_bytes - before;
}

inline void* allocate(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) return nullptr;
  const std::size_t now = live_bytes += malloc_usable_size(memory);
  for (std::size_t most = most_bytes; now > most && !most_bytes.compare_exchange_weak(most, now);) {
  }
  return memory;
}
inline void release(void* memory) {
  if (memory != nullptr) live_bytes -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace support

[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = support::allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return support::allocate(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  support::release(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  support::release(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept {
  support::release(memory);
}
