#include "env/registry.h"

#include <array>
#include <atomic>
#include <bit>
#include <mutex>
#include <new>
#include <utility>

namespace tovik {

struct HandlePlace {
  std::atomic<std::uint64_t> key{0};  // 0: no record lives here
  std::atomic<void*> record{nullptr};
  std::uint64_t number = 0, generation = 0;  // of the last key
  HandlePlace* next_free = nullptr;
};

namespace {

/* A key, from the lowest bit: kind, place, generation, and the bit that no pointer of a program has set. */
constexpr int kKindBits = 3, kPlaceBits = 26;
constexpr int kGenerationShift = kKindBits + kPlaceBits;
constexpr std::uint64_t kKindMask = (std::uint64_t{1} << kKindBits) - 1;
constexpr std::uint64_t kLastPlace = (std::uint64_t{1} << kPlaceBits) - 1;
constexpr std::uint64_t kMark = std::uint64_t{1} << 63;
constexpr std::uint64_t kLastGeneration = (std::uint64_t{1} << (63 - kGenerationShift)) - 1;
static_assert(sizeof(void*) == sizeof(std::uint64_t));

/* Places never move: they lie in blocks, each twice as long as the one before. They are never freed either: an
 * application may close its environments from a destructor of its own at exit. Few need more than the first block. */
constexpr int kFirstBlockBits = 10;
constinit std::array<HandlePlace, 1u << kFirstBlockBits> first_block{};
constinit std::array<std::atomic<HandlePlace*>, kPlaceBits - kFirstBlockBits + 1> blocks{first_block.data()};

constinit std::mutex mutex;  // guards what follows, and all changes
constinit HandlePlace* free_places = nullptr;
constinit std::uint64_t places_used = 0;  // numbers given to places so far

/* Block and offset of a place. */
struct Address {
  explicit Address(std::uint64_t place)
      : block(static_cast<int>(std::bit_width(place + (1u << kFirstBlockBits))) - 1 - kFirstBlockBits),
        offset(place + (1u << kFirstBlockBits) - (std::uint64_t{1} << (block + kFirstBlockBits))) {}
  int block;
  std::uint64_t offset;
};

HandlePlace* find_place(std::uint64_t key) noexcept {
  const Address at((key >> kKindBits) & kLastPlace);
  HandlePlace* const block = blocks[static_cast<std::size_t>(at.block)].load(std::memory_order_acquire);
  return block != nullptr ? block + at.offset : nullptr;
}

/* The place with this number, in a new block where it is the first of one. */
HandlePlace& make_place(std::uint64_t number) {
  const Address at(number);
  std::atomic<HandlePlace*>& block = blocks[static_cast<std::size_t>(at.block)];
  if (block.load(std::memory_order_relaxed) == nullptr)
    block.store(new HandlePlace[std::size_t{1} << (at.block + kFirstBlockBits)], std::memory_order_release);
  return block.load(std::memory_order_relaxed)[at.offset];
}

HandlePlace& take_place() {
  const std::lock_guard guard(mutex);
  if (free_places != nullptr) {
    HandlePlace& place = *free_places;
    free_places = place.next_free;
    return place;
  }
  if (places_used > kLastPlace) throw std::bad_alloc();
  HandlePlace& place = make_place(places_used);
  place.number = places_used++;
  return place;
}

}  // namespace

void* find_record(const void* handle, HandleKind kind) noexcept {
  const std::uint64_t key = reinterpret_cast<std::uintptr_t>(handle);
  if ((key & kKindMask) != static_cast<std::uint64_t>(kind)) return nullptr;
  const HandlePlace* const place = find_place(key);
  if (place == nullptr || place->key.load(std::memory_order_acquire) != key) return nullptr;
  return place->record.load(std::memory_order_relaxed);
}

LiveHandle::LiveHandle(void* record, HandleKind kind) : place_(take_place()) {
  const std::uint64_t key = kMark | (++place_.generation << kGenerationShift) | (place_.number << kKindBits) |
                            static_cast<std::uint64_t>(kind);
  place_.record.store(record, std::memory_order_relaxed);
  place_.key.store(key, std::memory_order_release);
}

LiveHandle::~LiveHandle() {
  place_.key.store(0, std::memory_order_release);
  place_.record.store(nullptr, std::memory_order_relaxed);
  if (place_.generation == kLastGeneration) return;
  const std::lock_guard guard(mutex);
  place_.next_free = std::exchange(free_places, &place_);
}

void* LiveHandle::value() const {
  return reinterpret_cast<void*>(place_.key.load(std::memory_order_relaxed));
}

}  // namespace tovik
