/* Cheap generator of the engine's own: shuffles ties and perturbations, never the user's stream. */
#pragma once

#include <cstdint>

namespace tovik::lp::simplex {

class EngineRandom {
 public:
  explicit EngineRandom(std::uint64_t seed = 1)
      : state_(seed * 0x9e3779b97f4a7c15ULL + 0x632be59bd9b4e019ULL) {}
  double real() {  // [0, 1)
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<double>(state_ >> 11) * 0x1.0p-53;
  }
  int below(int n) { return static_cast<int>(real() * n); }

 private:
  std::uint64_t state_;
};

}  // namespace tovik::lp::simplex
