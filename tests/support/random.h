/* The randomness of a test. TRACE_RANDOM tells the seed with each check that fails.
 * Fixed seeds make one run like the next; fresh_seed() gives every run models of its own, and the environment
 * variable TOVIK_TEST_SEED repeats one of them. */
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace support {

class Random {
 public:
  explicit Random(unsigned seed) : seed_(seed), engine_(seed) {}

  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  bool chance(double p) { return std::bernoulli_distribution(p)(engine_); }
  double uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  unsigned seed() const { return seed_; }
  std::mt19937& engine() { return engine_; }

 private:
  unsigned seed_;
  std::mt19937 engine_;
};

inline unsigned fresh_seed() {
  static const char* const wanted = std::getenv("TOVIK_TEST_SEED");
  static const unsigned seed =
      wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : std::random_device()();
  return seed;
}

}  // namespace support

/* Tells the seed and the round with each failure of the scope. */
#define TRACE_RANDOM(random, round) \
  SCOPED_TRACE(::testing::Message() << "seed " << (random).seed() << ", round " << (round))
