#include "lp/dispatch/live_simplex.h"

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

/* Bounds, right-hand sides and costs that differ from the engine's copy. Matrix changes never get here: they
 * drop it. */
void follow_changes(const model::Model& model, simplex::Solver& solver) {
  const LpData& lp = solver.user_lp();
  const double sign = model.objective_sense();
  const auto objective = model.objective();
  const auto lower = model.lower();
  const auto upper = model.upper();
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double low = stored_lower(lower[j]);
    const double high = stored_upper(upper[j]);
    if (low != lp.lower[j] || high != lp.upper[j]) solver.change_bounds(j, low, high);
    const double cost = sign * objective[j];
    if (cost != lp.cost[j]) solver.change_cost(j, cost);
  }
  const auto rhs = model.rhs();
  const auto sense = model.sense();
  const auto range = model.range();
  for (int i = 0; i < lp.num_rows(); ++i) {
    const RowBounds b = row_bounds(sense[i], rhs[i], range[i]);
    if (b.lower != lp.row_lower[i] || b.upper != lp.row_upper[i])
      solver.change_row_bounds(i, b.lower, b.upper);
  }
  solver.change_offset(sign * model.objective_offset());
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
  const auto fits = [&](const simplex::Solver& solver) {
    return solver.core().n == problem.model->num_columns() && solver.core().m == problem.model->num_rows() &&
           solver.num_entries() == problem.model->num_nonzeros();
  };
  if (live != nullptr && (live->solver.options().scaling != options.scaling || !fits(live->solver))) {
    problem.simplex.reset();
    live = nullptr;
  }
  if (live != nullptr) {
    live->solver.set_control(control, observer);
    live->solver.set_options(options);
    follow_changes(*problem.model, live->solver);
  } else {
    problem.simplex = std::make_unique<LiveSimplex>(build_lp(*problem.model), options, control, observer);
    live = static_cast<LiveSimplex*>(problem.simplex.get());
  }
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
  return live != nullptr && live->start_is_mine ? live : nullptr;
}

}  // namespace tovik::lp::dispatch
