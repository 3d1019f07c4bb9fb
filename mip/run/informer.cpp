#include "mip/run/informer.h"

#include <utility>

#include "env/handles.h"
#include "include/tovik.h"

namespace tovik::mip::run {
namespace {

constexpr std::uint64_t kTicksBetween = 20000000;

int context_of(Phase phase, const Search& search) {
  switch (phase) {
    case Phase::root_relaxation:
      return TVK_CALLBACK_MIP_ROOT;
    case Phase::heuristics:
      return TVK_CALLBACK_MIP_HEURISTICS;
    case Phase::cuts:
      return search.is_at_root() ? TVK_CALLBACK_MIP_ROOT_CUTS : TVK_CALLBACK_MIP;
    default:
      return TVK_CALLBACK_MIP;
  }
}

/* Most routines are refused from the info callback. */
class InInfoCallback {
 public:
  explicit InInfoCallback(Environment& env) : env_(env) { ++env_.in_callback; }
  ~InInfoCallback() { --env_.in_callback; }
  InInfoCallback(const InInfoCallback&) = delete;
  InInfoCallback& operator=(const InInfoCallback&) = delete;

 private:
  Environment& env_;
};

}  // namespace

void Informer::inform(int wherefrom) {
  Environment& env = scene_.env;
  if (!env.callbacks.mip && !env.callbacks.info) return;
  if (std::exchange(is_informing_, true)) return;
  last_ticks_ = env.work->ticks;
  const auto call = [&](const CallbackSlot<InformFunction>& slot) {
    const Sight sight{.slot = scene_.has_search() ? scene_.search().node_in_process() : -1};
    SearchCallback context(scene_, wherefrom, {.sight = sight.slot >= 0 ? &sight : nullptr});
    return slot.function(to_handle(&env), context.cbdata_value(), wherefrom, slot.handle) != 0;
  };
  if (env.callbacks.mip) asks_to_stop_ |= call(CallbackSlot(env.callbacks.mip));
  if (env.callbacks.info) {
    const InInfoCallback refusing(env);
    asks_to_stop_ |= call(CallbackSlot(env.callbacks.info));
  }
  is_informing_ = false;
}

void Informer::inform_now_and_then() {
  if (scene_.env.work->ticks - last_ticks_ < kTicksBetween) return;
  inform(scene_.has_search() ? context_of(scene_.search().phase(), scene_.search()) : TVK_CALLBACK_MIP);
}

}  // namespace tovik::mip::run
