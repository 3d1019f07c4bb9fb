#include "mip/cuts/flow_path.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/base/sum.h"
#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr std::size_t kLongestPath = 60;
constexpr int kLongestRow = 200;
constexpr double kNoFlow = 1e-6;
constexpr double kLeastGain = 1e-4;
constexpr double kNoise = 1e-12;      // of a side, relative
constexpr double kWidestScale = 1e4;  // of a row by the last one

}  // namespace

Verdict FlowPaths::call(Worker& worker, const Moment& moment) {
  const Problem& problem = worker.global.problem;
  if (worker.global.variable_bounds.columns().empty()) return Verdict::nothing;
  seen_.assign(static_cast<std::size_t>(problem.num_columns()), 0);
  value_.assign(static_cast<std::size_t>(problem.num_columns()), 0.0);
  path_number_ = 0;
  work_ = 0;
  bool found = false;
  for (int i = 0; i < problem.num_rows(); ++i) {
    if (work_ > moment.budget || worker.must_stop()) break;
    for (const double sign : {1.0, -1.0}) {
      if (!find_path(worker, i, sign)) continue;
      double gain = 0, most = kLeastGain;
      std::size_t rows = 0;
      for (std::size_t k = 0; k < path_.size(); ++k) {
        gain += path_[k].gain;
        if (gain <= most) continue;
        most = gain;
        rows = k + 1;
      }
      Cut cut;
      if (rows == 0 || !build(worker, rows, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  worker.out.work += work_;
  return found ? Verdict::found : Verdict::nothing;
}

/* Backwards from its last row, along the largest flow into the row that came last. */
bool FlowPaths::find_path(const Worker& worker, int last, double sign) {
  path_.clear();
  ++path_number_;
  need_ = 0;
  Step step{last, sign, -1, -1, 0, 0};
  while (path_.size() < kLongestPath && add_side(worker, step)) {
    Step before{};
    if (find_link(worker, step, &before)) step.in = before.out;
    measure(worker, step);
    path_.push_back(step);
    if (step.in < 0) break;
    step = before;
  }
  return !path_.empty();
}

/* False where the row has no such side, a column without lower bound, or one that the path has already. */
bool FlowPaths::add_side(const Worker& worker, Step& step) {
  const RelaxationRow row = worker.row(step.row);
  const double side = step.scale > 0 ? row.upper : row.lower;
  if (std::isinf(side) || static_cast<int>(row.columns.size()) > kLongestRow) return false;
  work_ += static_cast<std::int64_t>(row.columns.size());
  lp::CompensatedSum shifted;
  shifted.add(side);
  double terms = std::fabs(side);
  for (std::size_t k = 0; k < row.columns.size(); ++k) {
    const int j = row.columns[k];
    const double lower = worker.domain.global_lower(j);
    if (std::isinf(lower) || (seen_[j] == path_number_ && j != step.out)) return false;
    shifted.add_product(-row.values[k], lower);
    terms = std::max(terms, std::fabs(row.values[k] * lower));
  }
  for (const int j : row.columns) seen_[j] = path_number_;
  need_ += step.scale * shifted.value();
  need_ += kNoise * std::fabs(step.scale) * terms;
  step.need = need_;
  return true;
}

/* The largest flow into the row that comes out of another one; of a column without a switch if any. */
bool FlowPaths::find_link(const Worker& worker, const Step& step, Step* before) const {
  const RelaxationRow row = worker.row(step.row);
  const std::span<const double> x = worker.relaxation->primal();
  double best = 0;
  bool best_is_switched = true;
  for (std::size_t k = 0; k < row.columns.size(); ++k) {
    const int j = row.columns[k];
    const double a = step.scale * row.values[k];
    if (a <= 0 || j == step.out || worker.global.problem.is_integer[j] != 0) continue;
    const double flow = a * (x[j] - worker.domain.global_lower(j));
    if (flow <= kNoFlow) continue;
    const bool is_switched = find_switch(worker, j).binary >= 0;
    if (is_switched != best_is_switched ? is_switched : flow <= best) continue;
    if (!find_row(worker, j, a, before)) continue;
    best = flow;
    best_is_switched = is_switched;
  }
  return best > 0;
}

/* Another row of the column, scaled so that the column cancels. */
bool FlowPaths::find_row(const Worker& worker, int column, double a, Step* before) const {
  const lp::LpData& lp = worker.global.problem.lp;
  for (int k = lp.matrix.start[column]; k < lp.matrix.start[column + 1]; ++k) {
    const int i = lp.matrix.index[k];
    if (std::any_of(path_.begin(), path_.end(), [i](const Step& s) { return s.row == i; })) continue;
    const double scale = -a / lp.matrix.value[k];
    if (std::fabs(scale) > kWidestScale || std::fabs(scale) < 1 / kWidestScale) continue;
    if (std::isinf(scale > 0 ? lp.row_upper[i] : lp.row_lower[i])) continue;
    *before = {i, scale, column, -1, 0, 0};
    return true;
  }
  return false;
}

FlowPaths::Switch FlowPaths::find_switch(const Worker& worker, int j) const {
  const std::span<const double> x = worker.relaxation->primal();
  const auto is_binary = [&](int z) {
    return worker.domain.global_lower(z) == 0 && worker.domain.global_upper(z) == 1;
  };
  if (worker.global.problem.is_integer[j] != 0) return is_binary(j) ? Switch{j, false, x[j]} : Switch{};
  const double lower = worker.domain.global_lower(j);
  Switch best;
  for (const VariableBound& b : worker.global.variable_bounds.upper(j)) {
    const bool is_complement = b.slope < 0;
    if (b.at(is_complement ? 1 : 0) > lower || !is_binary(b.binary)) continue;
    const double y = is_complement ? 1 - x[b.binary] : x[b.binary];
    if (best.binary < 0 || y < best.value) best = {b.binary, is_complement, y};
  }
  return best;
}

/* To the violation by a column of a row: an outflow, a switched inflow, or 0. */
double FlowPaths::contribution(const Worker& worker, int j, double a, double need, Switch* found) const {
  const double flow = a * (worker.relaxation->primal()[j] - worker.domain.global_lower(j));
  if (a < 0) return flow;
  if (flow <= kNoFlow) return 0;
  *found = find_switch(worker, j);
  return found->binary < 0 ? 0 : std::max(0.0, flow - std::max(0.0, need) * found->value);
}

void FlowPaths::measure(const Worker& worker, Step& step) const {
  const RelaxationRow row = worker.row(step.row);
  for (std::size_t k = 0; k < row.columns.size(); ++k) {
    const int j = row.columns[k];
    Switch unused;
    if (j != step.out && j != step.in)
      step.gain += contribution(worker, j, step.scale * row.values[k], step.need, &unused);
  }
}

/* From the rows at the path's end. */
bool FlowPaths::build(const Worker& worker, std::size_t rows, Cut* cut) {
  lp::CompensatedSum side;
  bool any = false;
  for (std::size_t s = 0; s < rows; ++s) {
    const Step& step = path_[s];
    const double need = std::max(0.0, step.need);
    const RelaxationRow row = worker.row(step.row);
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      const int j = row.columns[k];
      // Where the path begins a flow in is one of many.
      if (j == step.out || (j == step.in && s + 1 < rows)) continue;
      const double a = step.scale * row.values[k];
      Switch y;
      if (contribution(worker, j, a, need, &y) <= 0 && a > 0) continue;
      add(j, a);
      side.add_product(a, worker.domain.global_lower(j));
      if (a < 0) continue;
      any = true;
      add(y.binary, y.is_complement ? need : -need);
      if (y.is_complement) side.add(need);
    }
  }
  std::sort(listed_.begin(), listed_.end());
  cut->kind = CutClass::flow_path;
  cut->side = side.value();
  for (const int j : listed_) {
    if (const double a = std::exchange(value_[j], 0.0); a != 0) {
      cut->columns.push_back(j);
      cut->values.push_back(a);
    }
  }
  listed_.clear();
  return any && finish_cut(worker, worker.relaxation->primal(), cut);
}

void FlowPaths::add(int j, double a) {
  if (value_[j] == 0) listed_.push_back(j);
  value_[j] += a;
}

}  // namespace tovik::mip
