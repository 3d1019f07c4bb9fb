#include "mip/run/presolve_lines.h"

#include <string>

#include "env/channel.h"
#include "include/tovik.h"
#include "model/store/model.h"
#include "param/hidden.h"

namespace tovik::mip::run {
namespace {

/* Empty for what stands behind the model's own rows and columns. */
std::string label(const model::NameTable& names, int k, int count, char letter) {
  if (k < 0 || k >= count) return {};
  return names.empty() ? letter + std::to_string(k + 1) : std::string(names.name(k));
}

void write_finding(Channel* out, const model::Model& model, const PresolveFinding& finding) {
  using Kind = PresolveFinding::Kind;
  const auto row_label = [&](int i) { return label(model.row_names(), i, model.num_rows(), 'c'); };
  const std::string row = row_label(finding.row), other = row_label(finding.other_row);
  const std::string column = label(model.column_names(), finding.column, model.num_columns(), 'x');
  switch (finding.kind) {
    case Kind::column_bounds_cross:
      if (!column.empty()) message(out, "Bound infeasibility column '%.255s'.\n", column.c_str());
      break;
    case Kind::no_whole_value:
      if (!column.empty()) message(out, "Integer infeasible column '%.255s'.\n", column.c_str());
      break;
    case Kind::row_out_of_reach:
      if (!row.empty()) message(out, "Implied bounds make row '%.255s' infeasible.\n", row.c_str());
      break;
    case Kind::empty_row: {
      if (row.empty()) break;
      const bool equation = finding.lower == finding.upper, below = finding.lower > 0;
      message(out, "Infeasibility row '%.255s':  0 %c= %g.\n", row.c_str(),
              equation ? '='
              : below  ? '>'
                       : '<',
              below ? finding.lower : finding.upper);
      break;
    }
    case Kind::rows_inconsistent:
      if (row.empty() || other.empty()) break;
      message(out, "Constraints '%.255s' and '%.255s' are inconsistent.\n", row.c_str(), other.c_str());
      break;
    case Kind::no_whole_solution:
      if (!row.empty()) message(out, "Integer infeasible equality row '%.255s'.\n", row.c_str());
      break;
    default:
      break;
  }
}

void write_summary(Channel* out, const Presolved& presolved, bool again) {
  const PresolveCounts& counts = presolved.counts;
  if (counts.aggregator_rounds == 1) {
    message(out, "Tried aggregator 1 time.\n");
  } else if (counts.aggregator_rounds > 1) {
    message(out, "Tried aggregator %d times.\n", counts.aggregator_rounds);
  }
  if (counts.rows_eliminated > 0 || counts.columns_eliminated > 0) {
    message(out, "%s eliminated %d rows and %d columns.\n", again ? "Reduced presolve" : "MIP Presolve",
            counts.rows_eliminated, counts.columns_eliminated);
  }
  if (counts.coefficients_modified > 0) {
    message(out, "MIP Presolve modified %d coefficients.\n", counts.coefficients_modified);
  }
  if (counts.substitutions > 0) message(out, "Aggregator did %d substitutions.\n", counts.substitutions);
  if (presolved.problem.num_columns() == 0 && presolved.problem.num_rows() == 0) {
    message(out, "All rows and columns eliminated.\n");
  }
}

}  // namespace

void write_presolve_lines(Environment& env, const tovik::Problem& problem, const Presolved& presolved,
                          double seconds, bool again) {
  Channel* const out = env.results_channel;
  if (env.settings.integer(param::kPresolveDisplay) != 0) {
    if (!presolved.infeasible) {
      write_summary(out, presolved, again);
    } else if (!again) {
      write_finding(out, *problem.model, presolved.finding);
    }
  }
  if (env.settings.integer(TVK_PARAM_MIPDISPLAY) > 0) message(out, "Presolve time = %7.2f sec.\n", seconds);
}

}  // namespace tovik::mip::run
