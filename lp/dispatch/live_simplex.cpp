#include "lp/dispatch/live_simplex.h"

#include <algorithm>
#include <cmath>

#include "include/tovik.h"
#include "lp/dispatch/build_lp.h"
#include "model/model.h"
#include "param/hidden.h"

namespace tovik::lp::dispatch {
namespace {

simplex::Pricing dual_pricing(int code) {
  switch (code) {
    case 1:
      return simplex::Pricing::dantzig;
    case 2:
    case 3:
      return simplex::Pricing::steepest_edge;
    case 4:
      return simplex::Pricing::steepest_edge_unit;
    case 5:
      return simplex::Pricing::devex;
    default:
      return simplex::Pricing::automatic;
  }
}

simplex::Pricing primal_pricing(int code) {
  switch (code) {
    case 2:
      return simplex::Pricing::steepest_edge;
    case 3:
      return simplex::Pricing::steepest_edge_unit;
    case 1:
      return simplex::Pricing::devex;
    default:
      return simplex::Pricing::automatic;
  }
}

/* Bounds, right-hand sides and costs that differ from the engine's copy. */
class Follower {
 public:
  Follower(const model::Model& model, simplex::Solver& solver)
      : model_(model), solver_(solver), sign_(model.objective_sense()) {}

  void column(int j) {
    const LpData& lp = solver_.user_lp();
    const double low = stored_lower(model_.lower()[j]);
    const double high = stored_upper(model_.upper()[j]);
    if (low != lp.lower[j] || high != lp.upper[j]) solver_.change_bounds(j, low, high);
    const double cost = sign_ * model_.objective()[j];
    if (cost != lp.cost[j]) solver_.change_cost(j, cost);
    solver_.renew_column(j);
  }
  void row(int i) {
    const LpData& lp = solver_.user_lp();
    const RowBounds b = row_bounds(model_.sense()[i], model_.rhs()[i], model_.range()[i]);
    if (b.lower != lp.row_lower[i] || b.upper != lp.row_upper[i])
      solver_.change_row_bounds(i, b.lower, b.upper);
    solver_.renew_row(i);  // its slack counts from the right-hand side
  }
  void offset() { solver_.change_offset(sign_ * model_.objective_offset()); }

