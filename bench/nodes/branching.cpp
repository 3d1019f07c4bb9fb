#include "bench/nodes/branching.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "bench/nodes/script.h"
#include "lp/factor/factor.h"

namespace bench {

namespace {

using tovik::lp::SparseVector;
using tovik::lp::factor::Factor;

constexpr double kTolerance = 1e-6;  // of a bound, relative
constexpr int kSolves = 200;         // timed of each kind

BranchOptimum finish(Engine& engine, const BoundChange& change) {
  engine.change_bounds({&change, 1});
  const Solve solve = engine.resolve();
  const double objective = solve.state == State::optimal      ? solve.objective
                           : solve.state == State::infeasible ? tovik::lp::kInf
                                                              : std::numeric_limits<double>::quiet_NaN();
  return {objective, solve.pivots};
}

bool exceeds(double bound, double optimum) {
  return bound > optimum + kTolerance * std::max(1.0, std::fabs(optimum));
}

/* Runs solve(k) kSolves times after preparing each; the mean time of one, the smallest of three passes. */
template <class Prepare, class Run>
double mean_us(Prepare prepare, Run run) {
  double best = tovik::lp::kInf;
  for (int pass = 0; pass < 3; ++pass) {
    const double before = processor_us();
    for (int k = 0; k < kSolves; ++k) {
      prepare(k);
      run();
    }
    best = std::min(best, processor_us() - before);
  }
  return best / kSolves;
}

std::vector<int> nonbasic_columns(const Model& model, const std::vector<int>& basic) {
  std::vector<char> is_basic(model.lp.num_columns());
  for (const int variable : basic) {
    if (variable < model.lp.num_columns()) is_basic[variable] = 1;
  }
  std::vector<int> found;
  for (int j = 0; j < model.lp.num_columns(); ++j) {
    if (!is_basic[j]) found.push_back(j);
  }
  return found;
}

void load_column(const Model& model, int j, SparseVector& v) {
  const tovik::lp::Matrix& a = model.lp.matrix;
  v.clear();
  for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
    v.array[a.index[k]] = a.value[k];
    v.index[v.count++] = a.index[k];
  }
}

}  // namespace

std::vector<Probes> probe_all(const Contestant& contestant, const Model& model,
                              std::span<const BranchPoint> points) {
  std::vector<Probes> all;
  for (const std::int64_t limit : kProbeLimits) {
    Probes best;
    for (int left = 1, first = 1; left > 0; --left, first = 0) {
      const std::unique_ptr<Engine> engine = contestant.make(model);
      const double start = processor_us();
      engine->solve_root();
      const double before = processor_us();
      Branches branches = engine->branch(points, limit);
      const double end = processor_us();
      if (first) left = repeats(end - start);
      if (first || end - before < best.us) best = {std::move(branches), end - before};
    }
    all.push_back(std::move(best));
  }
  return all;
}

std::int64_t BranchOptima::pivots_within(std::int64_t limit) const {
  std::int64_t sum = 0;
  for (const std::vector<BranchOptimum>* side : {&down, &up}) {
    for (const BranchOptimum& optimum : *side) sum += std::min(optimum.pivots, limit);
  }
  return sum;
}

BranchOptima solve_branches(const Contestant& contestant, const Model& model,
                            std::span<const BranchPoint> points) {
  BranchOptima optima;
  const std::unique_ptr<Engine> engine = contestant.make(model);
  engine->solve_root();
  for (const auto& [j, value] : points) {
    const BoundChange back{j, model.lp.lower[j], model.lp.upper[j]};
    optima.down.push_back(finish(*engine, {j, back.lower, std::floor(value)}));
    finish(*engine, back);
    optima.up.push_back(finish(*engine, {j, std::ceil(value), back.upper}));
    finish(*engine, back);
  }
  return optima;
}

std::vector<std::string> wrong_bounds(std::span<const Probes> probes, const BranchOptima& optima,
                                      std::span<const BranchPoint> points) {
  std::vector<std::string> found;
  const auto check = [&](double bound, double optimum, std::size_t k, const char* side, std::int64_t limit) {
    if (!exceeds(bound, optimum)) return;
    char text[160];
    std::snprintf(text, sizeof text, "probe of %d pivots, column %d %s: bound %.10g above the optimum %.10g",
                  static_cast<int>(limit), points[k].column, side, bound, optimum);
    found.emplace_back(text);
  };
  for (std::size_t l = 0; l < probes.size(); ++l) {
    for (std::size_t k = 0; k < points.size(); ++k) {
      check(probes[l].branches.down[k], optima.down[k].objective, k, "down", kProbeLimits[l]);
      check(probes[l].branches.up[k], optima.up[k].objective, k, "up", kProbeLimits[l]);
    }
  }
  return found;
}

BasisSolves time_basis_solves(const Model& model, std::vector<int> basic_variables) {
  BasisSolves times;
  const int m = model.lp.num_rows();
  if (static_cast<int>(basic_variables.size()) != m) return times;
  const std::vector<int> columns = nonbasic_columns(model, basic_variables);
  Factor factor(model.lp.matrix);
  factor.build(basic_variables);
  SparseVector v;
  v.resize(m);
  double density = 0;
  const auto observe = [&] { density += 0.05 * (static_cast<double>(std::max(v.count, 0)) / m - density); };
  if (!columns.empty()) {
    times.ftran_us = mean_us([&](int k) { load_column(model, columns[(k * 7919LL) % columns.size()], v); },
                             [&] {
                               factor.ftran(v, density);
                               observe();
                             });
  }
  density = 0;
  times.btran_us = mean_us(
      [&](int k) {
        v.clear();
        v.set_unit(static_cast<int>((k * 7919LL) % m));
      },
      [&] {
        factor.btran(v, density);
        observe();
      });
  return times;
}

}  // namespace bench
