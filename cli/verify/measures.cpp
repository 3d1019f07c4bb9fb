#include "cli/verify/measures.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "cli/model_data.h"
#include "cli/verify/duals.h"

namespace tovik::cli {

namespace {

constexpr double kNoValue = 1e20;             // what the library hands over where the file is silent
constexpr double kObjectiveTolerance = 1e-6;  // relative
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

bool complete(const std::vector<double>& values) {
  return std::ranges::find(values, kNoValue) == values.end();
}

void clear_unless(bool condition, auto& values) {
  if (!condition) values.clear();
}

class Verification {
 public:
  Verification(const Model& model, const Claim& claim, const Tolerances& tolerances)
      : model_(model), claim_(claim), tolerances_(tolerances), x_(claim.x), types_(column_types(model)) {}

  Verdict run() {
    objective();
    columns();
    rows();
    slacks();
    beside_the_matrix();
    sets();
    if (!claim_.pi.empty() && !model_.mixed_integer() && linear_) duals();
    for (const Measure& measure : verdict_.measures) {
      if (measure.counts && !measure.holds()) verdict_.holds = false;
    }
    return std::move(verdict_);
  }

 private:
  double x(int j) const { return x_[static_cast<std::size_t>(j)]; }
  auto column_name(int j) const {
    return [this, j] { return model_.column_name(j); };
  }
  auto row_name(int i) const {
    return [this, i] { return model_.row_name(i); };
  }
  Measure measure(const char* key, const char* label, double tolerance) const {
    Measure made;
    made.key = key;
    made.label = label;
    made.tolerance = tolerance;
    return made;
  }
  void keep(Measure&& done) {
    if (done.items > 0) verdict_.measures.push_back(std::move(done));
  }

  void objective();
  void columns();
  void rows();
  void slacks();
  void beside_the_matrix();
  void sets();
  void duals();
  void extra(Measure& into, const ExtraRow& row, Sum activity);
  Sum activity(const ExtraRow& row) const {
    Sum sum;
    for (std::size_t k = 0; k < row.index.size(); ++k) sum.add(row.value[k], x(row.index[k]));
    return sum;
  }

