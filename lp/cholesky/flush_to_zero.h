/* While it lives, numbers below the smallest normal one count as 0 on this thread. Entries of L decay along paths of the tree,
 * and arithmetic on denormal ones takes a hundred times as long. Elsewhere than on x86 it does nothing. */
#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace tovik::lp::cholesky {

class FlushToZero {
 public:
#if defined(__SSE2__)
  FlushToZero() : before_(_mm_getcsr()) {
    _mm_setcsr(before_ | kResults | kOperands);
  }
  ~FlushToZero() {
    _mm_setcsr(before_);
  }
#else
  FlushToZero() {}
#endif
  FlushToZero(const FlushToZero&) = delete;
  FlushToZero& operator=(const FlushToZero&) = delete;

 private:
#if defined(__SSE2__)
  static constexpr unsigned kResults = 0x8000, kOperands = 0x0040;  // bits of the control register
  unsigned before_;
#endif
};

}  // namespace tovik::lp::cholesky
