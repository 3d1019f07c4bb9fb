#include "model/routines/fixed_problem.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "include/tovik.h"
#include "model/store/model.h"

namespace tovik::model {
namespace {

/* What a fixed problem remembers of the one it was made of. */
struct Fixing : Derived {
  std::vector<double> lower, upper;
  int rows = 0;
};

const Fixing* fixing_of(const Problem& problem) {
  return problem.fixed() ? dynamic_cast<const Fixing*>(problem.mip.get()) : nullptr;
}

struct FixedType {
  int type, before, refusal;  // the mixed-integer type that it is made of, the error where that is not there
};
constexpr FixedType kFixedTypes[] = {
    {TVK_PROBTYPE_FIXED_MILP, TVK_PROBTYPE_MILP, TVK_ERROR_NOT_MILP},
    {TVK_PROBTYPE_FIXED_MIQP, TVK_PROBTYPE_MIQP, TVK_ERROR_NOT_MIQP},
    {TVK_PROBTYPE_FIXED_MIQCP, TVK_PROBTYPE_MIQCP, TVK_ERROR_NOT_MIQCP},
};

/* Null: no fixed type. */
const FixedType* find_fixed_type(int type) {
  const auto found = std::find_if(std::begin(kFixedTypes), std::end(kFixedTypes),
                                  [type](const FixedType& t) { return t.type == type; });
  return found == std::end(kFixedTypes) ? nullptr : found;
}

bool has_incumbent(const Problem& problem) {
  return problem.status != TVK_STATUS_NONE && problem.solution != nullptr &&
         problem.solution->x.size() == problem.columns();
}

bool is_active(const Indicators& indicators, int k, std::span<const double> x) {
  const bool is_one = x[static_cast<std::size_t>(indicators.column()[static_cast<std::size_t>(k)])] > 0.5;
  return is_one != indicators.complemented(k);
}

/* The bounds of the fixed problem. */
class FixedBounds {
 public:
  FixedBounds(const Model& model, std::span<const double> x)
      : lower(model.lower().begin(), model.lower().end()),
        upper(model.upper().begin(), model.upper().end()),
        x_(x) {
    const std::span<const char> types = model.column_types();
    for (std::size_t j = 0; j < types.size(); ++j) {
      if (types[j] == 'B' || types[j] == 'I' || types[j] == 'N') fix(j, std::round(x_[j]));
      if (types[j] == 'S' && x_[j] == 0) fix(j, 0);
    }
    const Families& families = model.families();
    for (const int j : families.indicators.column()) fix(at(j), std::round(x_[at(j)]));
    for (int k = 0; k < families.sets.size(); ++k) {
      const VectorView members = families.sets.members(k);
      for (int i = 0; i < members.count; ++i) {
        if (x_[at(members.index[i])] == 0) fix(at(members.index[i]), 0);
      }
    }
  }

  std::vector<double> lower, upper;

 private:
  static std::size_t at(int j) { return static_cast<std::size_t>(j); }
  void fix(std::size_t j, double value) { lower[j] = upper[j] = value + 0.0; }

  std::span<const double> x_;
};

/* Rows that hold at the incumbent and do not stand in the matrix. */
class HiddenRows {
 public:
  HiddenRows(const Model& model, std::span<const double> x) {
    const Families& families = model.families();
    add_all(families.lazy_constraints, [](int) { return true; });
    add_all(families.indicators.rows(), [&](int k) { return is_active(families.indicators, k, x); });
  }
  int count() const { return static_cast<int>(rhs_.size()); }
  std::int64_t entries() const { return static_cast<std::int64_t>(index_.size()); }
  NewRows rows() const {
    NewRows rows;
    rows.count = count();
    rows.rhs = rhs_.data();
    rows.sense = sense_.data();
    rows.begin = begin_.data();
    rows.index = index_.data();
    rows.value = value_.data();
    rows.entries = static_cast<int>(index_.size());
    return rows;
  }

 private:
  template <class Wanted>
  void add_all(const RowPool& pool, Wanted&& wanted) {
    for (int k = 0; k < pool.size(); ++k) {
      if (!wanted(k)) continue;
      const VectorView terms = pool.row(k);
      begin_.push_back(static_cast<int>(index_.size()));
      index_.insert(index_.end(), terms.index, terms.index + terms.count);
      value_.insert(value_.end(), terms.value, terms.value + terms.count);
      sense_.push_back(pool.sense()[static_cast<std::size_t>(k)]);
      rhs_.push_back(pool.rhs()[static_cast<std::size_t>(k)]);
    }
  }

  std::vector<int> begin_, index_;
  std::vector<double> value_, rhs_;
  std::vector<char> sense_;
};

void set_bounds(Model& model, std::span<const double> lower, std::span<const double> upper) noexcept {
  for (int j = 0; j < model.num_columns(); ++j) {
    model.set_lower(j, lower[static_cast<std::size_t>(j)]);
    model.set_upper(j, upper[static_cast<std::size_t>(j)]);
  }
}

}  // namespace

int type_before_fixing(int fixed_type) {
  const FixedType* const found = find_fixed_type(fixed_type);
  return found == nullptr ? -1 : found->before;
}

Status fix_problem(Environment& env, Problem& problem, int fixed_type) {
  if (problem.type == fixed_type) {
    // The incumbent is in the model already: only what was solved since goes.
    std::unique_ptr<Derived> fixing = std::move(problem.mip);
    invalidate(problem, Change::problem_type);
    problem.mip = std::move(fixing);
    return {};
  }
  update_solution(problem);
  const FixedType& wanted = *find_fixed_type(fixed_type);
  if (problem.type != wanted.before || !has_incumbent(problem)) return wanted.refusal;
  Model& model = *problem.model;
  const std::span<const double> x = problem.solution->x;
  const FixedBounds bounds(model, x);
  const HiddenRows hidden(model, x);
  if (model.num_rows() + static_cast<std::int64_t>(hidden.count()) > env.size_limits[0] ||
      model.num_nonzeros() + hidden.entries() > env.size_limits[2])
    return TVK_ERROR_SIZE_LIMITS_TOO_LARGE;
  auto fixing = std::make_unique<Fixing>();
  fixing->lower.assign(model.lower().begin(), model.lower().end());
  fixing->upper.assign(model.upper().begin(), model.upper().end());
  fixing->rows = model.num_rows();
  if (hidden.count() > 0) model.add_rows({}, hidden.rows());
  set_bounds(model, bounds.lower, bounds.upper);
  problem.type = fixed_type;
  invalidate(problem, Change::problem_type);
  problem.mip = std::move(fixing);
  return {};
}

void restore_model(Problem& problem) {
  const Fixing* const fixing = fixing_of(problem);
  if (fixing == nullptr) return;
  Model& model = *problem.model;
  if (model.num_rows() > fixing->rows) model.delete_rows(fixing->rows, model.num_rows() - 1);
  set_bounds(model, fixing->lower, fixing->upper);
}

std::unique_ptr<Derived> copy_of_fixing(const Problem& problem) {
  const Fixing* const fixing = fixing_of(problem);
  return fixing == nullptr ? nullptr : std::make_unique<Fixing>(*fixing);
}

}  // namespace tovik::model
