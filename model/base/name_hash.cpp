#include "model/base/name_hash.h"

#include <sys/random.h>

#include <ctime>

namespace tovik::model {

constinit HashKey hash_key;

/* Threads that come at the same time draw the same numbers: the first store of each counts. */
void draw_hash_key() noexcept {
  std::uint64_t drawn[2] = {0, 0};
  if (::getrandom(drawn, sizeof drawn, GRND_NONBLOCK) != sizeof drawn) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    drawn[0] = static_cast<std::uint64_t>(now.tv_nsec) ^ reinterpret_cast<std::uintptr_t>(&now);
    drawn[1] = static_cast<std::uint64_t>(now.tv_nsec) * 0x9e3779b97f4a7c15u +
               static_cast<std::uint64_t>(now.tv_sec);
  }
  constexpr std::uint64_t kHighAndOdd = 0x8000000000000001u;
  std::uint64_t none = 0;
  hash_key.addend.compare_exchange_strong(none, drawn[0] | 1);
  none = 0;
  hash_key.multiplier.compare_exchange_strong(none, drawn[1] | kHighAndOdd);
}

}  // namespace tovik::model
