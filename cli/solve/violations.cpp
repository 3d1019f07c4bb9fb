#include "cli/solve/violations.h"

#include <algorithm>
#include <cmath>

#include "cli/model_data.h"
#include "cli/sum.h"

namespace tovik::cli {

namespace {

/* A result passes while it violates by at most this many tolerances, scaled by the largest number that
 * entered it: the tolerances hold for the optimizer's scaled model, and no sum is more exact than its
 * terms. */
constexpr double kAllowance = 10.0;
constexpr double kObjectiveTolerance = 1e-6;  // relative
constexpr int kIntegralityParameter = TVK_PARAM_EPINT;

bool infinite(double bound) {
  return std::abs(bound) >= TVK_INFBOUND;
}

/* How far `value` in [lower, upper] with reduced cost `cost` (of a minimization) is from being best. */
double residual(double value, double lower, double upper, double cost) {
  const double bound = cost > 0 ? lower : upper;
  return infinite(bound) ? std::abs(cost) : std::min(std::abs(cost), std::max(0.0, std::abs(value - bound)));
}

/* The judge of violations: what they may amount to. */
class Allowance {
 public:
  /* Parameters of the feasibility and of the optimality tolerance. */
  Allowance(const Environment& environment, int feasibility, int optimality)
      : feasibility_(kAllowance * environment.double_parameter(feasibility)),
        optimality_(kAllowance * environment.double_parameter(optimality)) {}

 protected:
  void require_within(double violation, double allowed) {
    if (!(violation <= allowed)) result_.failed = true;  // also when it is not a number
  }

  const double feasibility_, optimality_;
  Violations result_;
};

class Check : Allowance {
 public:
  Check(const Model& model, const CheckRequest& request)
      : Allowance(model.environment(), TVK_PARAM_EPRHS, TVK_PARAM_EPOPT),
        model_(model),
        request_(request),
        x_(model.all<double>(TVKgetx, model.columns())),
        bounds_(column_bounds(model)),
        cost_(model.all<double>(TVKgetobj, model.columns())),
        rows_(row_limits(model)),
        activity_(static_cast<std::size_t>(model.rows())) {
    if (request.with_integrality) type_ = model.all<char>(TVKgetctype, model.columns());
  }

  Violations run() {
    columns();
    rows();
    if (request_.with_duals) duals();
    return result_;
  }

 private:
  bool semi_continuous(std::size_t j) const { return !type_.empty() && (type_[j] == 'S' || type_[j] == 'N'); }
  bool integer(std::size_t j) const {
    return !type_.empty() && (type_[j] == 'B' || type_[j] == 'I' || type_[j] == 'N');
  }

  void columns() {
    Sum objective;
    double offset = 0;
    model_.environment().check(TVKgetobjoffset(model_.environment().handle(), model_.handle(), &offset));
    objective.add(offset, 1.0);
    const double integrality =
        request_.with_integrality ? model_.environment().double_parameter(kIntegralityParameter) : 0;
    for (std::size_t j = 0; j < x_.size(); ++j) {
      double violation = outside(x_[j], bounds_.lower[j], bounds_.upper[j]);
      if (semi_continuous(j)) violation = std::min(violation, std::abs(x_[j]));
      result_.bound.update(violation, static_cast<int>(j));
      require_within(violation, feasibility_ * std::max(1.0, std::abs(x_[j])));
      if (integer(j)) {
        const double fraction = std::abs(x_[j] - std::round(x_[j]));
        result_.has_integers = true;
        result_.integrality.update(fraction, static_cast<int>(j));
        require_within(fraction, std::max(integrality, feasibility_));
      }
      objective.add(cost_[j], x_[j]);
    }
    result_.objective_difference = std::abs(objective.value() - request_.objective) / objective.size();
    require_within(result_.objective_difference, kObjectiveTolerance);
  }

  void rows() {
    for_each_column(model_, [this](int j, const Slice& entries) {
      for (std::size_t k = 0; k < entries.index.size(); ++k)
        activity_[static_cast<std::size_t>(entries.index[k])].add(entries.value[k],
                                                                  x_[static_cast<std::size_t>(j)]);
    });
    for (std::size_t i = 0; i < activity_.size(); ++i) {
      const double violation = outside(activity_[i].value(), rows_.lower[i], rows_.upper[i]);
      result_.row.update(violation, static_cast<int>(i));
      require_within(violation, feasibility_ * activity_[i].size());
    }
  }

