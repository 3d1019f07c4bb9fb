#include "mip/search/statistics.h"

#include <utility>

namespace tovik::mip {
namespace {

constexpr std::int64_t kTicksBetweenReadings = 2000000;

}  // namespace

void PhaseMeter::begin() {
  phase_ = Phase::presolve;
  last_seconds_ = 0;
}

void PhaseMeter::end() {
  enter(phase_, true);
  earlier_ += last_seconds_;
  statistics_.seconds = earlier_;
}

Phase PhaseMeter::enter(Phase phase, bool precise) {
  const std::int64_t ticks = control_.ticks() - last_ticks_;
  last_ticks_ += ticks;
  statistics_.phases[static_cast<std::size_t>(phase_)].ticks += ticks;
  unread_[static_cast<std::size_t>(phase_)] += ticks;
  unread_ticks_ += ticks;
  if (precise || unread_ticks_ >= kTicksBetweenReadings) share_out();
  return std::exchange(phase_, phase);
}

void PhaseMeter::share_out() {
  const double now = control_.seconds();
  const double passed = now - last_seconds_;
  last_seconds_ = now;
  if (unread_ticks_ == 0) {
    statistics_.phases[static_cast<std::size_t>(phase_)].seconds += passed;
    return;
  }
  for (std::size_t k = 0; k < kPhases; ++k) {
    const double share = static_cast<double>(unread_[k]) / static_cast<double>(unread_ticks_);
    statistics_.phases[k].seconds += share * passed;
  }
  unread_ = {};
  unread_ticks_ = 0;
}

}  // namespace tovik::mip
