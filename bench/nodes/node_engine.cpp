/* The calls of a branch and bound on the simplex engine itself, without environment and problem object. */
#include <cmath>

#include "bench/nodes/engine.h"
#include "lp/simplex/relaxation.h"
#include "tests/support/quiet_control.h"

namespace bench {

namespace {

namespace simplex = tovik::lp::simplex;
using tovik::lp::Outcome;

State state_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::optimal:
      return State::optimal;
    case Outcome::infeasible:
      return State::infeasible;
    case Outcome::iteration_limit:
      return State::limit;
    default:
      return State::failed;
  }
}

class NodeEngine : public Engine {
 public:
  explicit NodeEngine(const Model& model)
      : columns_(model.lp.num_columns()), relaxation_(model.lp, simplex::Options(), control_) {}

  Solve solve_root() override { return resolve(); }

  void change_bounds(std::span<const BoundChange> changes) override {
    changes_.clear();
    for (const BoundChange& change : changes) changes_.push_back({change.column, change.lower, change.upper});
    relaxation_.change_bounds(changes_);
  }

  void add_rows(const Rows& rows) override {
    simplex::RowBlock block;
    block.entries = {columns_, rows.count(), rows.start, rows.index, rows.value};
    block.lower.assign(rows.upper.size(), -tovik::lp::kInf);
    block.upper = rows.upper;
    relaxation_.add_rows(block);
  }

  void delete_rows(std::span<const int> rows) override { relaxation_.delete_rows(rows); }

  Solve resolve() override {
    Solve solve;
    solve.state = state_of(relaxation_.resolve(control_, {}, simplex::Detail::objective));
    solve.objective = relaxation_.objective();
    solve.pivots = relaxation_.iterations();
    return solve;
  }

  std::span<const double> primal() override { return relaxation_.primal(); }

  Branches branch(std::span<const BranchPoint> points, std::int64_t limit) override {
    Branches branches;
    const simplex::Limits limits{.iterations = limit};
    for (const BranchPoint& point : points) {
      branches.down.push_back(
          probe(point.column, std::floor(point.value), simplex::Side::down, limits, branches.pivots));
      branches.up.push_back(
          probe(point.column, std::ceil(point.value), simplex::Side::up, limits, branches.pivots));
    }
    return branches;
  }

  std::vector<int> basic_variables() override {
    const std::span<const int> head = relaxation_.basis_head();
    return {head.begin(), head.end()};
  }

 private:
  double probe(int column, double bound, simplex::Side side, const simplex::Limits& limits,
               std::int64_t& pivots) {
    const simplex::BranchBound found = relaxation_.probe(control_, column, bound, side, limits);
    pivots += found.iterations;
    return found.bound;
  }

  int columns_;
  support::QuietControl control_;
  simplex::Relaxation relaxation_;
  std::vector<simplex::BoundChange> changes_;
};

}  // namespace

Contestant node_engine() {
  return {"engine", [](const Model& model) { return std::make_unique<NodeEngine>(model); }};
}

}  // namespace bench
