#include "lp/binding/callback_frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "env/limits.h"
#include "include/tovik.h"

namespace tovik::lp::run {
namespace {

Status put(void* result, int value) {
  *static_cast<int*>(result) = value;
  return 0;
}

Status put(void* result, double value) {
  *static_cast<double*>(result) = std::isfinite(value) ? value : TVK_INFBOUND;
  return 0;
}

Status write_presolve(int item, const PresolveProgress& now, void* result) {
  switch (item) {
    case TVK_CALLBACK_INFO_ROWS_REMOVED:
      return put(result, now.rows_removed);
    case TVK_CALLBACK_INFO_COLUMNS_REMOVED:
      return put(result, now.columns_removed);
    case TVK_CALLBACK_INFO_SUBSTITUTIONS:
      return put(result, now.substitutions);
    case TVK_CALLBACK_INFO_BOUNDS_IMPROVED:
      return put(result, now.bounds_improved);
    default:
      return TVK_ERROR_BAD_ARGUMENT;
  }
}

}  // namespace

CallbackFrame::CallbackFrame(Environment& env, const void* cbdata, CalledFrom from, Numbers numbers,
                             const ProgressSource& source, double objective_sense)
    : RunningCallback(env.running_callback, cbdata, static_cast<int>(from)),
      env_(env),
      numbers_(numbers),
      source_(source),
      objective_sense_(objective_sense) {}

void CallbackFrame::measure() {
  measured_ = source_.progress();
  auto* now = std::get_if<SimplexProgress>(&*measured_);
  if (now == nullptr) return;
  if (numbers_ == Numbers::of_dual_form) {
    now->dual = !now->dual;
    std::swap(now->primal_infeasibility, now->dual_infeasibility);
    now->objective = -now->objective;
  }
  now->objective *= objective_sense_;
}

Status CallbackFrame::write_simplex(int item, const SimplexProgress& now, void* result) const {
  switch (item) {
    case TVK_CALLBACK_INFO_OBJECTIVE:
      return put(result, now.objective);
    case TVK_CALLBACK_INFO_PRIMAL_INFEAS:
      return put(result, now.primal_infeasibility);
    case TVK_CALLBACK_INFO_DUAL_INFEAS:
      return put(result, now.dual_infeasibility);
    case TVK_CALLBACK_INFO_PHASE:
      return put(result, numbers_ == Numbers::hidden ? 0 : now.phase1 ? 1 : 2);
    case TVK_CALLBACK_INFO_METHOD:
      return put(result, now.dual ? 2 : 1);
    case TVK_CALLBACK_INFO_ITERATIONS:
      return put(result, static_cast<int>(std::min<std::int64_t>(now.iterations, 2100000000)));
    default:
      return TVK_ERROR_BAD_ARGUMENT;
  }
}

Status CallbackFrame::write(int item, void* result) {
  const LimitFrame* begin = env_.limits.top();
  if (item == TVK_CALLBACK_INFO_SECONDS)
    return put(result, begin == nullptr ? 0.0 : clock_seconds(env_) - begin->begin);
  if (item == TVK_CALLBACK_INFO_TICKS)
    return put(result, begin == nullptr ? 0.0 : static_cast<double>(env_.work->ticks - begin->tick_begin));
  if (!measured_) measure();
  if (const auto* presolve = std::get_if<PresolveProgress>(&*measured_))
    return write_presolve(item, *presolve, result);
  SimplexProgress now = std::get<SimplexProgress>(*measured_);
  if (numbers_ == Numbers::hidden)
    now.objective = now.primal_infeasibility = now.dual_infeasibility = TVK_INFBOUND;
  return write_simplex(item, now, result);
}

}  // namespace tovik::lp::run
