/* The calls of a branch and bound through the routines that the library exports. */
#include <tovik.h>

#include <algorithm>
#include <cmath>

#include "bench/nodes/engine.h"

namespace bench {

namespace {

using tovik::lp::kInf;

double finite(double bound) {
  return std::clamp(bound, -TVK_INFBOUND, TVK_INFBOUND);
}

std::vector<double> finite(const std::vector<double>& bounds) {
  std::vector<double> result;
  for (const double bound : bounds) result.push_back(finite(bound));
  return result;
}

class ExportedRoutines : public Engine {
 public:
  explicit ExportedRoutines(const Model& model)
      : env_(TVKopenTOVIK(&code_)), lp_(TVKcreateprob(env_, &code_, model.name.c_str())) {
    TVKsetintparam(env_, TVK_PARAM_PREIND, 0);
    load(model.lp);
    x_.resize(model.lp.num_columns());
  }
  ~ExportedRoutines() override { TVKcloseTOVIK(&env_); }
  ExportedRoutines(const ExportedRoutines&) = delete;
  ExportedRoutines& operator=(const ExportedRoutines&) = delete;

  Solve solve_root() override { return resolve(); }

  void change_bounds(std::span<const BoundChange> changes) override {
    columns_.clear();
    sides_.clear();
    values_.clear();
    for (const BoundChange& change : changes) {
      columns_.insert(columns_.end(), 2, change.column);
      sides_.insert(sides_.end(), {'L', 'U'});
      values_.insert(values_.end(), {finite(change.lower), finite(change.upper)});
    }
    TVKchgbds(env_, lp_, static_cast<int>(columns_.size()), columns_.data(), sides_.data(), values_.data());
  }

  void add_rows(const Rows& rows) override {
    const std::vector<char> sense(rows.upper.size(), 'L');
    TVKaddrows(env_, lp_, 0, rows.count(), static_cast<int>(rows.index.size()), rows.upper.data(),
               sense.data(), rows.start.data(), rows.index.data(), rows.value.data(), nullptr, nullptr);
  }

  void delete_rows(std::span<const int> rows) override {
    std::vector<int> marks(TVKgetnumrows(env_, lp_));
    for (const int i : rows) marks[i] = 1;
    TVKdelsetrows(env_, lp_, marks.data());
  }

  Solve resolve() override {
    Solve solve;
    const int code = TVKdualopt(env_, lp_);
    const int status = TVKgetstat(env_, lp_);
    solve.pivots = TVKgetitcnt(env_, lp_);
    if (code == 0 && status == TVK_STATUS_OPTIMAL) {
      solve.state = State::optimal;
      TVKgetobjval(env_, lp_, &solve.objective);
    } else if (code == 0 && status == TVK_STATUS_INFEASIBLE) {
      solve.state = State::infeasible;
    }
    return solve;
  }

  std::span<const double> primal() override {
    TVKgetx(env_, lp_, x_.data(), 0, static_cast<int>(x_.size()) - 1);
    return x_;
  }

  Branches branch(std::span<const BranchPoint> points, std::int64_t limit) override {
    Branches branches;
    branches.pivots = -1;  // the routine does not tell
    columns_.clear();
    for (const BranchPoint& point : points) columns_.push_back(point.column);
    branches.down.resize(points.size());
    branches.up.resize(points.size());
    TVKstrongbranch(env_, lp_, columns_.data(), static_cast<int>(columns_.size()), branches.down.data(),
                    branches.up.data(), static_cast<int>(limit));
    for (std::vector<double>* side : {&branches.down, &branches.up}) {
      for (double& objective : *side) objective = objective >= 1e75 ? kInf : objective;
    }
    return branches;
  }

  std::vector<int> basic_variables() override {
    const int m = TVKgetnumrows(env_, lp_), n = TVKgetnumcols(env_, lp_);
    std::vector<int> column_status(n), row_status(m), basic;
    TVKgetbase(env_, lp_, column_status.data(), row_status.data());
    for (int j = 0; j < n; ++j) {
      if (column_status[j] == TVK_BASIC) basic.push_back(j);
    }
    for (int i = 0; i < m; ++i) {
      if (row_status[i] == TVK_BASIC) basic.push_back(n + i);
    }
    return basic;
  }

 private:
  void load(const tovik::lp::LpData& lp) {
    const int m = lp.num_rows(), n = lp.num_columns();
    std::vector<char> sense(m);
    std::vector<double> rhs(m), range(m);
    for (int i = 0; i < m; ++i) {
      const bool below = std::isinf(lp.row_lower[i]), above = std::isinf(lp.row_upper[i]);
      sense[i] = lp.row_lower[i] == lp.row_upper[i] ? 'E' : below ? 'L' : above ? 'G' : 'R';
      rhs[i] = below ? lp.row_upper[i] : lp.row_lower[i];
      if (sense[i] == 'R') range[i] = lp.row_upper[i] - lp.row_lower[i];
    }
    std::vector<int> count(n);
    for (int j = 0; j < n; ++j) count[j] = lp.matrix.start[j + 1] - lp.matrix.start[j];
    TVKcopylp(env_, lp_, n, m, TVK_MIN, lp.cost.data(), rhs.data(), sense.data(), lp.matrix.start.data(),
              count.data(), lp.matrix.index.data(), lp.matrix.value.data(), finite(lp.lower).data(),
              finite(lp.upper).data(), range.data());
    TVKchgobjoffset(env_, lp_, lp.offset);
  }

  int code_ = 0;
  EnvHandle env_;
  ProbHandle lp_;
  std::vector<double> x_;
  std::vector<int> columns_;
  std::vector<char> sides_;
  std::vector<double> values_;
};

}  // namespace

Contestant exported_routines() {
  return {"exported", [](const Model& model) { return std::make_unique<ExportedRoutines>(model); }};
}

}  // namespace bench
