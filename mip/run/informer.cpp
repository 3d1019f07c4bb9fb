#include "mip/run/informer.h"

#include <utility>

#include "env/handles.h"

namespace tovik::mip::run {
namespace {

constexpr std::uint64_t kTicksBetween = 20000000;

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

void Informer::inform_now_and_then(int wherefrom) {
  if (scene_.env.work->ticks - last_ticks_ >= kTicksBetween) inform(wherefrom);
}

}  // namespace tovik::mip::run
