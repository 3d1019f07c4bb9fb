#include "cli/verify/duals.h"

#include <cmath>

#include "cli/model_data.h"

namespace tovik::cli {

namespace {

constexpr double kGapTolerance = 1e-6;     // relative to the objective
constexpr double kStatedTolerance = 1e-6;  // relative, of a reduced cost that the file states

class DualCheck {
 public:
  explicit DualCheck(const DualCheckInput& input)
      : input_(input),
        direction_(TVKgetobjsen(input_.model.environment().handle(), input_.model.handle()) < 0 ? -1.0 : 1.0),
        gap_tolerance_(kGapTolerance * std::max(1.0, std::abs(input_.objective)) + input_.rounding) {
    /* Optimality is a claim only where the file makes it; what the file states twice must agree always. */
    const bool claimed =
        input_.claim.status == TVK_STATUS_OPTIMAL || input_.claim.status == TVK_STATUS_OPTIMAL_FACE_UNBOUNDED;
    infeasibility_ = begin("dual_infeasibility", "Duals", input_.tolerances.optimality, claimed);
    complementarity_ = begin("complementary_slackness", "Compl. sl.", gap_tolerance_, claimed);
    gap_ = begin("duality_gap", "Gap", gap_tolerance_, claimed);
    stated_ = begin("reduced_costs", "Red. costs", kStatedTolerance, true);
    basis_ = begin("basis", "Basis", input_.tolerances.feasibility, true);
  }

  DualCheckResult run() {
    rows();
    columns();
    DualCheckResult answer;
    answer.bound = direction_ * bound_.value();
    const double gap = direction_ * input_.objective - bound_.value();
    gap_.update(std::abs(gap), kDigits * bound_.magnitude() + bound_rounding_, [] { return std::string(); });
    answer.proves = infeasibility_.holds() && gap_.holds() && std::isfinite(gap);
    if (!input_.claim.column_status.empty()) basic_count();
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

  /* A row or column: its value within limits, its dual value, how well both are known. */
  struct Item {
    double value, lower, upper, dual;
    double value_rounding, dual_rounding;
  };

  template <class NameOf>
  void pair(const Item& item, NameOf name_of) {
    const double limit = item.dual > 0 ? item.lower : item.upper;
    if (std::isnan(item.dual) || std::isnan(item.value)) {
      infeasibility_.update(std::nan(""), 0, name_of);
    } else if (item.dual == 0 || std::isinf(limit)) {
      infeasibility_.update(std::abs(item.dual), item.dual_rounding, name_of);
    } else {
      const double distance = std::abs(item.value - limit), rounding = item.dual_rounding * distance;
      infeasibility_.update(0, 0, name_of);
      complementarity_.update(std::abs(item.dual) * distance, rounding, name_of);
      bound_.add(item.dual, limit);
      bound_rounding_ += rounding;
    }
  }

  /* Non-basic ones stand at a limit. */
  template <class NameOf>
  void basis_status(int status, const Item& item, NameOf name_of) {
    const double limit = status == TVK_AT_UPPER ? item.upper : item.lower;
    const double place = status == TVK_FREE_SUPER ? 0.0 : limit;
    const double distance = status == TVK_BASIC ? 0.0 : std::abs(item.value - place);
    basis_.update(distance, item.value_rounding, name_of);
  }

  void rows() {
    const Limits limits = row_limits(input_.model);
    for (int i = 0; i < input_.model.rows(); ++i) {
      const auto at = static_cast<std::size_t>(i);
      const Sum& activity = input_.activities[at];
      Item item = {activity.value(),
                   limits.lower[at],
                   limits.upper[at],
                   direction_ * input_.claim.pi[at],
                   kDigits * activity.magnitude(),
                   kDigits * std::abs(input_.claim.pi[at])};
      const auto name = [&] { return input_.model.row_name(i); };
      pair(item, name);
      if (input_.claim.row_status.empty()) continue;
      /* A row that has one side is non-basic there, whatever the file calls it. */
      if (std::isinf(item.lower)) item.lower = item.upper;
      if (std::isinf(item.upper)) item.upper = item.lower;
      basis_status(input_.claim.row_status[at], item, name);
    }
  }

  void columns() {
    const Limits bounds = column_bounds(input_.model);
    const auto cost = input_.model.all<double>(TVKgetobj, input_.model.columns());
    double offset = 0;
    input_.model.environment().check(
        TVKgetobjoffset(input_.model.environment().handle(), input_.model.handle(), &offset));
    bound_.add(direction_, offset);
    for_each_column(input_.model, [&](int j, const Slice& entries) {
      const auto at = static_cast<std::size_t>(j);
      Sum reduced;
      reduced.add(cost[at]);
      for (std::size_t k = 0; k < entries.index.size(); ++k)
        reduced.add(-entries.value[k], input_.claim.pi[static_cast<std::size_t>(entries.index[k])]);
      const double value = input_.claim.x[at], rounding = kDigits * reduced.magnitude();
      const Item item = {value,
                         bounds.lower[at],
                         bounds.upper[at],
                         direction_ * reduced.value(),
                         kDigits * std::abs(value),
                         rounding};
      const auto name = [&] { return input_.model.column_name(j); };
      pair(item, name);
      if (!input_.claim.dj.empty())
        stated_.update(std::abs(reduced.value() - input_.claim.dj[at]), kStatedTolerance * reduced.size(),
                       name);
      if (!input_.claim.column_status.empty()) basis_status(input_.claim.column_status[at], item, name);
    });
  }

  /* As many basic variables as rows. */
  void basic_count() {
    const auto basic = std::ranges::count(input_.claim.column_status, TVK_BASIC) +
                       std::ranges::count(input_.claim.row_status, TVK_BASIC);
    const auto excess = std::abs(static_cast<double>(basic) - input_.model.rows());
    basis_.update(excess, 0, [&] { return std::to_string(basic) + " basic variables"; });
  }

  const DualCheckInput& input_;
  const double direction_;  // -1: a maximization, turned into a minimization
  const double gap_tolerance_;
  Measure infeasibility_, complementarity_, gap_, stated_, basis_;
  Sum bound_;
  double bound_rounding_ = 0;
};

}  // namespace

DualCheckResult check_duals(const DualCheckInput& input) {
  return DualCheck(input).run();
}

}  // namespace tovik::cli
