// The engine of a search against a cold solve of the same data: sequences of edits, probes, checkpoints and
// forks.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lp/simplex/checkpoint.h"
#include "lp/simplex/relaxation.h"
#include "tests/support/lp_mirror.h"
#include "tests/support/quiet_control.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::LpMirror;
using support::pick;
using support::Random;

struct Truth {
  Outcome outcome;
  double objective;
};

Truth solve_cold(const LpMirror& lp) {
  support::QuietControl control;
  simplex::Solver solver(lp.data(), Options{}, control, nullptr);
  const Outcome outcome = solver.solve(Method::dual);
  return {outcome, solver.answer().objective};
}

bool has_no_optimum(Outcome o) {
  return o == Outcome::infeasible || o == Outcome::unbounded || o == Outcome::infeasible_or_unbounded;
}

double tolerance(double objective) {
  return 1e-5 * (1 + std::fabs(objective));
}

class Sequence {
 public:
  explicit Sequence(std::uint64_t seed) : random_(seed), lp_(LpMirror::random(random_)) {
    engine_ = std::make_unique<Relaxation>(lp_.data(), Options{}, control_);
  }

  void run(int edits) {
    compare();
    for (step_ = 0; step_ < edits && !::testing::Test::HasFailure(); ++step_) {
      edit();
      if (pick(random_, 0, 2) != 0) compare();
    }
    compare();
  }

 private:
  void bounds() {
    std::vector<BoundChange> changes;
    for (int k = pick(random_, 1, 3); k > 0; --k) {
      const int j = pick(random_, 0, lp_.num_columns() - 1);
      LpMirror::random_bounds(random_, lp_.lower[j], lp_.upper[j]);
      if (pick(random_, 0, 19) == 0) std::swap(lp_.lower[j], lp_.upper[j]);
      if (lp_.lower[j] == kInf || lp_.upper[j] == -kInf) lp_.lower[j] = 0, lp_.upper[j] = 1;
      changes.push_back({j, lp_.lower[j], lp_.upper[j]});
    }
    engine_->change_bounds(changes);
  }
  void costs() {
    std::vector<CostChange> changes;
    for (int k = pick(random_, 1, 3); k > 0; --k) {
      const int j = pick(random_, 0, lp_.num_columns() - 1);
      lp_.cost[j] = support::number(random_);
      changes.push_back({j, lp_.cost[j]});
    }
    engine_->change_costs(changes);
  }
  void sides() {
    if (lp_.num_rows() == 0) return;
    const int i = pick(random_, 0, lp_.num_rows() - 1);
    lp_.random_sides(random_, lp_.rows[i], lp_.row_lower[i], lp_.row_upper[i]);
    engine_->change_row_bounds(i, lp_.row_lower[i], lp_.row_upper[i]);
  }
  void add_rows() {
    if (lp_.num_rows() > 14) return;
    const int first = lp_.num_rows();
    for (int k = pick(random_, 1, 3); k > 0; --k) lp_.add_row(random_);
    RowBlock block;
    LpMirror part;
    part.cost = lp_.cost;
    part.rows.assign(lp_.rows.begin() + first, lp_.rows.end());
    block.entries = part.by_rows();
    block.lower.assign(lp_.row_lower.begin() + first, lp_.row_lower.end());
    block.upper.assign(lp_.row_upper.begin() + first, lp_.row_upper.end());
    engine_->add_rows(block);
    saved_.reset();
  }
  void delete_rows() {
    const std::vector<int> gone = support::some_of(random_, lp_.num_rows(), 3);
    if (gone.empty()) return;
    lp_.delete_rows(gone);
    engine_->delete_rows(gone);
    saved_.reset();
  }
  void delete_columns() {
    if (lp_.num_columns() < 4) return;
    const std::vector<int> gone = support::some_of(random_, lp_.num_columns(), 1);
    if (gone.empty()) return;
    lp_.delete_columns(gone);
    engine_->delete_columns(gone);
    saved_.reset();
  }
  void save() {
    saved_ = engine_->save();
    saved_lp_ = lp_;
  }
  void restore() {
    if (saved_ == nullptr) return;
    ASSERT_TRUE(engine_->restore(*saved_));
    lp_ = saved_lp_;
  }
  void fork() { engine_ = engine_->fork(); }
  void new_basis() {
    const Basis basis = engine_->basis();
    engine_->set_basis(basis);
  }
  void limited() {
    Limits limits;
    limits.iterations = pick(random_, 0, 2);
    if (pick(random_, 0, 1) == 0) limits.cutoff = support::number(random_);
    const Outcome outcome = engine_->resolve(control_, limits, Detail::objective);
    EXPECT_NE(outcome, Outcome::numerical_failure) << step_;
    EXPECT_NE(outcome, Outcome::singular) << step_;
    if (outcome == Outcome::objective_limit) {
      const Truth truth = solve_cold(lp_);
      if (truth.outcome == Outcome::optimal) {
        EXPECT_GE(truth.objective, limits.cutoff - tolerance(limits.cutoff)) << "cut off, step " << step_;
      }
    }
  }
  void probe() {
    const Truth now = compare();
    if (now.outcome != Outcome::optimal || ::testing::Test::HasFailure()) return;
    const int j = pick(random_, 0, lp_.num_columns() - 1);
    const Side side = pick(random_, 0, 1) == 0 ? Side::down : Side::up;
    const double x = engine_->primal()[j];
    const double bound = side == Side::down ? std::floor(x - 0.25) : std::ceil(x + 0.25);
    Limits limits;
    limits.iterations = pick(random_, 0, 4) == 0 ? 100000 : pick(random_, 0, 3);
    const BranchBound found = engine_->probe(control_, j, bound, side, limits);
    LpMirror branch = lp_;
    if (side == Side::down) branch.upper[j] = std::min(branch.upper[j], bound);
    if (side == Side::up) branch.lower[j] = std::max(branch.lower[j], bound);
    const Truth truth = solve_cold(branch);
    if (truth.outcome == Outcome::optimal) {
      EXPECT_LE(found.bound, truth.objective + tolerance(truth.objective)) << "probe, step " << step_;
      EXPECT_NE(found.outcome, Outcome::infeasible) << step_;
    }
    engine_->resolve(control_, {}, Detail::objective);
    EXPECT_EQ(engine_->iterations(), 0) << "a probe moved the optimum, step " << step_;
    compare();
  }
  void tableau() {
    const Truth now = compare();
    if (now.outcome != Outcome::optimal || lp_.num_rows() == 0) return;
    const int p = pick(random_, 0, lp_.num_rows() - 1);
    SparseEntries weights, columns;
    engine_->tableau_row(p, weights, &columns);
    std::vector<double> sum(lp_.cost.size(), 0.0), size(lp_.cost.size(), 1.0);
    for (size_t k = 0; k < weights.index.size(); ++k) {
      for (const auto& e : lp_.rows[weights.index[k]]) {
        sum[e.column] += weights.value[k] * e.value;
        size[e.column] += std::fabs(weights.value[k] * e.value);
      }
    }
    for (size_t k = 0; k < columns.index.size(); ++k) sum[columns.index[k]] -= columns.value[k];
    const int basic = engine_->basis_head()[p];
    if (basic < lp_.num_columns()) sum[basic] -= 1;
    for (size_t j = 0; j < sum.size(); ++j)
      EXPECT_NEAR(sum[j], 0, 1e-7 * size[j]) << "tableau, step " << step_;
  }
  void edit() {
    switch (pick(random_, 0, 15)) {
      case 0:
        return costs();
      case 1:
        return sides();
      case 2:
        return add_rows();
      case 3:
        return delete_rows();
      case 4:
        return delete_columns();
      case 5:
        return save();
      case 6:
        return restore();
      case 7:
        return fork();
      case 8:
        return new_basis();
      case 9:
        return limited();
      case 10:
        return probe();
      case 11:
        return tableau();
      default:
        return bounds();
    }
  }