 private:
  const model::Model& model_;
  simplex::Solver& solver_;
  double sign_;
};

void follow_changes(Problem& problem, LiveSimplex& live) {
  Follower follow(*problem.model, live.solver);
  Journal& journal = problem.journal;
  if (journal.values_lost()) {
    live.solver.renew_answer();
    for (int j = 0; j < live.solver.user_lp().num_columns(); ++j) follow.column(j);
    for (int i = 0; i < live.solver.user_lp().num_rows(); ++i) follow.row(i);
  } else {
    for (const int j : journal.columns().touched()) follow.column(j);
    for (const int i : journal.rows().touched()) follow.row(i);
  }
  follow.offset();
  journal.clear();
}

simplex::At column_at(int status) {
  switch (status) {
    case 1:
      return simplex::At::basic;
    case 2:
      return simplex::At::upper;
    case 3:
      return simplex::At::free;
    default:
      return simplex::At::lower;
  }
}

/* A parameter may hold a value that is not a number: no comparison with it ever holds, and the engine would
 * go round for ever. It then keeps its own default. */
void take_number(double value, double& option) {
  if (!std::isnan(value)) option = value;
}

}  // namespace

simplex::Options engine_options(const Environment& env) {
  const Settings& s = env.settings;
  simplex::Options options;
  take_number(s.real(TVK_PARAM_EPRHS), options.primal_tolerance);
  take_number(s.real(TVK_PARAM_EPOPT), options.dual_tolerance);
  take_number(s.real(TVK_PARAM_EPMRK), options.markowitz);
  options.refactor_limit = s.integer(TVK_PARAM_REINV);
  options.singular_limit = s.integer(TVK_PARAM_SINGLIM);
  options.iteration_limit = s.integer(TVK_PARAM_ITLIM);
  options.dual_pricing = dual_pricing(s.integer(TVK_PARAM_DPRIIND));
  options.primal_pricing = primal_pricing(s.integer(TVK_PARAM_PPRIIND));
  options.price_candidates = s.integer(TVK_PARAM_PRICELIM);
  options.perturb_always = s.integer(TVK_PARAM_PERIND) != 0;
  options.perturb_after = s.integer(TVK_PARAM_PERLIM);
  take_number(s.real(TVK_PARAM_EPPER), options.perturb_magnitude);
  options.scaling = s.integer(TVK_PARAM_SCAIND);
  const int method = s.integer(TVK_PARAM_LPMETHOD);
  options.sifting = method == 0   ? simplex::Sifting::when_it_pays
                    : method == 5 ? simplex::Sifting::always
                                  : simplex::Sifting::never;
  options.seed = static_cast<std::uint64_t>(s.integer(param::kRandomSeed));
  options.display = s.integer(TVK_PARAM_SIMDISPLAY);
  return options;
}

LiveSimplex& live_simplex(Environment& env, Problem& problem, Control& control, simplex::Observer* observer) {
  const simplex::Options options = engine_options(env);
  auto* live = static_cast<LiveSimplex*>(problem.simplex.get());
  if (live != nullptr && (live->solver.options().scaling != options.scaling || problem.journal.moved())) {
    problem.simplex.reset();
    live = nullptr;
  }
  if (live != nullptr) {
    live->solver.set_control(control, observer);
    live->solver.set_options(options);
    follow_changes(problem, *live);
  } else {
    problem.simplex = std::make_unique<LiveSimplex>(build_lp(*problem.model), options, control, observer);
    problem.journal.start(problem.rows(), problem.columns());
    live = static_cast<LiveSimplex*>(problem.simplex.get());
  }
  live->data_checked = false;  // as far as is known here
  return *live;
}

void install_start(Environment& env, Problem& problem, LiveSimplex& live) {
  if (env.settings.integer(TVK_PARAM_ADVIND) == 0 || !problem.start.has_basis()) {
    live.solver.forget_basis();
    live.start_is_mine = false;
    return;
  }
  install_basis(problem, live);
}

BasisStatus starting_basis(const Problem& problem) {
  const model::Model& model = *problem.model;
  const Start& start = problem.start;
  BasisStatus basis;
  basis.column.assign(static_cast<size_t>(model.num_columns()), simplex::At::lower);
  basis.row.assign(static_cast<size_t>(model.num_rows()), simplex::At::basic);
  for (size_t j = 0; j < basis.column.size() && j < start.column_status.size(); ++j)
    basis.column[j] = column_at(start.column_status[j]);
  for (size_t i = 0; i < basis.row.size() && i < start.row_status.size(); ++i) {
    const simplex::At at = column_at(start.row_status[i]);
    // A row's status says on which side of its range it stands; rows with one side have but one place.
    const char sense = model.sense()[i];
    basis.row[i] = at == simplex::At::basic || sense == 'R' ? at
                   : sense == 'L'                           ? simplex::At::upper
                                                            : simplex::At::lower;
  }
  return basis;
}

void install_basis(Problem& problem, LiveSimplex& live) {
  if (live.start_is_mine) return;
  const BasisStatus basis = starting_basis(problem);
  live.solver.set_basis(basis.column, basis.row);
  if (!problem.norms.dual.empty() && problem.norms.dual.size() == problem.norms.head.size()) {
    std::vector<int> head(problem.norms.head);
    for (int& j : head) {
      if (j < 0) j = problem.model->num_columns() - j - 1;
    }
    live.solver.set_dual_norms(problem.norms.dual, head);
  }
}

LiveSimplex* current_simplex(Problem& problem) {
  auto* live = static_cast<LiveSimplex*>(problem.simplex.get());
  return live != nullptr && live->start_is_mine && !problem.journal.moved() ? live : nullptr;
}

Status check_data(Environment& env, Problem& problem) {
  const auto* live = static_cast<const LiveSimplex*>(problem.simplex.get());
  const model::Model& model = *problem.model;
  const Journal& journal = problem.journal;
  if (live != nullptr && live->data_checked && !journal.values_lost() && !journal.moved()) {
    const auto finite_column = [&](int j) {
      return std::isfinite(model.objective()[j]) && !std::isnan(model.lower()[j]) &&
             !std::isnan(model.upper()[j]);
    };
    const auto finite_row = [&](int i) {
      return std::isfinite(model.range()[i]) && !std::isnan(model.rhs()[i]);
    };
    const auto columns = journal.columns().touched();
    const auto rows = journal.rows().touched();
    if (std::all_of(columns.begin(), columns.end(), finite_column) &&
        std::all_of(rows.begin(), rows.end(), finite_row)) {
      return {};
    }
  }
  return check_finite(env, model, live == nullptr);
}

StartIs judge_start(Environment& env, Problem& problem) {
  LiveSimplex* live = current_simplex(problem);
  if (live == nullptr || !live->data_checked || !check_data(env, problem).ok()) return StartIs::unknown;
  if (engine_options(env).scaling != live->solver.options().scaling) return StartIs::unknown;
  EngineGuard guard(problem);
  live->solver.set_options(engine_options(env));
  follow_changes(problem, *live);
  const simplex::Standing::State state = live->solver.standing();
  guard.arrived();
  switch (state) {
    case simplex::Standing::State::optimal:
    case simplex::Standing::State::primal_feasible:
      return StartIs::feasible;
    case simplex::Standing::State::primal_infeasible:
      return StartIs::infeasible;
    default:
      return StartIs::unknown;
  }
}

}  // namespace tovik::lp::dispatch
