/* The number of threads that an environment may use: the processors that this process may run on, at least 1.
 * The bounds of the thread parameters and TVKEgetmaxthreads answer with this one number. */
#pragma once

#include <thread>

namespace tovik {

inline int thread_limit() {
  static const int limit = static_cast<int>(std::thread::hardware_concurrency());
  return limit > 1 ? limit : 1;
}

}  // namespace tovik