  Truth compare() {
    const Detail detail = pick(random_, 0, 3) == 0 ? Detail::verified : Detail::primal_dual;
    const Outcome outcome = engine_->resolve(control_, {}, detail);
    const Truth truth = solve_cold(lp_);
    const std::string where = "step " + std::to_string(step_) + " hot " +
                              std::to_string(static_cast<int>(outcome)) + " cold " +
                              std::to_string(static_cast<int>(truth.outcome));
    if (truth.outcome == Outcome::optimal) {
      EXPECT_EQ(outcome, Outcome::optimal) << where;
      if (outcome != Outcome::optimal) return truth;
      EXPECT_NEAR(engine_->objective(), truth.objective, tolerance(truth.objective)) << where;
      EXPECT_LE(lp_.violation(engine_->primal()), 1e-6) << where;
      EXPECT_NEAR(lp_.objective(engine_->primal()), engine_->objective(), tolerance(truth.objective))
          << where;
      EXPECT_LE(engine_->safe_bound(), truth.objective + tolerance(truth.objective)) << where;
      return truth;
    }
    if (has_no_optimum(truth.outcome)) {
      EXPECT_TRUE(has_no_optimum(outcome)) << where;
      if (outcome == Outcome::infeasible && detail == Detail::verified) {
        EXPECT_NE(engine_->farkas(), nullptr) << where;
      }
    }
    return truth;
  }

  Random random_;
  support::QuietControl control_;
  LpMirror lp_, saved_lp_;
  std::unique_ptr<Relaxation> engine_;
  std::shared_ptr<const Relaxation::Checkpoint> saved_;
  int step_ = 0;
};

/* TOVIK_SEQUENCES: how many; more than the usual number is for a night. */
TEST(RelaxationSequences, HotAndColdAgree) {
  const char* wanted = std::getenv("TOVIK_SEQUENCES");
  const int sequences = wanted != nullptr ? std::atoi(wanted) : 150;
  for (int seed = 1; seed <= sequences && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Sequence(static_cast<std::uint64_t>(seed)).run(200);
  }
}

}  // namespace
