// What is done to a node, by settings, before its relaxation is solved in the usual way and its cuts are made.
#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/presolve.h"
#include "lp/simplex/solver.h"
#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr int kProbes = 50;  // columns at a node

/* With its entries, which an engine has in a form of its own. */
lp::LpData lp_of(const lp::simplex::Relaxation& relaxation) {
  lp::LpData whole = relaxation.user_lp();
  lp::Matrix& matrix = whole.matrix;
  matrix.start.assign(1, 0);
  matrix.index.clear();
  matrix.value.clear();
  for (int j = 0; j < matrix.columns; ++j) {
    relaxation.each_entry(j, [&](int row, double value) {
      matrix.index.push_back(row);
      matrix.value.push_back(value);
    });
    matrix.start.push_back(static_cast<int>(matrix.index.size()));
  }
  return whole;
}

}  // namespace

/* Whatever comes of it, the usual way goes on from there. */
void Search::solve_first() {
  const Settings& settings = global_.settings;
  if (nodes_ > 0) return solve_first_by(settings.node_method);
  if (worker_.iterations > 0) return;
  if (settings.root_presolve) solve_root_presolved();
  solve_first_by(settings.root_method);
}

void Search::solve_first_by(FirstMethod method) {
  if (method == FirstMethod::dual) return;
  worker_.flush();
  const Settings& settings = global_.settings;
  lp::simplex::Relaxation& relaxation = *worker_.relaxation;
  lp::simplex::Options options = settings.lp;
  if (method == FirstMethod::sifting) options.sifting = lp::simplex::Sifting::always;
  relaxation.set_options(options);
  relaxation.solve(method == FirstMethod::primal ? lp::Method::primal : lp::Method::dual);
  worker_.iterations += relaxation.counters().iterations;
  relaxation.set_options(settings.lp);
}

/* The optimal basis of what presolve for LPs leaves of the root's relaxation is where its solve begins. */
void Search::solve_root_presolved() {
  worker_.flush();
  lp::simplex::Relaxation& relaxation = *worker_.relaxation;
  const lp::LpData whole = lp_of(relaxation);
  const lp::presolve::Reduction reduced = lp::presolve::presolve(whole, {}, control_, {}, false);
  if (!reduced.changed || reduced.status.code != lp::presolve::StatusCode::reduced ||
      reduced.stop != lp::Stop::none)
    return;
  lp::Answer answer;
  if (reduced.lp.num_columns() > 0) {
    lp::simplex::Solver solver(reduced.lp, global_.settings.lp, control_, nullptr);
    const lp::Outcome outcome = solver.solve(lp::Method::dual);
    worker_.iterations += solver.counters().iterations;
    if (outcome != lp::Outcome::optimal) return;
    answer = solver.answer();
  }
  const lp::Answer found = lp::presolve::postsolve(whole, reduced, answer);
  relaxation.set_basis(found.column_status, found.row_status);
}

/* Both values of binary columns that are between are tried by propagation, those farthest from whole first. False when
 * neither is possible for one of them: the node is empty. */
bool Search::probe_node(const Shortfall& shortfall) {
  Domain& domain = worker_.domain;
  std::vector<Fraction> candidates;
  for (const Fraction& f : shortfall.fractions) {
    if (domain.is_binary(f.column)) candidates.push_back(f);
  }
  std::stable_sort(candidates.begin(), candidates.end(), [](const Fraction& a, const Fraction& b) {
    return std::fabs(a.value - 0.5) < std::fabs(b.value - 0.5);
  });
  if (candidates.size() > kProbes) candidates.resize(kProbes);
  const auto is_possible = [&](int j, double value) {
    const int before = domain.position();
    domain.fix(j, value, {Reason::Kind::probing, j});
    const bool possible = worker_.propagate();
    worker_.backtrack(before);
    return possible;
  };
  for (const Fraction& f : candidates) {
    if (worker_.must_stop()) break;
    if (domain.is_fixed(f.column)) continue;
    const double nearer = std::round(f.value);
    for (const double value : {1 - nearer, nearer}) {
      if (is_possible(f.column, value)) continue;
      domain.fix(f.column, 1 - value, {Reason::Kind::probing, f.column});
      if (!worker_.propagate()) return false;
      break;
    }
  }
  return true;
}

}  // namespace tovik::mip
