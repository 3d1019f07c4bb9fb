/* Memory for big tables that are looked up all over: it asks the system for large pages, with which a lookup
 * does not also have to search for the page. Small tables and systems without such pages get ordinary
 * memory. */
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <new>

namespace tovik::fileio {

template <class T>
class LargePages {
 public:
  using value_type = T;
  LargePages() = default;
  template <class Other>
  explicit LargePages(const LargePages<Other>&) {}

  T* allocate(std::size_t count) {
    const std::size_t bytes = count * sizeof(T);
    void* const memory = ::operator new(bytes, alignment(bytes));
    if (bytes >= kPage) ::madvise(memory, bytes, MADV_HUGEPAGE);
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t count) { ::operator delete(memory, alignment(count * sizeof(T))); }
  friend bool operator==(LargePages, LargePages) { return true; }

 private:
  static constexpr std::size_t kPage = std::size_t{1} << 21;
  static std::align_val_t alignment(std::size_t bytes) {
    return std::align_val_t{bytes >= kPage ? kPage : alignof(T)};
  }
};

}  // namespace tovik::fileio
