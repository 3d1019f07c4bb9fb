#include "mip/run/search_callback.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "env/limits.h"
#include "include/tovik.h"
#include "mip/run/node_problem.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

constexpr double kNoValue = 1e75;
constexpr double kMegabyte = 1048576;

Status put(void* result, double value) {
  *static_cast<double*>(result) = value;
  return 0;
}

Status put(void* result, std::int64_t count) {
  *static_cast<int*>(result) = static_cast<int>(std::clamp<std::int64_t>(count, INT_MIN, INT_MAX));
  return 0;
}

double relative_gap(double incumbent, double bound) {
  if (std::isinf(incumbent) || std::isinf(bound)) return kNoValue;
  return std::fabs(incumbent - bound) / (1e-10 + std::fabs(incumbent));
}

const mip::Problem& searched_problem(const PresolvedSearch& search) {
  return search.stages().empty() ? search.given() : search.stages().back()->problem;
}

std::int64_t open_integers(const Search& search) {
  const std::vector<int>& columns = search.global().integer_columns;
  const Domain& domain = search.worker().domain;
  return std::count_if(columns.begin(), columns.end(), [&](int j) { return !domain.is_fixed(j); });
}

/* item: from TVK_CALLBACK_INFO_COVER_CUTS to TVK_CALLBACK_INFO_USER_CUTS. */
std::int64_t cuts_of_class(const PresolvedSearch& search, int item) {
  constexpr CutClass kClasses[] = {
      CutClass::cover,         CutClass::gub_cover,   CutClass::flow_cover,      CutClass::flow_path,
      CutClass::clique,        CutClass::disjunctive, CutClass::fractional,      CutClass::mir,
      CutClass::implied_bound, CutClass::zero_half,   CutClass::multi_commodity, CutClass::user};
  const CutClass kind = kClasses[item - TVK_CALLBACK_INFO_COVER_CUTS];
  return search.statistics().cuts[static_cast<std::size_t>(kind)];
}

}  // namespace

double CallbackScene::sign() const {
  return problem.model->objective_sense();
}

std::vector<double> CallbackScene::whole_point(const Sight& sight) const {
  if (!in_user_space) return {sight.x.begin(), sight.x.end()};
  return sight.given != nullptr ? sight.given->x : whole.expand(sight.x);
}

std::vector<double> CallbackScene::point(const Sight& sight) const {
  std::vector<double> x = whole_point(sight);
  x.resize(static_cast<std::size_t>(columns()));
  return x;
}

double CallbackScene::objective(double searched) const {
  return sign() * std::clamp(searched, -kNoValue, kNoValue) + 0.0;
}

/* Where the two spaces are one it is the caller's own. */
Status CallbackScene::shown_problem(const tovik::Problem** shown) const {
  if (in_user_space || spaces.is_identity()) {
    *shown = &problem;
    return {};
  }
  SearchedProblem& made = searched_problem;
  if (made.problem == nullptr || made.stages != whole.stages().size()) {
    if (const Status s = make_searched_problem(*this, &made.problem); !s.ok()) return s;
    made.stages = whole.stages().size();
  }
  *shown = made.problem.get();
  return {};
}

SearchCallback::SearchCallback(const CallbackScene& scene, int wherefrom, const CallbackView& view)
    : RunningCallback(scene.env.running_callback, reinterpret_cast<const void*>(++scene.env.callbacks_run),
                      wherefrom),
      scene_(scene),
      view_(view) {}

SearchCallback::~SearchCallback() = default;

std::optional<Node> SearchCallback::node() const {
  const bool is_there = view_.sight != nullptr && view_.sight->slot >= 0;
  if (!is_there) return std::nullopt;
  return scene_.search().tree()[view_.sight->slot];
}

const std::vector<int>& SearchCallback::nodes() {
  if (view_.nodes != nullptr) return *view_.nodes;
  if (!has_nodes_) {
    nodes_ = scene_.search().tree().open_nodes();
    if (view_.sight != nullptr && view_.sight->slot >= 0) nodes_.insert(nodes_.begin(), view_.sight->slot);
    has_nodes_ = true;
  }
  return nodes_;
}

Status SearchCallback::node_problem(tovik::Problem** problem) {
  if (node_problem_ == nullptr) {
    if (const Status s = make_node_problem(scene_, *view_.sight, &node_problem_); !s.ok()) return s;
  }
  *problem = node_problem_.get();
  return {};
}

