#include "mip/presolve/presolve.h"

#include <algorithm>
#include <string>
#include <utility>

#include "lp/presolve/parallel_rows.h"
#include "mip/domain/point.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

constexpr int kRounds = 20;
constexpr int kFastRounds = 50;        // of rows and columns
constexpr double kLeastShare = 0.005;  // of what is left, by which a round must reduce it

class Presolver {
 public:
  Presolver(const Problem& problem, const PresolveSettings& settings, const Tolerances& tolerances,
            lp::Control& control, const Witness& witness)
      : state_(problem, settings, tolerances, control), witness_(witness) {}

  Presolved run() {
    if (state_.settings().on) rounds();
    state_.ws().control.add_work(static_cast<std::uint64_t>(state_.ws().work()));
    return result();
  }

 private:
  void rounds() {
    const int wanted = state_.settings().passes;
    const int most = wanted < 0 ? kRounds : wanted;
    for (int round = 0; round < most && state_.goes_on(); ++round) {
      ++state_.counts.rounds;
      const double before = progress();
      one_round();
      if (round == 0) {
        probe(state_);
        watch("probing");
      }
      const lp::presolve::Workspace& ws = state_.ws();
      if (progress() - before < kLeastShare * (ws.rows_left() + ws.columns_left() + 1)) break;
    }
    fast_rounds();
  }

  /* What was done, in rows and columns; the lesser things count for a part of one. */
  double progress() {
    const lp::presolve::Workspace& ws = state_.ws();
    const PresolveCounts& c = state_.counts;
    return -static_cast<double>(ws.rows_left()) - ws.columns_left() + 0.1 * c.coefficients_modified +
           0.05 * (c.bounds_improved + c.sides_improved);
  }

  void one_round() {
    fast_rounds();
    watch("rows and columns");
    propagate_bounds(state_);
    watch("propagation");
    reduce_objects(state_);
    fast_rounds();
    watch("objects");
    if (state_.allows(PresolveRule::parallel_rows)) lp::presolve::merge_parallel_rows(state_.ws());
    watch("parallel rows");
    reduce_divisors(state_);
    fast_rounds();
    watch("divisors");
    tighten_coefficients(state_);
    fast_rounds();
    watch("coefficients");
    now_and_then(dominated_rows_, remove_dominated_rows);
    watch("dominated rows");
    now_and_then(cliques_, merge_cliques);
    watch("cliques");
    reduce_parallel_columns(state_);
    fast_rounds();
    watch("parallel columns");
    now_and_then(dominated_columns_, fix_dominated_columns);
    watch("dominated columns");
    aggregate(state_);
    fast_rounds();
    watch("aggregator");
    find_implied_integers(state_);
  }

  /* A rule that looks at much: where it finds nothing it waits for ever more rounds. */
  struct Occasion {
    int failures = 0, wait = 0;
  };
  void now_and_then(Occasion& occasion, void (*rule)(PresolveState&)) {
    if (occasion.wait-- > 0) return;
    const double before = progress();
    rule(state_);
    fast_rounds();
    occasion.failures = progress() > before ? 0 : occasion.failures + 1;
    occasion.wait = occasion.failures - 1;
  }

  /* Whether the witness is still there; `rule` is what was done last. */
  void watch(const char* rule) {
    constexpr double kTolerance = 1e-5;
    if (!witness_.is_watched() || is_lost_) return;
    std::vector<int> row_map, column_map;
    const Problem left = state_.extract(row_map, column_map);
    Postsolve way = state_.postsolve;
    way.finish(std::move(column_map), std::move(row_map));
    const PointViolation v = measure(left, way.crush(witness_.x));
    is_lost_ = state_.is_infeasible() || std::max({v.integrality, v.primal(), v.object}) > kTolerance;
    if (is_lost_) witness_.complain(std::string("presolve: ") + rule);
  }

  void fast_rounds() {
    for (int k = 0; k < kFastRounds && state_.ws().queued() && state_.goes_on(); ++k) {
      reduce_rows(state_);
      reduce_columns(state_);
    }
  }

  Presolved result() {
    state_.goes_on();  // what a rule of LPs has found counts
    Presolved out{{},
                  std::move(state_.postsolve),
                  state_.counts,
                  state_.finding(),
                  state_.is_infeasible(),
                  state_.was_stopped()};
    const lp::presolve::Counts& c = state_.ws().counts;
    out.counts.rows_eliminated += c.rows_eliminated;
    out.counts.columns_eliminated += c.columns_eliminated;
    out.counts.work = state_.ws().work();
    if (out.infeasible) return out;
    std::vector<int> row_map, column_map;
    out.problem = state_.extract(row_map, column_map);
    out.postsolve.finish(std::move(column_map), std::move(row_map));
    return out;
  }

  PresolveState state_;
  Occasion dominated_rows_, cliques_, dominated_columns_;
  const Witness& witness_;
  bool is_lost_ = false;  // the witness
};

}  // namespace

Presolved presolve(const Problem& problem, const PresolveSettings& settings, const Tolerances& tolerances,
                   lp::Control& control, const Witness& witness) {
  PresolveSettings allowed = settings;
  if (witness.is_watched()) allowed.dual = false;
  return Presolver(problem, allowed, tolerances, control, witness).run();
}

}  // namespace tovik::mip
