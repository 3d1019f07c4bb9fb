#include "mip/run/build_problem.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/binding/build_lp.h"

namespace tovik::mip::run {
namespace {

/* Rows to be put behind the present ones, by row. */
struct ExtraRows {
  std::vector<int> start{0}, index;
  std::vector<double> value, lower, upper;

  void add(const model::VectorView& terms, lp::verify::Limits sides) {
    index.insert(index.end(), terms.index, terms.index + terms.count);
    value.insert(value.end(), terms.value, terms.value + terms.count);
    start.push_back(static_cast<int>(index.size()));
    lower.push_back(sides.lower);
    upper.push_back(sides.upper);
  }
  void add_term(int column, double coefficient) {  // to the last row
    index.push_back(column);
    value.push_back(coefficient);
    ++start.back();
  }
  int count() const { return static_cast<int>(lower.size()); }
};

class Builder {
 public:
  Builder(const model::Model& model, double integrality, bool* rounded)
      : model_(model), tolerance_(std::max(1e-9, integrality)), rounded_(rounded) {
    *rounded_ = false;
  }

  Problem build() {
    problem_.lp = lp::run::build_lp(model_);
    problem_.is_integer.resize(static_cast<std::size_t>(model_.num_columns()));
    for (int j = 0; j < model_.num_columns(); ++j) column(j);
    sets();
    priorities();
    indicators();
    const model::RowPool& lazy = model_.families().lazy_constraints;
    for (int k = 0; k < lazy.size(); ++k) {
      extra_.add(lazy.row(k), lp::run::row_bounds(lazy.sense()[k], lazy.rhs()[k], 0));
    }
    append_rows();
    user_cuts();
    return std::move(problem_);
  }

 private:
  char type(int j) const { return model_.column_types().empty() ? 'C' : model_.column_types()[j]; }

  void column(int j) {
    double& lower = problem_.lp.lower[j];
    double& upper = problem_.lp.upper[j];
    const char t = type(j);
    if (t == 'B') {
      const bool fixed = !std::isinf(lower) && !std::isinf(upper) && std::fabs(upper - lower) <= 1e-10;
      if (!fixed) {
        lower = 0;
        upper = 1;
      }
    }
    if (t == 'B' || t == 'I' || t == 'N') {
      problem_.is_integer[j] = 1;
      if (!std::isinf(lower) && lower != 0) round_to(lower, std::ceil(lower - tolerance_));
      if (!std::isinf(upper) && upper != 0) round_to(upper, std::floor(upper + tolerance_));
    }
    if ((t == 'S' || t == 'N') && (lower > 0 || upper < 0)) {
      problem_.semi_columns.push_back({j, lower, upper});
      lower = std::min(lower, 0.0);
      upper = std::max(upper, 0.0);
    }
  }
  void round_to(double& bound, double whole) {
    if (std::fabs(bound - whole) > tolerance_) *rounded_ = true;
    bound = whole;
  }
  void sets() {
    const model::Sets& sets = model_.families().sets;
    for (int k = 0; k < sets.size(); ++k) {
      const model::VectorView members = sets.members(k);
      std::vector<std::pair<double, int>> by_weight;
      for (int i = 0; i < members.count; ++i) by_weight.emplace_back(members.value[i], members.index[i]);
      std::stable_sort(by_weight.begin(), by_weight.end(),
                       [](const auto& a, const auto& b) { return a.first < b.first; });
      OrderedSet set{sets.type()[k] == '1' ? 1 : 2, {}};
      for (const auto& [weight, j] : by_weight) set.columns.push_back(j);
      if (set.columns.empty()) continue;
      set.number = static_cast<int>(problem_.sets.size());
      problem_.sets.push_back(std::move(set));
    }
  }
  void user_cuts() {
    const model::RowPool& cuts = model_.families().user_cuts;
    for (int k = 0; k < cuts.size(); ++k) {
      const model::VectorView terms = cuts.row(k);
      const lp::verify::Limits sides = lp::run::row_bounds(cuts.sense()[k], cuts.rhs()[k], 0);
      problem_.user_cuts.push_back({{terms.index, terms.index + terms.count},
                                    {terms.value, terms.value + terms.count},
                                    sides.lower,
                                    sides.upper});
    }
  }
  void priorities() {
    const model::PriorityOrder& order = model_.families().order;
    if (order.empty()) return;
    problem_.priorities.resize(static_cast<std::size_t>(model_.num_columns()));
    for (const model::OrderEntry& e : order.entries())
      problem_.priorities[e.column] = {e.priority, e.direction};
  }
  void indicators() {
    const model::Indicators& all = model_.families().indicators;
    for (int k = 0; k < all.size(); ++k) {
      const model::RowPool& rows = all.rows();
      const char sense = rows.sense()[k];
      extra_.add(rows.row(k), lp::run::row_bounds(sense, rows.rhs()[k], 0));
      if (sense != 'G') add_slack(all.column()[k], all.complemented(k), -1);
      if (sense != 'L') add_slack(all.column()[k], all.complemented(k), 1);
    }
  }
  /* In the last extra row. The switch takes no values but 0 and 1. */
  void add_slack(int switch_column, bool complemented, double coefficient) {
    lp::LpData& lp = problem_.lp;
    const int slack = static_cast<int>(lp.lower.size());
    lp.cost.push_back(0);
    lp.lower.push_back(0);
    lp.upper.push_back(kInf);
    problem_.is_integer.push_back(0);
    if (!problem_.priorities.empty()) problem_.priorities.emplace_back();
    problem_.is_integer[switch_column] = 1;
    lp.lower[switch_column] = std::max(lp.lower[switch_column], 0.0);
    lp.upper[switch_column] = std::min(lp.upper[switch_column], 1.0);
    extra_.add_term(slack, coefficient);
    problem_.indicators.push_back({switch_column, complemented ? 0.0 : 1.0, slack});
  }
  void append_rows() {
    lp::LpData& lp = problem_.lp;
    const lp::Matrix old = std::move(lp.matrix);
    const int columns = static_cast<int>(lp.lower.size());
    lp::Matrix extra;
    extra.rows = columns;
    extra.columns = extra_.count();
    extra.start = extra_.start;
    extra.index = extra_.index;
    extra.value = extra_.value;
    const lp::Matrix by_column = lp::transpose(extra);
    lp.matrix = {};
    lp.matrix.rows = old.rows + extra_.count();
    lp.matrix.columns = columns;
    for (int j = 0; j < columns; ++j) {
      if (j < old.columns) copy(old, j, 0);
      copy(by_column, j, old.rows);
      lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    }
    lp.row_lower.insert(lp.row_lower.end(), extra_.lower.begin(), extra_.lower.end());
    lp.row_upper.insert(lp.row_upper.end(), extra_.upper.begin(), extra_.upper.end());
  }
  void copy(const lp::Matrix& from, int column, int row_offset) {
    lp::Matrix& to = problem_.lp.matrix;
    for (int k = from.start[column]; k < from.start[column + 1]; ++k) {
      to.index.push_back(from.index[k] + row_offset);
      to.value.push_back(from.value[k]);
    }
  }

  const model::Model& model_;
  double tolerance_;
  bool* rounded_;
  Problem problem_;
  ExtraRows extra_;
};

}  // namespace

Problem build_problem(const model::Model& model, double integrality, bool* rounded) {
  return Builder(model, integrality, rounded).build();
}

}  // namespace tovik::mip::run
