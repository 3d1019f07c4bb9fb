#include "lp/presolve/presolve.h"

#include <utility>

#include "lp/presolve/free_row.h"
#include "lp/presolve/operations.h"
#include "lp/presolve/rounds.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

/* A point of the original's size with the reduced one's values in their places. */
Answer scatter(const LpData& original, const Reduction& reduction, const Answer& reduced) {
  const auto columns = static_cast<size_t>(original.num_columns());
  const auto rows = static_cast<size_t>(original.num_rows());
  Answer point;
  point.x.assign(columns, 0.0);
  point.d.assign(columns, 0.0);
  point.column_status.assign(columns, BasisStatus::free);
  point.y.assign(rows, 0.0);
  point.row_status.assign(rows, BasisStatus::basic);
  for (size_t k = 0; k < reduction.column_map.size(); ++k) {
    const int j = reduction.column_map[k];
    point.x[j] = reduced.x[k];
    point.d[j] = reduced.d[k];
    point.column_status[j] = reduced.column_status[k];
  }
  for (size_t k = 0; k < reduction.row_map.size(); ++k) {
    const int i = reduction.row_map[k];
    point.y[i] = reduced.y[k];
    point.row_status[i] = reduced.row_status[k];
  }
  return point;
}

/* Before a rule makes a point of such an interval. */
void detect_crossed_bounds(Workspace& ws) {
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (ws.lower[j] - ws.upper[j] <= infeasibility_tolerance(ws, ws.lower[j])) continue;
    ws.declare_infeasible(infeasible_column(StatusCode::column_bounds_cross, j));
    return;
  }
}

}  // namespace

Reduction presolve(const LpData& original, const Settings& settings, Control& control,
                   const std::vector<char>& protected_columns, bool display) {
  Workspace ws(original, settings, control, protected_columns);
  ws.display = display;
  detect_crossed_bounds(ws);
  run_rounds(ws);
  control.add_work(static_cast<std::uint64_t>(ws.work()));
  Reduction result;
  for (const std::int64_t hits : ws.counts.hits) result.changed |= hits > 0;
  if (result.changed) drop_free_rows(ws);
  result.lp = ws.extract(result.row_map, result.column_map);
  for (int i = 0; i < ws.num_rows(); ++i) result.row_removal.push_back(ws.row_removal(i));
  for (int j = 0; j < ws.num_columns(); ++j) result.column_removal.push_back(ws.column_removal(j));
  result.stack = std::move(ws.stack);
  result.counts = ws.counts;
  result.counts.ticks = ws.work();
  result.status = std::move(ws.status);
  result.stop = ws.stop;
  return result;
}

Answer postsolve(const LpData& original, const Reduction& reduction, const Answer& reduced) {
  Answer point = scatter(original, reduction, reduced);
  Undo undo{original, point};
  undo_all(reduction.stack, undo);
  return point;
}

Answer postsolve_interior(const LpData& original, const Reduction& reduction, Answer reduced) {
  const auto by_signs = [](const std::vector<double>& duals) {
    std::vector<BasisStatus> statuses;
    for (const double dual : duals) statuses.push_back(Undo::side(BasisStatus::basic, dual));
    return statuses;
  };
  reduced.column_status = by_signs(reduced.d);
  reduced.row_status = by_signs(reduced.y);
  Answer point = scatter(original, reduction, reduced);
  Undo undo{original, point, false, true};
  undo_all(reduction.stack, undo);
  return point;
}

std::vector<double> infeasibility_proof(const LpData& original, const Reduction& reduction) {
  if (!reduction.status.primal_infeasible() || reduction.status.multipliers.empty()) return {};
  std::vector<double> y(static_cast<size_t>(original.num_rows()), 0.0);
  for (const auto& [i, value] : reduction.status.multipliers) y[i] = value;
  std::vector<double> reduced(reduction.row_map.size());
  for (size_t k = 0; k < reduced.size(); ++k) reduced[k] = y[reduction.row_map[k]];
  return postsolve_proof(original, reduction, reduced);
}

std::vector<double> postsolve_proof(const LpData& original, const Reduction& reduction,
                                    const std::vector<double>& multipliers) {
  const LpData& lp = reduction.lp;
  Answer reduced;
  reduced.x.assign(lp.cost.size(), 0.0);
  reduced.d.assign(lp.cost.size(), 0.0);
  reduced.column_status.assign(lp.cost.size(), BasisStatus::lower);
  reduced.y = multipliers;
  reduced.row_status.assign(lp.row_lower.size(), BasisStatus::basic);
  for (size_t k = 0; k < reduced.y.size(); ++k) {
    if (reduced.y[k] != 0) reduced.row_status[k] = reduced.y[k] > 0 ? BasisStatus::lower : BasisStatus::upper;
  }
  const Matrix& matrix = lp.matrix;
  for (int j = 0; j < matrix.columns; ++j) {
    CleanSum d(0, CleanSum::kProofNoise);
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k)
      d.subtract(matrix.value[k] * reduced.y[matrix.index[k]]);
    reduced.d[j] = d.value();
    reduced.column_status[j] = Undo::side(BasisStatus::lower, reduced.d[j]);
  }
  Answer point = scatter(original, reduction, reduced);
  Undo undo{original, point, true};
  undo_all(reduction.stack, undo);
  return std::move(point.y);
}

}  // namespace tovik::lp::presolve
