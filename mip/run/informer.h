/* Calls the informational callbacks of a search: at each node, after each round of cuts, with each new incumbent, and while
 * relaxations are solved whenever some work has been done since the last call. Either may ask the search to stop. */
#pragma once

#include <cstdint>

#include "mip/run/search_callback.h"
#include "mip/worker/observer.h"

namespace tovik::mip::run {

class Informer {
 public:
  explicit Informer(const CallbackScene& scene) : scene_(scene) {}

  /* wherefrom: a code of context. */
  void inform(int wherefrom);
  /* From within an algorithm, as often as it likes. */
  void inform_now_and_then();
  bool asks_to_stop() const { return asks_to_stop_; }

 private:
  const CallbackScene& scene_;
  std::uint64_t last_ticks_ = 0;
  bool asks_to_stop_ = false, is_informing_ = false;
};

}  // namespace tovik::mip::run
