#include "lp/run/warm_simplex.h"

#include <algorithm>
#include <cmath>

#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_options.h"
#include "lp/run/synchronize.h"
#include "model/store/model.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

/* The stored model in minimization form. */
struct ModelSource {
  const model::Model& model;
  verify::Limits column_bounds(int j) const {
    return {stored_lower(model.lower()[j]), stored_upper(model.upper()[j])};
  }
  double cost(int j) const { return model.objective_sense() * model.objective()[j]; }
  verify::Limits row_bounds(int i) const {
    return run::row_bounds(model.sense()[i], model.rhs()[i], model.range()[i]);
  }
  double offset() const { return model.objective_sense() * model.objective_offset(); }
};

/* The lines that have come, in the engine's form. */
simplex::ModelEdit edit_of(const Problem& problem) {
  const model::Model& model = *problem.model;
  const Journal& journal = problem.journal;
  const double sign = model.objective_sense();
  const int first_column = model.num_columns() - journal.columns().added();
  const int first_row = model.num_rows() - journal.rows().added();
  simplex::ModelEdit change;
  change.deleted_rows = journal.rows().deleted();
  change.deleted_columns = journal.columns().deleted();
  change.columns.rows = model.num_rows();
  change.columns.columns = journal.columns().added();
  change.rows.rows = first_column;
  change.rows.columns = journal.rows().added();
  for (int j = first_column; j < model.num_columns(); ++j) {
    change.cost.push_back(sign * model.objective()[j]);
    change.lower.push_back(stored_lower(model.lower()[j]));
    change.upper.push_back(stored_upper(model.upper()[j]));
    const model::ColumnView column = model.column(j);
    change.columns.index.insert(change.columns.index.end(), column.index, column.index + column.count);
    change.columns.value.insert(change.columns.value.end(), column.value, column.value + column.count);
    change.columns.start.push_back(static_cast<int>(change.columns.index.size()));
  }
  for (int i = first_row; i < model.num_rows(); ++i) {
    const verify::Limits bounds = row_bounds(model.sense()[i], model.rhs()[i], model.range()[i]);
    change.row_lower.push_back(bounds.lower);
    change.row_upper.push_back(bounds.upper);
    const model::RowView row = model.row(i);
    for (int k = 0; k < row.count; ++k) {
      if (row.index[k] >= first_column) break;  // ascending; new columns hold these entries
      change.rows.index.push_back(row.index[k]);
      change.rows.value.push_back(row.value[k]);
    }
    change.rows.start.push_back(static_cast<int>(change.rows.index.size()));
  }
  return change;
}

/* Rows and columns that have come or gone. False when the engine cannot go on: its basis does not allow it,
 * or most of the model is new. */
bool synchronize_structure(Problem& problem, WarmSimplex& warm) {
  const Journal& journal = problem.journal;
  if (!journal.structure_changed()) return true;
  if (journal.structure_lost() || !warm.start_installed || !problem.start.has_statuses()) return false;
  if (mostly_new(journal.rows().added(), problem.model->num_rows()) ||
      mostly_new(journal.columns().added(), problem.model->num_columns()))
    return false;
  warm.norms_current = false;
  return warm.solver.edit(edit_of(problem));
}

void synchronize_model_values(Problem& problem, WarmSimplex& warm) {
  synchronize_values(ModelSource{*problem.model}, problem.journal, warm.solver);
  problem.journal.clear();
}

BasisStatus column_at(int status) {
  switch (status) {
    case TVK_BASIC:
      return BasisStatus::basic;
    case TVK_AT_UPPER:
      return BasisStatus::upper;
    case TVK_FREE_SUPER:
      return BasisStatus::free;
    default:
      return BasisStatus::lower;
  }
}

/* Are the values and entries that the journal names numbers? */
bool changes_are_numbers(const model::Model& model, const Journal& journal) {
  const auto all = [](const double* values, int count) {
    return std::all_of(values, values + count, [](double v) { return std::isfinite(v); });
  };
  const auto column = [&](int j) {
    return std::isfinite(model.objective()[j]) && !std::isnan(model.lower()[j]) &&
           !std::isnan(model.upper()[j]);
  };
  const auto row = [&](int i) { return std::isfinite(model.range()[i]) && !std::isnan(model.rhs()[i]); };
  const auto columns = journal.columns().touched();
  const auto rows = journal.rows().touched();
  if (!std::all_of(columns.begin(), columns.end(), column) || !std::all_of(rows.begin(), rows.end(), row))
    return false;
  for (int j = model.num_columns() - journal.columns().added(); j < model.num_columns(); ++j) {
    if (!column(j) || !all(model.column(j).value, model.column(j).count)) return false;
  }
  for (int i = model.num_rows() - journal.rows().added(); i < model.num_rows(); ++i) {
    if (!row(i) || !all(model.row(i).value, model.row(i).count)) return false;
  }
  return true;
}

