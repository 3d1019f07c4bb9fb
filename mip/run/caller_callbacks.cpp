#include "mip/run/caller_callbacks.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "env/handles.h"
#include "include/tovik.h"
#include "lp/run/warm_simplex.h"

namespace tovik::mip::run {

SearchCallbacks::Kinds kinds_of(const ControlCallbacks& functions) {
  SearchCallbacks::Kinds kinds;
  kinds.branch = static_cast<bool>(functions.branch);
  kinds.branch_without_solution = static_cast<bool>(functions.branch_without_solution);
  kinds.cut = static_cast<bool>(functions.cut);
  kinds.node = static_cast<bool>(functions.node);
  kinds.heuristic = static_cast<bool>(functions.heuristic);
  kinds.incumbent = static_cast<bool>(functions.incumbent);
  kinds.solve = static_cast<bool>(functions.solve);
  kinds.delete_node = static_cast<bool>(functions.delete_node);
  return kinds;
}

namespace {

/* The children that the search proposes, in the arrays that a branch callback gets. */
struct ProposedChildren {
  int type = TVK_BRANCH_OTHER;
  int set = -1, count = 0;
  std::vector<double> estimates, bounds;
  std::vector<int> begin, columns;
  std::vector<char> sides;

  ProposedChildren(const CallbackScene& scene, const Proposal& proposal) {
    if (proposal.branching == nullptr) return;
    const Branching& branching = *proposal.branching;
    for (const Child& child : branching.children) {
      ++count;
      begin.push_back(static_cast<int>(columns.size()));
      estimates.push_back(scene.objective(std::max(proposal.estimate, child.bound)));
      for (const NodeChange& change : child.changes) {
        const int column = scene.shown_column(change.column);
        if (column < 0) continue;
        columns.push_back(column);
        sides.push_back(change.side == Side::lower ? 'L' : 'U');
        bounds.push_back(change.value);
      }
      if (child.changes.size() == 1) type = TVK_BRANCH_COLUMN;
    }
    if (branching.set >= 0) {
      const OrderedSet& branched = scene.search().global().problem.sets[branching.set];
      type = branched.type == 1 ? TVK_BRANCH_SOS1 : TVK_BRANCH_SOS2;
      set = scene.in_user_space ? branched.number : branching.set;
    }
  }
};

/* A solve callback has left an answer in the node's problem. */
bool is_decided(int status) {
  switch (status) {
    case TVK_STATUS_OPTIMAL:
    case TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE:
    case TVK_STATUS_INFEASIBLE:
    case TVK_STATUS_UNBOUNDED:
    case TVK_STATUS_UNBOUNDED_OR_INFEASIBLE:
    case TVK_STATUS_OBJECTIVE_LIMIT:
    case TVK_STATUS_PRIMAL_OBJECTIVE_LIMIT:
    case TVK_STATUS_DUAL_OBJECTIVE_LIMIT:
      return true;
    default:
      return false;
  }
}

int sequence(std::int64_t id) {
  return static_cast<int>(std::min<std::int64_t>(id, 2100000000));
}

}  // namespace

CallerCallbacks::CallerCallbacks(const CallbackScene& scene, const ControlCallbacks& functions)
    : SearchCallbacks(kinds_of(functions)), scene_(scene), functions_(functions) {}

bool CallerCallbacks::has_failed(int code, int action) {
  if (code == 0 && action != TVK_CALLBACK_FAIL) return false;
  stop();
  return true;
}

int CallerCallbacks::choose_node(int proposed) {
  const std::vector<int> nodes = scene_.search().tree().open_nodes();
  SearchCallback context(scene_, TVK_CALLBACK_MIP_NODE, {.nodes = &nodes});
  const auto at = std::find(nodes.begin(), nodes.end(), proposed);
  int index = static_cast<int>(at - nodes.begin()), action = TVK_CALLBACK_DEFAULT;
  const auto& slot = functions_.node;
  const int code = slot.function(to_handle(&scene_.env), context.cbdata_value(), TVK_CALLBACK_MIP_NODE,
                                 slot.handle, &index, &action);
  if (has_failed(code, action) || action != TVK_CALLBACK_SET) return proposed;
  return index >= 0 && index < static_cast<int>(nodes.size()) ? nodes[index] : proposed;
}

OwnSolve CallerCallbacks::solve(const Sight& sight) {
  SearchCallback context(scene_, TVK_CALLBACK_MIP_SOLVE, {.sight = &sight});
  int action = TVK_CALLBACK_DEFAULT;
  const auto& slot = functions_.solve;
  const int code = slot.function(to_handle(&scene_.env), context.cbdata_value(), TVK_CALLBACK_MIP_SOLVE,
                                 slot.handle, &action);
  OwnSolve own;
  if (has_failed(code, action) || action != TVK_CALLBACK_SET) return own;
  tovik::Problem* const problem = context.node_problem_made();
  if (problem == nullptr) return own;
  update_solution(*problem);
  if (!is_decided(problem->status)) {
    own.result = OwnSolve::Result::no_solution;
    return own;
  }
  own.result = OwnSolve::Result::solved;
  if (problem->start.has_basis()) own.basis = lp::run::starting_basis(*problem);
  return own;
}

OwnCuts CallerCallbacks::cuts(const Sight& sight) {
  OwnCuts cuts;
  SearchCallback context(scene_, TVK_CALLBACK_MIP_CUT, {.sight = &sight, .cuts = &cuts});
  int action = TVK_CALLBACK_DEFAULT;
  const auto& slot = functions_.cut;
  const int code = slot.function(to_handle(&scene_.env), context.cbdata_value(), TVK_CALLBACK_MIP_CUT,
                                 slot.handle, &action);
  has_failed(code, action);
  return cuts;
}

std::vector<double> CallerCallbacks::heuristic(const Sight& sight) {
  std::vector<double> x = scene_.point(sight);
  SearchCallback context(scene_, TVK_CALLBACK_MIP_HEURISTIC, {.sight = &sight});
  double objective = scene_.objective(sight.objective);
  int must_check = 1, action = TVK_CALLBACK_DEFAULT;
  const auto& slot = functions_.heuristic;
  const int code = slot.function(to_handle(&scene_.env), context.cbdata_value(), TVK_CALLBACK_MIP_HEURISTIC,
                                 slot.handle, &objective, x.data(), &must_check, &action);
  if (has_failed(code, action) || action != TVK_CALLBACK_SET) return {};
  if (std::any_of(x.begin(), x.end(), [](double v) { return !std::isfinite(v); })) return {};
  return scene_.in_user_space ? scene_.spaces.searched_point(x) : x;
}

bool CallerCallbacks::accepts(const Sight& sight) {
  std::vector<double> x = scene_.point(sight);
  SearchCallback context(scene_, TVK_CALLBACK_MIP_INCUMBENT, {.sight = &sight});
  int is_feasible = 1, action = TVK_CALLBACK_DEFAULT;
  const auto& slot = functions_.incumbent;
  const int code =
      slot.function(to_handle(&scene_.env), context.cbdata_value(), TVK_CALLBACK_MIP_INCUMBENT, slot.handle,
                    scene_.objective(sight.objective), x.data(), &is_feasible, &action);
  return !has_failed(code, action) && is_feasible != 0;
}

std::optional<std::vector<NewChild>> CallerCallbacks::branch(const Sight& sight, const Proposal& proposal) {
  std::vector<NewChild> children;
  const int wherefrom =
      proposal.has_relaxation ? TVK_CALLBACK_MIP_BRANCH : TVK_CALLBACK_MIP_BRANCH_NO_SOLUTION;
  const auto& slot = proposal.has_relaxation ? functions_.branch : functions_.branch_without_solution;
  ProposedChildren proposed(scene_, proposal);
  int action = TVK_CALLBACK_DEFAULT, code = 0;
  {
    SearchCallback context(scene_, wherefrom, {.sight = &sight, .children = &children});
    code =
        slot.function(to_handle(&scene_.env), context.cbdata_value(), wherefrom, slot.handle, proposed.type,
                      proposed.set, proposed.count, static_cast<int>(proposed.columns.size()),
                      proposed.estimates.data(), proposed.begin.data(), proposed.columns.data(),
                      proposed.sides.data(), proposed.bounds.data(), &action);
  }
  if (!has_failed(code, action) && action == TVK_CALLBACK_SET) return children;
  // What was made is not taken: its owner hears of it.
  for (const NewChild& child : children) delete_node(child.id, child.handle);
  return std::nullopt;
}

void CallerCallbacks::delete_node(std::int64_t id, void* handle) {
  const auto& slot = functions_.delete_node;
  if (!slot) return;
  slot.function(to_handle(&scene_.env), TVK_CALLBACK_MIP_DELETE_NODE, slot.handle, sequence(id), handle);
}

}  // namespace tovik::mip::run
