#include "cli/solve/evidence.h"

#include <algorithm>
#include <cmath>

#include "cli/model_data.h"
#include "cli/sum.h"

namespace tovik::cli {

namespace {

constexpr double kCancelled = 1e-9;  // relative: what is left of a sum whose terms cancel

void largest_first(std::vector<ProofPart>& parts) {
  std::ranges::stable_sort(
      parts, [](const ProofPart& a, const ProofPart& b) { return std::abs(a.weight) > std::abs(b.weight); });
}

/* Where a column's own bounds cross no multiplier is needed. */
void crossed_bounds(const Model& model, const Limits& bounds, Proof& proof) {
  for (int j = 0; j < model.columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    if (!(bounds.lower[at] > bounds.upper[at])) continue;
    proof.bounds.push_back({model.column_name(j), '>', bounds.lower[at], 1});
    proof.bounds.push_back({model.column_name(j), '<', bounds.upper[at], 1});
    return;  // one is enough
  }
}

}  // namespace

Proof proof_of_infeasibility(const Model& model, Console& console) {
  Proof proof;
  std::vector<double> y(static_cast<std::size_t>(model.rows()) + 1);
  const Console::Silence silence(console);
  if (TVKgetfarkas(model.environment().handle(), model.handle(), y.data(), &proof.gap) != 0) return proof;
  const Limits rows = row_limits(model), bounds = column_bounds(model);
  for (int i = 0; i < model.rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (y[at] == 0) continue;
    const bool lower = y[at] > 0;
    const char side = rows.lower[at] == rows.upper[at] ? '=' : lower ? '>' : '<';
    proof.rows.push_back({model.row_name(i), side, lower ? rows.lower[at] : rows.upper[at], y[at]});
  }
  for_each_column(model, [&](int j, const Slice& entries) {
    Sum reach;
    for (std::size_t k = 0; k < entries.index.size(); ++k)
      reach.add(entries.value[k], y[static_cast<std::size_t>(entries.index[k])]);
    const double weight = reach.value();
    if (std::abs(weight) <= kCancelled * reach.magnitude()) return;
    const auto at = static_cast<std::size_t>(j);
    proof.bounds.push_back({model.column_name(j), weight > 0 ? '<' : '>',
                            weight > 0 ? bounds.upper[at] : bounds.lower[at], weight});
  });
  if (proof.rows.empty()) {
    proof.bounds.clear();
    crossed_bounds(model, bounds, proof);
  }
  largest_first(proof.rows);
  largest_first(proof.bounds);
  return proof;
}

std::vector<Movement> ray_of(const Model& model, Console& console) {
  std::vector<Movement> movements;
  std::vector<double> ray(static_cast<std::size_t>(model.columns()) + 1);
  const Console::Silence silence(console);
  if (TVKgetray(model.environment().handle(), model.handle(), ray.data()) != 0) return movements;
  for (int j = 0; j < model.columns(); ++j) {
    const double rate = ray[static_cast<std::size_t>(j)];
    if (rate != 0) movements.push_back({model.column_name(j), rate});
  }
  std::ranges::stable_sort(
      movements, [](const Movement& a, const Movement& b) { return std::abs(a.rate) > std::abs(b.rate); });
  return movements;
}

}  // namespace tovik::cli