  const Model& model_;
  const Claim& claim_;
  const Tolerances tolerances_;
  const std::vector<double>& x_;
  const std::vector<char> types_;
  std::vector<Sum> activities_;
  bool linear_ = true;
  double objective_slack_ = 0;
  Verdict verdict_;
};

void Verification::objective() {
  ConstEnvHandle env = model_.environment().handle();
  Sum total;
  double offset = 0;
  model_.environment().check(TVKgetobjoffset(env, model_.handle(), &offset));
  total.add(offset);
  const auto cost = model_.all<double>(TVKgetobj, model_.columns());
  for (int j = 0; j < model_.columns(); ++j) total.add(cost[static_cast<std::size_t>(j)], x(j));
  const Vectors products = quadratic_objective(model_);
  linear_ = products.count() == 0 && TVKgetnumqconstrs(env, model_.handle()) == 0;
  for (int j = 0; j < products.count(); ++j) {
    const Slice entries = products[j];
    for (std::size_t k = 0; k < entries.index.size(); ++k)
      total.add(entries.value[k] / 2, x(j) * x(entries.index[k]));
  }
  verdict_.objective = total.value();
  objective_slack_ = kDigits * total.magnitude();
  if (!claim_.objective && std::isfinite(total.value())) return;
  const double claimed = claim_.objective.value_or(kNotANumber);
  Measure stated = measure("objective", "Objective", kObjectiveTolerance * std::max(1.0, std::abs(claimed)));
  stated.update(std::abs(total.value() - claimed), objective_slack_, [] { return std::string(); });
  keep(std::move(stated));
}

void Verification::columns() {
  const Limits bounds = column_bounds(model_);
  Measure bound = measure("bounds", "Bounds", tolerances_.feasibility);
  Measure semi = measure("semicontinuous", "Semi-cont.", tolerances_.feasibility);
  Measure integer = measure("integrality", "Integers", tolerances_.integrality);
  for (int j = 0; j < model_.columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    const char type = types_[at];
    const bool binary = type == 'B';
    const double lower = binary ? std::max(0.0, bounds.lower[at]) : bounds.lower[at];
    const double upper = binary ? std::min(1.0, bounds.upper[at]) : bounds.upper[at];
    const double slack = kDigits * std::abs(x(j)), violation = outside(x(j), lower, upper);
    if (type == 'S' || type == 'N') {
      semi.update(std::min(violation, std::abs(x(j))), slack, column_name(j));
    } else {
      bound.update(violation, slack, column_name(j));
    }
    if (type == 'I' || type == 'N' || binary)
      integer.update(std::abs(x(j) - std::round(x(j))), slack, column_name(j));
  }
  keep(std::move(bound));
  keep(std::move(semi));
  keep(std::move(integer));
}

void Verification::rows() {
  activities_.resize(static_cast<std::size_t>(model_.rows()));
  for_each_column(model_, [this](int j, const Slice& entries) {
    for (std::size_t k = 0; k < entries.index.size(); ++k)
      activities_[static_cast<std::size_t>(entries.index[k])].add(entries.value[k], x(j));
  });
  const Limits limits = row_limits(model_);
  Measure row = measure("rows", "Rows", tolerances_.feasibility);
  for (int i = 0; i < model_.rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    row.update(outside(activities_[at].value(), limits.lower[at], limits.upper[at]),
               kDigits * activities_[at].magnitude(), row_name(i));
  }
  keep(std::move(row));
}

/* What the file states beside the values must follow from them. */
void Verification::slacks() {
  if (claim_.slack.empty()) return;
  const auto rhs = model_.all<double>(TVKgetrhs, model_.rows());
  Measure stated = measure("slacks", "Slacks", kObjectiveTolerance);
  for (int i = 0; i < model_.rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    const double slack = rhs[at] - activities_[at].value();
    stated.update(std::abs(slack - claim_.slack[at]),
                  kObjectiveTolerance * std::max(activities_[at].size(), std::abs(rhs[at])), row_name(i));
  }
  keep(std::move(stated));
}

void Verification::extra(Measure& into, const ExtraRow& row, Sum activity) {
  into.update(outside(activity.value(), row.lower, row.upper), kDigits * activity.magnitude(),
              [&row] { return row.name; });
}

void Verification::beside_the_matrix() {
  Measure lazy = measure("lazy_constraints", "Lazy", tolerances_.feasibility);
  for (const ExtraRow& row : lazy_constraints(model_)) extra(lazy, row, activity(row));
  Measure indicator = measure("indicators", "Indicators", tolerances_.feasibility);
  for (const IndicatorRow& row : indicators(model_)) {
    const double active = row.complemented ? 0 : 1;
    if (std::abs(x(row.column) - active) <= tolerances_.integrality) {
      extra(indicator, row, activity(row));
    } else {
      indicator.update(0, 0, [] { return std::string(); });
    }
  }
  Measure quadratic = measure("quadratic_constraints", "Quadratic", tolerances_.feasibility);
  for (const QuadraticRow& row : quadratic_rows(model_)) {
    Sum sum = activity(row);
    for (std::size_t k = 0; k < row.product.size(); ++k)
      sum.add(row.product[k], x(row.first[k]) * x(row.second[k]));
    extra(quadratic, row, sum);
  }
  /* A cut may be wrong, or cut this solution off in favour of one as good: that says nothing about it. */
  Measure cut = measure("user_cuts", "User cuts", tolerances_.feasibility);
  cut.counts = false;
  for (const ExtraRow& row : user_cuts(model_)) extra(cut, row, activity(row));
  for (Measure* done : {&lazy, &indicator, &quadratic, &cut}) keep(std::move(*done));
}

/* How far a set is from holding: the largest member that would have to be 0. */
double set_violation(const OrderedSet& set, const std::vector<double>& x) {
  std::vector<std::size_t> order(set.index.size());
  for (std::size_t k = 0; k < order.size(); ++k) order[k] = k;
  std::ranges::stable_sort(order, [&](auto a, auto b) { return set.weight[a] < set.weight[b]; });
  std::vector<double> size(order.size());
  for (std::size_t k = 0; k < order.size(); ++k)
    size[k] = std::abs(x[static_cast<std::size_t>(set.index[order[k]])]);
  const std::size_t allowed = set.type == '1' ? 1 : 2;
  if (size.size() <= allowed) return 0;
  std::vector<double> behind(size.size() + 1);  // the largest from a position on
  for (std::size_t k = size.size(); k-- > 0;) behind[k] = std::max(behind[k + 1], size[k]);
  double best = behind[0], before = 0;
  for (std::size_t k = 0; k + allowed <= size.size(); ++k) {
    best = std::min(best, std::max(before, behind[k + allowed]));
    before = std::max(before, size[k]);
  }
  return best;
}

void Verification::sets() {
  Measure set_measure = measure("sos", "Sets", tolerances_.integrality);
  for (const OrderedSet& set : ordered_sets(model_))
    set_measure.update(set_violation(set, x_), 0, [&set] { return set.name; });
  keep(std::move(set_measure));
}

void Verification::duals() {
  const DualCheckInput input{model_, claim_, tolerances_, activities_, verdict_.objective, objective_slack_};
  DualCheckResult answer = check_duals(input);
  verdict_.dual_bound = answer.bound;
  bool primal_holds = true;
  for (const Measure& measure : verdict_.measures)
    primal_holds = primal_holds && (measure.holds() || !measure.counts);
  verdict_.optimal = answer.proves && primal_holds;
  for (Measure& done : answer.measures) keep(std::move(done));
}

}  // namespace

Claim read_claim(const Model& model, const std::string& file, int which, bool zeros) {
  const auto rows = static_cast<std::size_t>(model.rows());
  const auto columns = static_cast<std::size_t>(model.columns());
  Claim claim;
  claim.x.resize(columns);
  claim.dj.resize(columns);
  claim.column_status.resize(columns);
  claim.pi.resize(rows);
  claim.slack.resize(rows);
  claim.row_status.resize(rows);
  double objective = 0;
  model.environment().check(TVKreadsolution(
      model.environment().handle(), model.handle(), file.c_str(), which, &claim.solutions, &claim.unknown,
      &claim.status, &objective, claim.x.data(), claim.pi.data(), claim.slack.data(), claim.dj.data(),
      claim.column_status.data(), claim.row_status.data()));
  if (objective != kNoValue) claim.objective = objective;
  if (zeros) std::ranges::replace(claim.x, kNoValue, 0.0);
  clear_unless(complete(claim.pi), claim.pi);
  clear_unless(complete(claim.slack), claim.slack);
  clear_unless(complete(claim.dj), claim.dj);
  const bool basis = std::ranges::find(claim.column_status, -1) == claim.column_status.end() &&
                     std::ranges::find(claim.row_status, -1) == claim.row_status.end();
  clear_unless(basis, claim.column_status);
  clear_unless(basis, claim.row_status);
  return claim;
}

std::vector<int> columns_without_value(const Claim& claim) {
  std::vector<int> columns;
  for (std::size_t j = 0; j < claim.x.size(); ++j) {
    if (claim.x[j] == kNoValue) columns.push_back(static_cast<int>(j));
  }
  return columns;
}

Verdict verify(const Model& model, const Claim& claim, const Tolerances& tolerances) {
  return Verification(model, claim, tolerances).run();
}

}  // namespace tovik::cli