/* 1225 or 1233; an engine's data are numbers, so no more is looked at than has changed since. */
Status check_data(Environment& env, const Problem& problem) {
  const bool known = problem.simplex != nullptr && !problem.journal.values_lost();
  if (known && changes_are_numbers(*problem.model, problem.journal)) return {};
  return check_finite(env, *problem.model, problem.simplex == nullptr || problem.journal.structure_changed());
}

}  // namespace

Status warm_simplex(Environment& env, Problem& problem, const EngineSetup& setup, WarmSimplex** engine) {
  if (const Status finite = check_data(env, problem); !finite.ok()) return finite;
  auto* warm = static_cast<WarmSimplex*>(problem.simplex.get());
  if (warm != nullptr &&
      (warm->solver.options().scaling != setup.options.scaling || !synchronize_structure(problem, *warm))) {
    problem.simplex.reset();
    warm = nullptr;
  }
  if (warm != nullptr) {
    warm->solver.set_control(setup.control, setup.observer);
    warm->solver.set_options(setup.options);
    synchronize_model_values(problem, *warm);
  } else {
    problem.simplex =
        std::make_unique<WarmSimplex>(build_lp(*problem.model), setup.options, setup.control, setup.observer);
    problem.journal.start(problem.rows(), problem.columns());
    warm = static_cast<WarmSimplex*>(problem.simplex.get());
  }
  *engine = warm;
  return {};
}

void install_start(Environment& env, Problem& problem, WarmSimplex& warm) {
  if (env.settings.integer(TVK_PARAM_ADVIND) == 0 || !problem.start.has_statuses()) {
    warm.solver.forget_basis();
    warm.start_installed = false;
    return;
  }
  install_basis(problem, warm);
}

Basis starting_basis(const Problem& problem) {
  const model::Model& model = *problem.model;
  const Start& start = problem.start;
  Basis basis;
  basis.columns.assign(static_cast<size_t>(model.num_columns()), BasisStatus::lower);
  basis.rows.assign(static_cast<size_t>(model.num_rows()), BasisStatus::basic);
  for (size_t j = 0; j < basis.columns.size() && j < start.column_status.size(); ++j)
    basis.columns[j] = column_at(start.column_status[j]);
  for (size_t i = 0; i < basis.rows.size() && i < start.row_status.size(); ++i) {
    const BasisStatus at = column_at(start.row_status[i]);
    // A row's status says on which side of its range it stands; rows with one side have but one place.
    const char sense = model.sense()[i];
    basis.rows[i] = at == BasisStatus::basic || sense == 'R' ? at
                    : sense == 'L'                           ? BasisStatus::upper
                                                             : BasisStatus::lower;
  }
  return basis;
}

void release_engine(Problem& problem) {
  if (auto* warm = static_cast<WarmSimplex*>(problem.simplex.get()); warm != nullptr)
    warm->start_installed = false;
}

void install_basis(Problem& problem, WarmSimplex& warm) {
  if (warm.start_installed) return;
  const Basis basis = starting_basis(problem);
  warm.solver.set_basis(basis.columns, basis.rows);
  if (!problem.norms.dual.empty() && problem.norms.dual.size() == problem.norms.head.size()) {
    std::vector<int> head(problem.norms.head);
    for (int& j : head) {
      if (j < 0) j = problem.model->num_columns() - j - 1;
    }
    warm.solver.set_dual_norms(problem.norms.dual, head);
  }
}

WarmSimplex* synchronized_simplex(Problem& problem) {
  auto* warm = static_cast<WarmSimplex*>(problem.simplex.get());
  return warm != nullptr && warm->start_installed && !problem.journal.structure_changed() ? warm : nullptr;
}

Status start_feasibility(Environment& env, Problem& problem, PrimalFeasibility* start) {
  *start = PrimalFeasibility::unknown;
  auto* warm = static_cast<WarmSimplex*>(problem.simplex.get());
  if (warm == nullptr || !warm->start_installed || problem.journal.structure_lost() ||
      engine_options(env).scaling != warm->solver.options().scaling) {
    return {};
  }
  if (const Status finite = check_data(env, problem); !finite.ok()) return finite;
  EngineGuard guard(problem);
  if (!synchronize_structure(problem, *warm)) return {};
  warm->solver.set_options(engine_options(env));
  synchronize_model_values(problem, *warm);
  if (!problem.start.balanced) {  // the engine has pivoted for what was deleted
    const bool feasible = warm->solver.is_primal_feasible();
    guard.commit();
    *start = feasible ? PrimalFeasibility::feasible : PrimalFeasibility::infeasible;
    return {};
  }
  const simplex::Reoptimization::State state = warm->solver.standing();
  guard.commit();
  switch (state) {
    case simplex::Reoptimization::State::optimal:
    case simplex::Reoptimization::State::primal_feasible:
      *start = PrimalFeasibility::feasible;
      return {};
    case simplex::Reoptimization::State::primal_infeasible:
      *start = PrimalFeasibility::infeasible;
      return {};
    default:
      return {};
  }
}

}  // namespace tovik::lp::run
