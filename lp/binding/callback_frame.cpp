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

int count_of(std::int64_t count) {
  return static_cast<int>(std::min<std::int64_t>(count, 2100000000));
}

Status write_barrier(int item, const BarrierProgress& now, void* result) {
  switch (item) {
    case TVK_CALLBACK_INFO_OBJECTIVE:
      return put(result, now.primal_objective);
    case TVK_CALLBACK_INFO_DUAL_OBJECTIVE:
      return put(result, now.dual_objective);
    case TVK_CALLBACK_INFO_PRIMAL_INFEAS:
      return put(result, now.primal_infeasibility);
    case TVK_CALLBACK_INFO_DUAL_INFEAS:
      return put(result, now.dual_infeasibility);
    case TVK_CALLBACK_INFO_ITERATIONS:
      return put(result, count_of(now.iterations));
    default:
      return TVK_ERROR_BAD_ARGUMENT;
  }
}

Status write_crossover(int item, const CrossoverProgress& now, void* result) {
  switch (item) {
    case TVK_CALLBACK_INFO_ITERATIONS:
      return put(result, count_of(now.exchanges));
    case TVK_CALLBACK_INFO_PUSHES_LEFT:
      return put(result, now.left);
    default:
      return TVK_ERROR_BAD_ARGUMENT;
  }
}

}  // namespace

CallbackFrame::CallbackFrame(Environment& env, const void* cbdata, Numbers numbers,
                             const ProgressSource& source, double objective_sense)
    : RunningCallback(env.running_callback, cbdata, static_cast<int>(source.origin())),
      env_(env),
      numbers_(numbers),
      source_(source),
      objective_sense_(objective_sense) {}

void CallbackFrame::measure_barrier(BarrierProgress& now) const {
  if (numbers_ == Numbers::of_dual_form) {
    std::swap(now.primal_infeasibility, now.dual_infeasibility);
    std::swap(now.primal_objective, now.dual_objective);
    now.primal_objective = -now.primal_objective;
    now.dual_objective = -now.dual_objective;
  }
  now.primal_objective *= objective_sense_;
  now.dual_objective *= objective_sense_;
}

void CallbackFrame::measure() {
  measured_ = source_.progress();
  if (auto* barrier = std::get_if<BarrierProgress>(&*measured_)) measure_barrier(*barrier);
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
      return put(result, count_of(now.iterations));
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
  if (const auto* barrier = std::get_if<BarrierProgress>(&*measured_))
    return write_barrier(item, *barrier, result);
  if (const auto* crossover = std::get_if<CrossoverProgress>(&*measured_))
    return write_crossover(item, *crossover, result);
  SimplexProgress now = std::get<SimplexProgress>(*measured_);
  if (numbers_ == Numbers::hidden)
    now.objective = now.primal_infeasibility = now.dual_infeasibility = TVK_INFBOUND;
  return write_simplex(item, now, result);
}

}  // namespace tovik::lp::run
