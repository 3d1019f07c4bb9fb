#include "verify_duals.h"

#include <cmath>

#include "model_data.h"

namespace tovik::cli {

namespace {

constexpr double kDigits = 1e-15;
constexpr double kGapTolerance = 1e-6;     // relative to the objective
constexpr double kStatedTolerance = 1e-6;  // relative, of a reduced cost that the file states

class DualCheck {
 public:
  explicit DualCheck(const DualQuestion& question)
      : q_(question),
        direction_(TVKgetobjsen(q_.model.environment().handle(), q_.model.handle()) < 0 ? -1.0 : 1.0),
        gap_tolerance_(kGapTolerance * std::max(1.0, std::abs(q_.objective)) + q_.rounding) {
    /* Optimality is a claim only where the file makes it; what the file states twice must agree always. */
    const bool claimed =
        q_.claim.status == TVK_STATUS_OPTIMAL || q_.claim.status == TVK_STATUS_OPTIMAL_FACE_UNBOUNDED;
    infeasibility_ = begin("dual_infeasibility", "Duals", q_.tolerances.optimality, claimed);
    complementarity_ = begin("complementary_slackness", "Compl. sl.", gap_tolerance_, claimed);
    gap_ = begin("duality_gap", "Gap", gap_tolerance_, claimed);
    stated_ = begin("reduced_costs", "Red. costs", kStatedTolerance, true);
    basis_ = begin("basis", "Basis", q_.tolerances.feasibility, true);
  }

  DualAnswer run() {
    rows();
    columns();
    DualAnswer answer;
    answer.bound = direction_ * bound_.value();
    const double gap = direction_ * q_.objective - bound_.value();
    gap_.meet(std::abs(gap), kDigits * bound_.magnitude(), [] { return std::string(); });
    answer.proves = infeasibility_.holds() && gap_.holds() && std::isfinite(gap);
    if (!q_.claim.column_status.empty()) basic_count();
    for (Measure* done : {&infeasibility_, &complementarity_, &gap_, &stated_, &basis_}) {
      if (done->items > 0) answer.measures.push_back(std::move(*done));
    }
    return answer;
  }

 private:
  static Measure begin(const char* key, const char* label, double tolerance, bool counts) {
    Measure measure;
    measure.key = key;
    measure.label = label;
    measure.tolerance = tolerance;
    measure.counts = counts;
    return measure;
  }

  /* A value within [lower, upper] that has the dual value `dual`, known up to `rounding`. */
  template <class NameOf>
  void pair(double value, double lower, double upper, double dual, double rounding, NameOf name_of) {
    const double limit = dual > 0 ? lower : upper;
    if (std::isnan(dual) || std::isnan(value)) {
      infeasibility_.meet(std::nan(""), 0, name_of);
    } else if (dual == 0 || std::isinf(limit)) {
      infeasibility_.meet(std::abs(dual), rounding, name_of);
    } else {
      infeasibility_.meet(0, 0, name_of);
      complementarity_.meet(std::abs(dual * (value - limit)), rounding * std::abs(value - limit), name_of);
      bound_.add(dual, limit);
    }
  }

  /* Basis status: non-basic ones stand at a limit, basic ones have no dual value. */
  template <class NameOf>
  void status(int status, double value, const double (&ends)[2], double dual, double rounding,
              NameOf name_of) {
    const double slack = kDigits * std::abs(value);
    if (status == TVK_BASIC) {
      basis_.meet(std::abs(dual) <= q_.tolerances.optimality + rounding ? 0.0 : std::abs(dual), rounding,
                  name_of);
    } else {
      const double place = status == TVK_FREE_SUPER ? 0.0 : ends[status == TVK_AT_UPPER ? 1 : 0];
      basis_.meet(std::abs(value - place), slack, name_of);
    }
  }

  void rows() {
    const Limits limits = row_limits(q_.model);
    for (int i = 0; i < q_.model.rows(); ++i) {
      const auto at = static_cast<std::size_t>(i);
      const double dual = direction_ * q_.claim.pi[at], value = q_.activities[at].value();
      const double lower = limits.lower[at], upper = limits.upper[at];
      const auto name = [&] { return q_.model.row_name(i); };
      pair(value, lower, upper, dual, 0, name);
      if (q_.claim.row_status.empty()) continue;
      /* A row that has one side is non-basic there, whatever the file calls it. */
      const double low = std::isinf(lower) ? upper : lower, high = std::isinf(upper) ? lower : upper;
      status(q_.claim.row_status[at], value, {low, high}, dual, 0, name);
    }
  }

  void columns() {
    const Limits bounds = column_bounds(q_.model);
    const auto cost = q_.model.all<double>(TVKgetobj, q_.model.columns());
    double offset = 0;
    q_.model.environment().check(
        TVKgetobjoffset(q_.model.environment().handle(), q_.model.handle(), &offset));
    bound_.add(direction_, offset);
    for_each_column(q_.model, [&](int j, const Slice& entries) {
      const auto at = static_cast<std::size_t>(j);
      Sum reduced;
      reduced.add(cost[at]);
      for (std::size_t k = 0; k < entries.index.size(); ++k)
        reduced.add(-entries.value[k], q_.claim.pi[static_cast<std::size_t>(entries.index[k])]);
      const double rounding = kDigits * reduced.magnitude();
      const auto name = [&] { return q_.model.column_name(j); };
      const double dual = direction_ * reduced.value(), value = q_.claim.x[at];
      pair(value, bounds.lower[at], bounds.upper[at], dual, rounding, name);
      if (!q_.claim.dj.empty())
        stated_.meet(std::abs(reduced.value() - q_.claim.dj[at]), kStatedTolerance * reduced.size(), name);
      if (!q_.claim.column_status.empty())
        status(q_.claim.column_status[at], value, {bounds.lower[at], bounds.upper[at]}, dual, rounding, name);
    });
  }

  /* As many basic variables as rows. */
  void basic_count() {
    const auto basic = std::ranges::count(q_.claim.column_status, TVK_BASIC) +
                       std::ranges::count(q_.claim.row_status, TVK_BASIC);
    const auto excess = std::abs(static_cast<double>(basic) - q_.model.rows());
    basis_.meet(excess, 0, [&] { return std::to_string(basic) + " basic variables"; });
  }

  const DualQuestion& q_;
  const double direction_;  // -1: a maximization, turned into a minimization
  const double gap_tolerance_;
  Measure infeasibility_, complementarity_, gap_, stated_, basis_;
  Sum bound_;
};

}  // namespace

DualAnswer examine_duals(const DualQuestion& question) {
  return DualCheck(question).run();
}

}  // namespace tovik::cli
