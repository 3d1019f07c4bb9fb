// What is learned from conflicts keeps every better solution: random dives against all leaves of small problems.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "mip/learning/conflict_analysis.h"
#include "tests/support/models.h"
#include "tests/support/planted_mip.h"
#include "tests/support/quiet_control.h"

namespace {

using namespace tovik::mip;

struct LeafValue {
  std::vector<double> x;
  double objective;
};

std::vector<LeafValue> leaves_of(const Problem& problem) {
  std::vector<LeafValue> all;
  support::EachLeaf leaves(problem, [&](const tovik::lp::LpData& lp) {
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
    if (outcome == tovik::lp::Outcome::optimal) all.push_back({solver.answer().x, solver.answer().objective});
    if (outcome == tovik::lp::Outcome::unbounded) all.push_back({lp.lower, -tovik::lp::kInf});
  });
  leaves.run();
  return all;
}

class Dives {
 public:
  Dives(const Problem& problem, support::Random& random)
      : problem_(problem), random_(random), leaves_(leaves_of(problem)), global_(problem, settings_) {
    if (!leaves_.empty() && random.chance(0.6)) {
      const double value =
          leaves_[static_cast<std::size_t>(random.below(static_cast<int>(leaves_.size())))].objective;
      if (value > -tovik::lp::kInf) global_.cutoff = value;
    }
    worker_ = std::make_unique<Worker>(
        global_, std::make_unique<tovik::lp::simplex::Relaxation>(problem.lp, settings_.lp, control_),
        control_);
    analysis_ = std::make_unique<ConflictAnalysis>(global_);
  }

  void run(int count) {
    if (!worker_->propagator.run_all(worker_->domain)) return;
    worker_->domain.commit();
    worker_->propagator.went_back(worker_->domain);
    for (int k = 0; k < count && !testing::Test::HasFailure(); ++k) {
      dive();
      worker_->backtrack(0);
      for (const GlobalBound& bound : worker_->out.bounds)
        worker_->domain.tighten(bound.column, bound.side, bound.value, {Reason::Kind::known, bound.column});
      worker_->out.bounds.clear();
      if (!worker_->propagate()) return;
      worker_->domain.commit();
      worker_->propagator.went_back(worker_->domain);
    }
  }
  int learned() const { return learned_; }
  std::int64_t moves() const { return worker_->propagator.clauses().moves(); }

 private:
  /* Decisions at random, with what reduced costs add to them, until nothing is left. */
  void dive() {
    Domain& domain = worker_->domain;
    for (;;) {
      std::vector<int> open;
      for (const int j : global_.integer_columns) {
        if (!domain.is_fixed(j)) open.push_back(j);
      }
      if (open.empty()) return;
      const int j = open[static_cast<std::size_t>(random_.below(static_cast<int>(open.size())))];
      const double middle =
          domain.lower(j) + random_.below(static_cast<int>(domain.upper(j) - domain.lower(j)));
      const Reason reason{Reason::Kind::branching, j};
      if (random_.chance(0.5)) {
        domain.tighten_upper(j, middle, reason);
      } else {
        domain.tighten_lower(j, middle + 1, reason);
      }
      if (!worker_->propagate()) return check(analysis_->learn_from_propagation(*worker_));
      if (!random_.chance(0.5) || worker_->solve({}) != tovik::lp::Outcome::optimal) continue;
      if (worker_->safe_bound() >= global_.cutoff) {
        return check(analysis_->learn_from_bound(*worker_, worker_->safe_reduced_costs(),
                                                 global_.cutoff - worker_->safe_constant(), 0));
      }
      fix_by_reduced_costs(worker_->safe_bound());
      if (!worker_->propagate()) return check(analysis_->learn_from_propagation(*worker_));
    }
  }

  void fix_by_reduced_costs(double bound) {
    if (std::isinf(bound) || std::isinf(global_.cutoff)) return;
    const std::span<const double> d = worker_->safe_reduced_costs();
    const Reason reason{Reason::Kind::reduced_cost, worker_->keep_proof()};
    Domain& domain = worker_->domain;
    for (const int j : global_.integer_columns) {
      const double room = global_.cutoff - bound;
      if (d[j] > 0) domain.tighten_upper(j, domain.lower(j) + room / d[j], reason);
      if (d[j] < 0) domain.tighten_lower(j, domain.upper(j) + room / d[j], reason);
    }
  }

  void check(bool learned) {
    if (!learned) return;
    ++learned_;
    for (const LeafValue& leaf : leaves_) {
      if (!(leaf.objective < global_.cutoff - 1e-6)) continue;
      const std::span<const BoundLiteral> clause = analysis_->clause();
      EXPECT_TRUE(std::any_of(clause.begin(), clause.end(),
                              [&](const BoundLiteral& bound) {
                                const double x = leaf.x[static_cast<std::size_t>(bound.column)];
                                return bound.side == Side::lower ? x > bound.value - 1e-6
                                                                 : x < bound.value + 1e-6;
                              }))
          << "a clause of " << clause.size() << " bounds cuts off a solution of value " << leaf.objective;
    }
  }

  const Problem& problem_;
  support::Random& random_;
  Settings settings_;
  support::QuietControl control_;
  std::vector<LeafValue> leaves_;
  Global global_;
  std::unique_ptr<Worker> worker_;
  std::unique_ptr<ConflictAnalysis> analysis_;
  int learned_ = 0;
};

TEST(ConflictAnalysis, ClausesKeepEveryBetterSolution) {
  const int count = support::models(300);
  int learned = 0;
  std::int64_t moves = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    Dives dives(problem, maker.random());
    dives.run(20);
    learned += dives.learned();
    moves += dives.moves();
  }
  EXPECT_GT(learned, count / 10);
  EXPECT_GT(moves, count / 100);
}

}  // namespace
