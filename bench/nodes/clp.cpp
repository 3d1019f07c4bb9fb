/* The calls of a branch and bound through the C interface of CLP's shared library, loaded at run time.
 *
 * Bounds are written where the library keeps them; each re-solve is its dual simplex from the statuses of the
 * last, without presolve. The interface has no hot start and no strong branching: a probe is a dual of so
 * many iterations, after which the statuses of the optimum are put back. */
#include <dlfcn.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "bench/nodes/engine.h"

namespace bench {

namespace {

using tovik::lp::kInf;

struct ClpModel;  // the library's own

/* The routines used; each is null until load(). */
struct Library {
  ClpModel* (*newModel)() = nullptr;
  void (*deleteModel)(ClpModel*) = nullptr;
  void (*setLogLevel)(ClpModel*, int) = nullptr;
  void (*loadProblem)(ClpModel*, int columns, int rows, const int* start, const int* index,
                      const double* value, const double* lower, const double* upper, const double* cost,
                      const double* row_lower, const double* row_upper) = nullptr;
  double* (*columnLower)(ClpModel*) = nullptr;
  double* (*columnUpper)(ClpModel*) = nullptr;
  void (*addRows)(ClpModel*, int count, const double* lower, const double* upper, const int* start,
                  const int* index, const double* value) = nullptr;
  void (*deleteRows)(ClpModel*, int count, const int* which) = nullptr;
  int (*dual)(ClpModel*, int if_values_pass) = nullptr;
  int (*status)(ClpModel*) = nullptr;
  double (*objectiveValue)(ClpModel*) = nullptr;
  int (*numberIterations)(ClpModel*) = nullptr;
  int (*numberRows)(ClpModel*) = nullptr;
  int (*numberColumns)(ClpModel*) = nullptr;
  void (*setMaximumIterations)(ClpModel*, int) = nullptr;
  double* (*primalColumnSolution)(ClpModel*) = nullptr;
  unsigned char* (*statusArray)(ClpModel*) = nullptr;
  void (*copyinStatus)(ClpModel*, const unsigned char*) = nullptr;

  bool load() {
    void* const handle = dlopen("libClp.so.1", RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return false;
    bool found = true;
    const auto find = [&](auto& routine, const char* name) {
      routine = reinterpret_cast<std::remove_reference_t<decltype(routine)>>(dlsym(handle, name));
      found = found && routine != nullptr;
    };
    find(newModel, "Clp_newModel");
    find(deleteModel, "Clp_deleteModel");
    find(setLogLevel, "Clp_setLogLevel");
    find(loadProblem, "Clp_loadProblem");
    find(columnLower, "Clp_columnLower");
    find(columnUpper, "Clp_columnUpper");
    find(addRows, "Clp_addRows");
    find(deleteRows, "Clp_deleteRows");
    find(dual, "Clp_dual");
    find(status, "Clp_status");
    find(objectiveValue, "Clp_objectiveValue");
    find(numberIterations, "Clp_numberIterations");
    find(numberRows, "Clp_numberRows");
    find(numberColumns, "Clp_numberColumns");
    find(setMaximumIterations, "Clp_setMaximumIterations");
    find(primalColumnSolution, "Clp_primalColumnSolution");
    find(statusArray, "Clp_statusArray");
    find(copyinStatus, "Clp_copyinStatus");
    return found;
  }
};

enum Status { kOptimal = 0, kInfeasible = 1, kStopped = 3 };
constexpr int kNoLimit = 2147483647;

std::vector<double> finite(const std::vector<double>& bounds) {
  std::vector<double> result;
  for (const double bound : bounds) result.push_back(std::clamp(bound, -DBL_MAX, DBL_MAX));
  return result;
}

class Clp : public Engine {
 public:
  Clp(const Library& library, const Model& model)
      : clp_(library), model_(library.newModel()), offset_(model.lp.offset) {
    const tovik::lp::LpData& lp = model.lp;
    clp_.setLogLevel(model_, 0);
    clp_.loadProblem(model_, lp.num_columns(), lp.num_rows(), lp.matrix.start.data(), lp.matrix.index.data(),
                     lp.matrix.value.data(), finite(lp.lower).data(), finite(lp.upper).data(), lp.cost.data(),
                     finite(lp.row_lower).data(), finite(lp.row_upper).data());
  }
  ~Clp() override { clp_.deleteModel(model_); }
  Clp(const Clp&) = delete;
  Clp& operator=(const Clp&) = delete;

  Solve solve_root() override { return resolve(); }

  void change_bounds(std::span<const BoundChange> changes) override {
    double* const lower = clp_.columnLower(model_);
    double* const upper = clp_.columnUpper(model_);
    for (const BoundChange& change : changes) {
      lower[change.column] = std::max(change.lower, -DBL_MAX);
      upper[change.column] = std::min(change.upper, DBL_MAX);
    }
  }

  void add_rows(const Rows& rows) override {
    const std::vector<double> lower(rows.upper.size(), -DBL_MAX);
    clp_.addRows(model_, rows.count(), lower.data(), rows.upper.data(), rows.start.data(), rows.index.data(),
                 rows.value.data());
  }

  void delete_rows(std::span<const int> rows) override {
    clp_.deleteRows(model_, static_cast<int>(rows.size()), rows.data());
  }

  Solve resolve() override {
    Solve solve;
    clp_.dual(model_, 0);
    solve.pivots = clp_.numberIterations(model_);
    const int status = clp_.status(model_);
    solve.state = status == kOptimal      ? State::optimal
                  : status == kInfeasible ? State::infeasible
                  : status == kStopped    ? State::limit
                                          : State::failed;
    solve.objective = clp_.objectiveValue(model_) + offset_;
    return solve;
  }

  std::span<const double> primal() override {
    return {clp_.primalColumnSolution(model_), static_cast<std::size_t>(clp_.numberColumns(model_))};
  }

  Branches branch(std::span<const BranchPoint> points, std::int64_t limit) override {
    Branches branches;
    const int variables = clp_.numberRows(model_) + clp_.numberColumns(model_);
    const unsigned char* const now = clp_.statusArray(model_);
    const std::vector<unsigned char> optimum(now, now + variables);
    clp_.setMaximumIterations(model_, static_cast<int>(limit));
    for (const BranchPoint& point : points) {
      double& lower = clp_.columnLower(model_)[point.column];
      double& upper = clp_.columnUpper(model_)[point.column];
      branches.down.push_back(probe(upper, std::floor(point.value), optimum, branches.pivots));
      branches.up.push_back(probe(lower, std::ceil(point.value), optimum, branches.pivots));
    }
    clp_.setMaximumIterations(model_, kNoLimit);
    return branches;
  }

 private:
  double probe(double& bound, double value, const std::vector<unsigned char>& optimum, std::int64_t& pivots) {
    const double before = bound;
    bound = value;
    const Solve solve = resolve();
    bound = before;
    clp_.copyinStatus(model_, optimum.data());
    pivots += solve.pivots;
    return solve.state == State::infeasible ? kInf : solve.objective;
  }

  const Library& clp_;
  ClpModel* model_;
  double offset_;
};

}  // namespace

Contestant clp() {
  static Library library;
  static const bool loaded = library.load();
  if (!loaded) return {};
  return {"clp", [](const Model& model) { return std::make_unique<Clp>(library, model); }};
}

}  // namespace bench