  void duals() {
    const double sign = TVKgetobjsen(model_.environment().handle(), model_.handle()) < 0 ? -1.0 : 1.0;
    const auto pi = model_.all<double>(TVKgetpi, model_.rows());
    result_.has_duals = true;
    for (std::size_t i = 0; i < pi.size(); ++i) {
      const double violation = residual(activity_[i].value(), rows_.lower[i], rows_.upper[i], sign * pi[i]);
      result_.dual_row.update(violation, static_cast<int>(i));
      require_within(violation,
                     std::max(optimality_, feasibility_) * std::max(activity_[i].size(), std::abs(pi[i])));
    }
    for_each_column(model_, [&](int j, const Slice& entries) {
      const auto column = static_cast<std::size_t>(j);
      Sum reduced;
      reduced.add(cost_[column], 1.0);
      for (std::size_t k = 0; k < entries.index.size(); ++k)
        reduced.add(-entries.value[k], pi[static_cast<std::size_t>(entries.index[k])]);
      const double violation =
          residual(x_[column], bounds_.lower[column], bounds_.upper[column], sign * reduced.value());
      result_.dual_column.update(violation, j);
      require_within(violation, optimality_ * reduced.size());
    });
  }

  const Model& model_;
  const CheckRequest request_;
  const std::vector<double> x_;
  const Limits bounds_;
  const std::vector<double> cost_;
  const Limits rows_;
  std::vector<char> type_;
  std::vector<Sum> activity_;
};

class FlowCheck : Allowance {
 public:
  FlowCheck(const Network& network, const CheckRequest& request)
      : Allowance(network.environment(), TVK_PARAM_NETEPRHS, TVK_PARAM_NETEPOPT),
        network_(network),
        request_(request),
        tail_(static_cast<std::size_t>(network.arcs())),
        head_(tail_.size()) {
    if (tail_.empty()) return;
    network.environment().check(TVKNETgetarcends(network.environment().handle(), network.handle(),
                                                 tail_.data(), head_.data(), 0, network.arcs() - 1));
  }

  Violations run() {
    arcs();
    nodes();
    return result_;
  }

 private:
  void arcs() {
    const int count = network_.arcs(), nodes = network_.nodes();
    const auto flow = network_.all(TVKNETgetx, count), cost = network_.all(TVKNETgetobj, count);
    const auto lower = network_.all(TVKNETgetlb, count), upper = network_.all(TVKNETgetub, count);
    const auto pi = request_.with_duals ? network_.all(TVKNETgetpi, nodes) : std::vector<double>();
    const bool maximizes = TVKNETgetobjsen(network_.environment().handle(), network_.handle()) < 0;
    result_.has_duals = request_.with_duals;
    outflow_.resize(static_cast<std::size_t>(nodes));
    Sum objective;
    for (std::size_t a = 0; a < flow.size(); ++a) {
      const auto tail = static_cast<std::size_t>(tail_[a]), head = static_cast<std::size_t>(head_[a]);
      const double violation = outside(flow[a], lower[a], upper[a]);
      result_.bound.update(violation, static_cast<int>(a));
      require_within(violation, feasibility_ * std::max(1.0, std::abs(flow[a])));
      outflow_[tail].add(1.0, flow[a]);
      outflow_[head].add(-1.0, flow[a]);
      objective.add(cost[a], flow[a]);
      if (pi.empty()) continue;
      Sum reduced;
      reduced.add(cost[a], 1.0);
      reduced.add(-pi[tail], 1.0);
      reduced.add(pi[head], 1.0);
      const double wrong =
          residual(flow[a], lower[a], upper[a], maximizes ? -reduced.value() : reduced.value());
      result_.dual_column.update(wrong, static_cast<int>(a));
      require_within(wrong, optimality_ * reduced.size());
    }
    result_.objective_difference = std::abs(objective.value() - request_.objective) / objective.size();
    require_within(result_.objective_difference, kObjectiveTolerance);
  }

  void nodes() {
    const auto supply = network_.all(TVKNETgetsupply, network_.nodes());
    for (std::size_t v = 0; v < supply.size(); ++v) {
      const double violation = outside(outflow_[v].value(), supply[v], supply[v]);
      result_.row.update(violation, static_cast<int>(v));
      require_within(violation, feasibility_ * std::max(outflow_[v].size(), std::abs(supply[v])));
    }
  }

  const Network& network_;
  const CheckRequest request_;
  std::vector<int> tail_, head_;
  std::vector<Sum> outflow_;
};

/* The worst places get their names; `row_name` and `column_name` tell them. */
template <class RowName, class ColumnName>
Violations with_names(Violations found, RowName row_name, ColumnName column_name) {
  for (LargestViolation* largest : {&found.row, &found.dual_row})
    if (largest->index >= 0) largest->name = row_name(largest->index);
  for (LargestViolation* largest : {&found.bound, &found.integrality, &found.dual_column})
    if (largest->index >= 0) largest->name = column_name(largest->index);
  return found;
}

}  // namespace

Violations check_solution(const Model& model, const CheckRequest& request) {
  return with_names(
      Check(model, request).run(), [&](int i) { return model.row_name(i); },
      [&](int j) { return model.column_name(j); });
}

Violations check_flow(const Network& network, const CheckRequest& request) {
  return with_names(
      FlowCheck(network, request).run(), [&](int v) { return network.node_names(v, v).front(); },
      [&](int a) { return network.arc_names(a, a).front(); });
}

}  // namespace tovik::cli
