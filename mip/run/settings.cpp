#include "mip/run/settings.h"

#include <algorithm>
#include <cmath>

#include "include/tovik.h"
#include "lp/binding/engine_options.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

constexpr double kNoCutoff = 1e75, kNever = 1e75;
constexpr int kUnlimited = 2100000000;
constexpr double kLeastIntegrality = 1e-9;

void take_number(double value, double& option) {
  if (!std::isnan(value)) option = value;
}

std::int64_t limit(int value) {
  return value >= kUnlimited ? kNoLimit : value;
}

void take_presolve(const tovik::Settings& s, PresolveSettings& out) {
  const int reductions = s.integer(TVK_PARAM_REDUCE);
  out.on = s.integer(TVK_PARAM_PREIND) != 0;
  out.passes = s.integer(TVK_PARAM_PREPASS);
  out.primal = (reductions & 1) != 0;
  out.dual = (reductions & 2) != 0;
  out.linear_only = s.integer(TVK_PARAM_PRELINEAR) == 0;
  out.aggregator = s.integer(TVK_PARAM_AGGIND);
  out.fill = s.integer(TVK_PARAM_AGGFILL);
  out.probing = s.integer(TVK_PARAM_PROBE);
  take_number(s.real(TVK_PARAM_PROBETIME), out.probing_seconds);
  out.restarts = s.integer(TVK_PARAM_REPEATPRESOLVE);
  out.coefficients = s.integer(TVK_PARAM_COEREDIND);
  if (s.integer(TVK_PARAM_BNDSTRENIND) == 0) out.rules &= ~rule_bit(PresolveRule::propagation);
}

NodeFileSettings node_files(const tovik::Settings& s) {
  const int kind = s.integer(TVK_PARAM_NODEFILEIND);
  NodeFileSettings out;
  out.on = kind != 0;
  out.on_disk = kind == 2 || kind == 3;
  out.compressed = kind == 1 || kind == 3;
  take_number(s.real(TVK_PARAM_WORKMEM), out.memory);
  out.directory = s.text(TVK_PARAM_WORKDIR);
  return out;
}

PolishSettings polish_settings(const tovik::Settings& s) {
  PolishSettings out;
  take_number(s.real(TVK_PARAM_POLISHAFTEREPAGAP), out.absolute_gap);
  take_number(s.real(TVK_PARAM_POLISHAFTEREPGAP), out.relative_gap);
  out.nodes = limit(s.integer(TVK_PARAM_POLISHAFTERNODE));
  out.solutions = limit(s.integer(TVK_PARAM_POLISHAFTERINTSOL));
  if (const double after = s.real(TVK_PARAM_POLISHAFTERTIME); after < kNever) out.seconds = after;
  out.at_limits = s.real(TVK_PARAM_POLISHTIME) > 0;
  return out;
}

FirstMethod first_method(int code) {
  return code == 1 ? FirstMethod::primal : code == 5 ? FirstMethod::sifting : FirstMethod::dual;
}

/* Moves what stands at its default. */
void apply_emphasis(int emphasis, Settings& settings) {
  HeuristicSettings& heuristics = settings.heuristics;
  const auto by_default = [](auto& value, auto standard, auto wanted) {
    if (value == standard) value = wanted;
  };
  switch (emphasis) {
    case 1:  // feasibility: heuristics often, the tree towards good estimates
      by_default(heuristics.interval, 0, 5);
      by_default(heuristics.neighbourhood_interval, 0, 20);
      by_default(settings.node_rule, NodeRule::best_bound, NodeRule::best_estimate);
      by_default(settings.best_bound_interval, 7, 50);
      break;
    case 2:  // optimality: less for heuristics, more for the choice of the branching
      by_default(heuristics.neighbourhood_interval, 0, 500);
      by_default(settings.strong_candidates, 10, 20);
      break;
    case 3:  // best bound: no heuristics in the tree's way
      by_default(heuristics.interval, 0, 200);
      by_default(heuristics.neighbourhood_interval, 0, 2000);
      by_default(settings.strong_candidates, 10, 40);
      by_default(settings.backtrack_share, 0.9999, 0.1);
      break;
    case 4:  // hidden solutions: searches around what is known
      by_default(heuristics.neighbourhood_interval, 0, 10);
      by_default(heuristics.sub_nodes, std::int64_t{500}, std::int64_t{2000});
      break;
    default:
      break;
  }
}

}  // namespace

