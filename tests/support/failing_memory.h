/* An operator new that can be told to fail, for the one source file of a test program that includes this. */
#pragma once

#include <cstdlib>
#include <new>

namespace support {

inline long allocations_until_failure = -1;  // negative: none fails

inline void* allocate(std::size_t size) {
  if (allocations_until_failure >= 0 && allocations_until_failure-- == 0) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
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
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