Status write_node_item(const CallbackScene& scene, const Node& node, int item, void* result) {
  const NodeExtras none;
  const NodeExtras& extras = node.extras == nullptr ? none : *node.extras;
  switch (item) {
    case TVK_CALLBACK_INFO_NODE_INFEASIBILITY_SUM:
      return put(result, extras.infeasibility_sum);
    case TVK_CALLBACK_INFO_NODE_INFEASIBILITIES:
      return put(result, std::int64_t{extras.infeasibilities});
    case TVK_CALLBACK_INFO_NODE_ESTIMATE:
      return put(result, scene.objective(std::max(node.estimate, node.bound)));
    case TVK_CALLBACK_INFO_NODE_DEPTH:
      return put(result, std::int64_t{node.depth});
    case TVK_CALLBACK_INFO_NODE_BOUND:
      return put(result, scene.objective(node.bound));
    case TVK_CALLBACK_INFO_NODE_COLUMN: {
      const int column = node.branch.column;
      return put(result, std::int64_t{column < 0 ? -1 : scene.shown_column(column)});
    }
    case TVK_CALLBACK_INFO_NODE_SEQUENCE:
      return put(result, node.id);
    case TVK_CALLBACK_INFO_NODE_HANDLE:
      *static_cast<void**>(result) = extras.handle;
      return 0;
    default:
      return TVK_ERROR_BAD_ARGUMENT;
  }
}

SearchCallback* find_callback(const Environment& env, const void* cbdata) {
  RunningCallback* const running = env.running_callback;
  const bool is_it = cbdata != nullptr && running != nullptr && running->cbdata() == cbdata;
  return is_it ? dynamic_cast<SearchCallback*>(running) : nullptr;
}

Status SearchCallback::write(int item, void* result) {
  Environment& env = scene_.env;
  PresolvedSearch& search = scene_.whole;
  const double incumbent = search.incumbent().objective;
  const LimitFrame* begin = env.limits.top();
  switch (item) {
    case TVK_CALLBACK_INFO_SECONDS:
      return put(result, begin == nullptr ? 0.0 : clock_seconds(env) - begin->begin);
    case TVK_CALLBACK_INFO_TICKS:
      return put(result, begin == nullptr ? 0.0 : static_cast<double>(env.work->ticks - begin->tick_begin));
    case TVK_CALLBACK_INFO_BEST_INTEGER:
      return put(result, scene_.objective(incumbent));
    case TVK_CALLBACK_INFO_BEST_BOUND:
      return put(result, scene_.objective(search.progress().best_bound));
    case TVK_CALLBACK_INFO_NODE_COUNT:
      return put(result, search.progress().nodes);
    case TVK_CALLBACK_INFO_NODES_LEFT:
      return put(result, search.progress().left);
    case TVK_CALLBACK_INFO_MIP_ITERATIONS:
      return put(result, search.progress().iterations);
    case TVK_CALLBACK_INFO_CUTOFF:
      return put(result, scene_.objective(scene_.has_search() ? scene_.search().global().cutoff : incumbent));
    case TVK_CALLBACK_INFO_HAS_INCUMBENT:
      return put(result, std::int64_t{!std::isinf(incumbent)});
    case TVK_CALLBACK_INFO_GAP:
      return put(result, relative_gap(incumbent, search.progress().best_bound));
    case TVK_CALLBACK_INFO_SOLUTIONS:
      return put(result, search.progress().solutions);
    case TVK_CALLBACK_INFO_CUT_ROWS:
      return put(result, scene_.has_search()
                             ? static_cast<std::int64_t>(scene_.search().worker().cut_rows.size())
                             : 0);
    case TVK_CALLBACK_INFO_CURRENT_SEQUENCE:
      return !node() ? Status(TVK_ERROR_CALLBACK) : put(result, node()->id);
    case TVK_CALLBACK_INFO_CURRENT_DEPTH:
      return !node() ? Status(TVK_ERROR_CALLBACK) : put(result, std::int64_t{node()->depth});
    case TVK_CALLBACK_INFO_TREE_SIZE:
      return put(result, search.progress().tree_bytes / kMegabyte);
    case TVK_CALLBACK_INFO_THREADS:
      return put(result, std::int64_t{search.threads()});
    case TVK_CALLBACK_INFO_RESTARTS:
      return put(result, std::max<std::int64_t>(1, static_cast<std::int64_t>(search.stages().size())) - 1);
    case TVK_CALLBACK_INFO_OPEN_INTEGERS:
      return put(result, scene_.has_search() ? open_integers(scene_.search()) : 0);
    case TVK_CALLBACK_INFO_SEARCHED_ROWS:
      return put(result, std::int64_t{searched_problem(search).num_rows()});
    case TVK_CALLBACK_INFO_SEARCHED_COLUMNS:
      return put(result, std::int64_t{searched_problem(search).num_columns()});
    case TVK_CALLBACK_INFO_ROOT_BOUND:
      return put(result, scene_.objective(search.statistics().root_bound_after_cuts));
    case TVK_CALLBACK_INFO_LARGEST_DEPTH:
      return put(result, std::int64_t{search.statistics().largest_depth});
    default:
      return item >= TVK_CALLBACK_INFO_COVER_CUTS && item <= TVK_CALLBACK_INFO_USER_CUTS
                 ? put(result, cuts_of_class(search, item))
                 : Status(TVK_ERROR_BAD_ARGUMENT);
  }
}

}  // namespace tovik::mip::run
