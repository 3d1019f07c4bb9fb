#include "env/registry.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace tovik {
namespace {

struct Registry {
  std::mutex mutex;
  std::unordered_map<const void*, HandleKind> live;
};

/* Handles removed so far, plus 1. What a thread remembers from before a removal is void. */
constinit std::atomic<std::uint64_t> removals{1};

/* Never destroyed: an application may close its environments from a destructor of its own at exit. */
Registry& registry() {
  union Immortal {
    Registry value;
    Immortal() : value() {}
    ~Immortal() {}
  };
  static Immortal instance;
  return instance.value;
}

struct Remembered {
  const void* handle;
  std::uint64_t removals;  // count at the look-up; 0 matches none
};

constexpr int kPlaceBits = 5;
constexpr std::size_t kKinds = static_cast<std::size_t>(HandleKind::channel) + 1;
/* By kind: an environment never takes the place of its problem, with which it comes in every call. */
constinit thread_local std::array<std::array<Remembered, 1u << kPlaceBits>, kKinds> remembered{};

/* The upper bits of a product with a large odd number depend on all bits of the handle. */
Remembered& place_of(const void* handle, HandleKind kind) {
  const std::uint64_t bits = reinterpret_cast<std::uintptr_t>(handle);
  return remembered[static_cast<std::size_t>(kind)][(bits * 0x9e3779b97f4a7c15u) >> (64 - kPlaceBits)];
}

}  // namespace

bool is_live(const void* handle, HandleKind kind) noexcept {
  if (handle == nullptr) return false;
  Remembered& place = place_of(handle, kind);
  if (place.handle == handle && place.removals == removals.load(std::memory_order_acquire)) {
    return true;
  }
  Registry& all = registry();
  std::lock_guard guard(all.mutex);
  const auto found = all.live.find(handle);
  if (found == all.live.end() || found->second != kind) return false;
  place = {handle, removals.load(std::memory_order_relaxed)};
  return true;
}

LiveHandle::LiveHandle(const void* record, HandleKind kind) : record_(record) {
  Registry& all = registry();
  std::lock_guard guard(all.mutex);
  all.live.emplace(record, kind);
}

LiveHandle::~LiveHandle() {
  Registry& all = registry();
  std::lock_guard guard(all.mutex);
  all.live.erase(record_);
  removals.fetch_add(1, std::memory_order_release);
}

}  // namespace tovik
