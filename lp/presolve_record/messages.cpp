#include "lp/presolve_record/messages.h"

#include <string>

#include "env/channel.h"
#include "include/tovik.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

using presolve::StatusCode;

constexpr std::size_t kNameCut = 255;

std::string label(const model::NameTable& names, int k, char letter) {
  if (k < 0) return {};
  return names.empty() ? letter + std::to_string(k + 1) : std::string(names.name(k)).substr(0, kNameCut);
}

const char* kind(int problem_type) {
  switch (problem_type) {
    case TVK_PROBTYPE_MILP:
      return "MIP";
    case TVK_PROBTYPE_QP:
      return "QP";
    case TVK_PROBTYPE_MIQP:
      return "MIQP";
    case TVK_PROBTYPE_QCP:
      return "QCP";
    case TVK_PROBTYPE_MIQCP:
      return "MIQCP";
    default:
      return "LP";
  }
}

void write_status(Channel* out, const model::Model& model, const presolve::PresolveStatus& status) {
  const std::string row = label(model.row_names(), status.row, 'c');
  const std::string other = label(model.row_names(), status.other_row, 'c');
  const std::string column = label(model.column_names(), status.column, 'x');
  switch (status.code) {
    case StatusCode::reduced:
      break;
    case StatusCode::column_bounds_cross:
      message(out, "Bound infeasibility column '%.255s'.\n", column.c_str());
      break;
    case StatusCode::column_infeasible:
      message(out, "Infeasible column '%.255s'.\n", column.c_str());
      break;
    case StatusCode::empty_column_improves:
      message(out, "Dual infeasible due to empty column '%.255s'.\n", column.c_str());
      break;
    case StatusCode::row_bounds_infeasible:
      message(out, "Implied bounds make row '%.255s' infeasible.\n", row.c_str());
      break;
    case StatusCode::forcing_row_infeasible:
      message(out, "Row '%.255s' infeasible, all entries at implied bounds.\n", row.c_str());
      break;
    case StatusCode::dependent_row_infeasible:
      message(out, "Row '%.255s' is dependent and infeasible.\n", row.c_str());
      break;
    case StatusCode::empty_row_infeasible: {
      const bool equation = status.lower == status.upper, below = status.lower > 0;
      message(out, "Infeasibility row '%.255s':  0 %c= %g.\n", row.c_str(),
              equation ? '='
              : below  ? '>'
                       : '<',
              below ? status.lower : status.upper);
      break;
    }
    case StatusCode::rows_inconsistent:
      message(out, "Constraints '%.255s' and '%.255s' are inconsistent.\n", row.c_str(), other.c_str());
      break;
    case StatusCode::dual_bounds_row:
      message(out, "Dual infeasible due to dual bounds, row '%.255s'.\n", row.c_str());
      break;
    case StatusCode::dual_bounds_column:
      message(out, "Primal unbounded due to dual bounds, variable '%.255s'.\n", column.c_str());
      break;
  }
}

void write_summary(Channel* out, int problem_type, const Presolved& presolved) {
  const presolve::Counts& counts = presolved.reduction.counts;
  if (counts.aggregator_rounds == 1) {
    message(out, "Tried aggregator 1 time.\n");
  } else if (counts.aggregator_rounds > 1) {
    message(out, "Tried aggregator %d times.\n", counts.aggregator_rounds);
  }
  if (counts.rows_eliminated > 0 || counts.columns_eliminated > 0)
    message(out, "%s Presolve eliminated %d rows and %d columns.\n", kind(problem_type),
            counts.rows_eliminated, counts.columns_eliminated);
  if (counts.coefficients_modified > 0)
    message(out, "%s Presolve modified %d coefficients.\n", kind(problem_type), counts.coefficients_modified);
  if (counts.substitutions > 0) message(out, "Aggregator did %d substitutions.\n", counts.substitutions);
  if (presolved.reduction.changed && presolved.all_removed())
    message(out, "All rows and columns eliminated.\n");
}

}  // namespace

void write_presolve_lines(Environment& env, const Problem& problem, const Presolved& presolved) {
  Channel* const out = env.results_channel;
  switch (presolved.conclusion) {
    case Conclusion::infeasible:
    case Conclusion::unbounded:
    case Conclusion::undecided:
      write_status(out, *problem.model, presolved.reduction.status);
      break;
    default:
      write_summary(out, problem.type, presolved);
  }
}

}  // namespace tovik::lp::run