Settings settings_of(const Environment& env, const tovik::Problem& problem) {
  const tovik::Settings& s = env.settings;
  Settings out;
  out.lp = lp::run::engine_options(env);
  out.lp.sifting = lp::simplex::Sifting::never;
  out.lp.iteration_limit = kUnlimited;
  out.tolerances.feasibility = out.lp.primal_tolerance;
  take_number(s.real(TVK_PARAM_EPINT), out.tolerances.integrality);
  // Relaxations have no more digits; integer columns of solutions are whole exactly, whatever this is.
  out.tolerances.integrality = std::max(out.tolerances.integrality, kLeastIntegrality);
  take_number(s.real(TVK_PARAM_EPGAP), out.relative_gap);
  take_number(s.real(TVK_PARAM_EPAGAP), out.absolute_gap);
  // Cutoffs in the sense of the problem; here all is minimized.
  const bool minimize = problem.model->objective_sense() > 0;
  const double cutoff = minimize ? s.real(TVK_PARAM_CUTUP) : -s.real(TVK_PARAM_CUTLO);
  if (cutoff < kNoCutoff) out.cutoff = cutoff;
  take_number(s.real(TVK_PARAM_OBJDIF), out.least_improvement);
  take_number(s.real(TVK_PARAM_RELOBJDIF), out.least_relative_improvement);
  out.node_limit = limit(s.integer(TVK_PARAM_NODELIM));
  out.solution_limit = limit(s.integer(TVK_PARAM_INTSOLLIM));
  out.iteration_limit = limit(s.integer(TVK_PARAM_ITLIM));
  take_number(s.real(TVK_PARAM_TRELIM), out.tree_limit);
  out.node_files = node_files(s);
  out.node_rule = static_cast<NodeRule>(s.integer(TVK_PARAM_NODESEL));
  out.best_bound_interval = s.integer(TVK_PARAM_BBINTERVAL);
  take_number(s.real(TVK_PARAM_BTTOL), out.backtrack_share);
  out.first_direction = s.integer(TVK_PARAM_BRDIR);
  out.root_method = first_method(s.integer(TVK_PARAM_STARTALG));
  out.node_method = first_method(s.integer(TVK_PARAM_SUBALG));
  out.root_presolve = s.integer(TVK_PARAM_RELAXPREIND) > 0;
  out.node_presolve = s.integer(TVK_PARAM_PRESLVND);
  out.variable_rule = s.integer(TVK_PARAM_VARSEL);
  out.strong_candidates = s.integer(TVK_PARAM_STRONGCANDLIM);
  out.strong_iterations = s.integer(TVK_PARAM_STRONGITLIM);
  take_presolve(s, out.presolve);
  out.symmetry = s.integer(TVK_PARAM_SYMMETRY);
  out.cuts.fractional = s.integer(TVK_PARAM_FRACCUTS);
  out.cuts.rounding = s.integer(TVK_PARAM_MIRCUTS);
  out.cuts.covers = s.integer(TVK_PARAM_COVERS);
  out.cuts.gub_covers = s.integer(TVK_PARAM_GUBCOVERS);
  out.cuts.cliques = s.integer(TVK_PARAM_CLIQUES);
  out.cuts.flow_covers = s.integer(TVK_PARAM_FLOWCOVERS);
  out.cuts.flow_paths = s.integer(TVK_PARAM_FLOWPATHS);
  out.cuts.implied_bounds = s.integer(TVK_PARAM_IMPLBD);
  out.cuts.zero_half = s.integer(TVK_PARAM_ZEROHALFCUTS);
  out.cuts.fractional_candidates = s.integer(TVK_PARAM_FRACCAND);
  out.cuts.fractional_rounds = s.integer(TVK_PARAM_FRACPASS);
  out.cuts.aggregations = s.integer(TVK_PARAM_AGGCUTLIM);
  take_number(s.real(TVK_PARAM_CUTSFACTOR), out.cuts.rows_factor);
  out.cuts.most_of_a_class = s.integer(TVK_PARAM_EACHCUTLIM);
  out.cuts.root_rounds = s.integer(TVK_PARAM_CUTPASS);
  out.heuristics.interval = s.integer(TVK_PARAM_HEURFREQ);
  out.heuristics.neighbourhood_interval = s.integer(TVK_PARAM_RINSHEUR);
  out.heuristics.dives = static_cast<DiveKind>(s.integer(TVK_PARAM_DIVETYPE));
  out.heuristics.sub_nodes = limit(s.integer(TVK_PARAM_SUBMIPNODELIM));
  out.heuristics.pump = s.integer(TVK_PARAM_FPHEUR);
  out.heuristics.local_branching = s.integer(TVK_PARAM_LBHEUR) != 0;
  out.polish = polish_settings(s);
  out.heuristics.repair_tries = s.integer(TVK_PARAM_REPAIRTRIES);
  apply_emphasis(s.integer(TVK_PARAM_MIPEMPHASIS), out);
  // A user's cuts may cut off the one of two equal solutions that dual reductions would keep.
  if (!problem.model->families().user_cuts.empty()) {
    out.presolve.dual = false;
    out.symmetry = 0;
  }
  out.seed = out.lp.seed;
  const int threads = s.integer(TVK_PARAM_THREADS);
  out.team.threads = s.integer(TVK_PARAM_MEMORYEMPHASIS) != 0 ? 1 : threads == 0 ? thread_limit() : threads;
  out.team.deterministic = s.integer(TVK_PARAM_PARALLELMODE) >= 0;
  return out;
}

}  // namespace tovik::mip::run
