/* The environment's random generators; the streams are part of the library's repeatable behaviour. */
#pragma once

#include <cstdint>

namespace tovik {

struct Random {
  std::uint64_t state = 1;
  std::uint64_t companion = 1;
  void seed(std::uint64_t value) { state = companion = value; }
  void step() { state = state * 0x5851f42d4c957f2dULL + 0x14057b7ef767814fULL; }
  double real() {  // in [0, 1)
    step();
    return static_cast<double>((state >> 32) & 0x7fffffff) * 4.656612873077393e-10;
  }
  int integer() {
    step();
    return static_cast<int>(((state >> 32) & 0x7fffffff) % 0x80000001ULL);
  }
};

/* 15-bit values where those suffice. */
struct SmallRandom {
  std::uint32_t x = 1;
  int next() {
    x = x * 1103515245u + 12345u;
    return static_cast<int>((x >> 16) & 0x7fff);
  }
};

}  // namespace tovik
