/* What callbacks of a mixed-integer search may ask of its nodes, sets and indicators, and the problems behind it. */
#include <algorithm>
#include <cmath>

#include "api/callback_context.h"
#include "env/handles.h"
#include "mip/domain/point.h"
#include "model/store/model.h"

using namespace tovik;
using api::SearchCallback;
using mip::run::CallbackScene;

namespace {

template <class Value>
Status put(void* result, Value value) {
  *static_cast<Value*>(result) = value;
  return 0;
}

/* Whether the point in question holds to a set or an indicator. */
template <class Object>
Status put_feasibility(const SearchCallback& callback, const Object& object, void* result) {
  const CallbackScene& scene = callback.scene();
  const mip::Sight* sight = callback.view().sight;
  if (sight == nullptr || !sight->has_point) return TVK_ERROR_NO_SOLUTION;
  const double tolerance = scene.search().global().settings.tolerances.feasibility;
  const std::vector<double> point = scene.whole_point(*sight);
  return put(result, mip::violation(object, point) <= tolerance ? 1 : 0);
}

/* Contexts in which there is a node's problem to look at. */
bool has_node_problem(int wherefrom) {
  for (const int context : {101, 102, 104, 105, 106, 111, 113}) {
    if (wherefrom == context) return true;
  }
  return false;
}

}  // namespace

int TVKgetcallbacknodelp(ConstEnvHandle env, void* cbdata, int wherefrom, ProbHandle* nodelp_p) {
  if (nodelp_p != nullptr) *nodelp_p = nullptr;
  return api::with_context(env, cbdata, [&](Environment&, SearchCallback& callback) -> Status {
    if (!has_node_problem(wherefrom) || callback.wherefrom() != wherefrom) return TVK_ERROR_BAD_ARGUMENT;
    if (!callback.node()) return TVK_ERROR_NOT_MIP;
    if (nodelp_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Problem* problem = nullptr;
    if (const Status s = callback.node_problem(&problem); !s.ok()) return s;
    *nodelp_p = to_handle(problem);
    return 0;
  });
}

int TVKgetcallbacklp(ConstEnvHandle env, void* cbdata, int wherefrom, ConstProbHandle* lp_p) {
  if (lp_p != nullptr) *lp_p = nullptr;
  const auto give = [&](Environment&, SearchCallback& callback) -> Status {
    if (lp_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const Problem* problem = nullptr;
    if (const Status s = callback.scene().shown_problem(&problem); !s.ok()) return s;
    *lp_p = to_handle(problem);
    return 0;
  };
  return api::with_context(env, cbdata, wherefrom, give);
}

int TVKgetcallbacknodeobjval(ConstEnvHandle env, void* cbdata, int wherefrom, double* objval_p) {
  return api::with_node(env, cbdata, wherefrom, [&](Environment&, SearchCallback& callback) -> Status {
    if (objval_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const mip::Sight& sight = *callback.view().sight;
    if (!sight.has_point) return TVK_ERROR_NO_SOLUTION;
    return put(objval_p, callback.scene().objective(sight.objective));
  });
}

int TVKgetcallbacknodestat(ConstEnvHandle env, void* cbdata, int wherefrom, int* nodestat_p) {
  return api::with_node(env, cbdata, wherefrom, [&](Environment&, SearchCallback& callback) -> Status {
    if (nodestat_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const bool is_solved = callback.view().sight->is_relaxation;
    return put<int>(nodestat_p, is_solved ? TVK_STATUS_OPTIMAL : TVK_STATUS_NONE);
  });
}

int TVKgetcallbacknodeinfo(ConstEnvHandle env, void* cbdata, int wherefrom, int nodeindex, int whichinfo,
                           void* result_p) {
  const auto write = [&](Environment&, SearchCallback& callback) -> Status {
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const std::vector<int>& nodes = callback.nodes();
    if (nodeindex < 0 || nodeindex >= static_cast<int>(nodes.size())) return TVK_ERROR_INDEX_RANGE;
    const CallbackScene& scene = callback.scene();
    return mip::run::write_node_item(scene, scene.search().tree()[nodes[nodeindex]], whichinfo, result_p);
  };
  return api::with_context(env, cbdata, wherefrom, write);
}

int TVKgetcallbackseqinfo(ConstEnvHandle env, void* cbdata, int wherefrom, int seqid, int whichinfo,
                          void* result_p) {
  const auto write = [&](Environment&, SearchCallback& callback) -> Status {
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const CallbackScene& scene = callback.scene();
    const mip::Tree& tree = scene.search().tree();
    const std::vector<int>& nodes = callback.nodes();
    const auto found =
        std::find_if(nodes.begin(), nodes.end(), [&](int slot) { return tree[slot].id == seqid; });
    if (found == nodes.end()) return TVK_ERROR_INDEX_RANGE;
    return mip::run::write_node_item(scene, tree[*found], whichinfo, result_p);
  };
  return api::with_context(env, cbdata, wherefrom, write);
}

/* ---- sets and indicators ---- */

int TVKgetcallbacksosinfo(ConstEnvHandle env, void* cbdata, int wherefrom, int sosindex, int member,
                          int whichinfo, void* result_p) {
  const auto write = [&](Environment&, SearchCallback& callback) -> Status {
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const CallbackScene& scene = callback.scene();
    const std::vector<mip::OrderedSet>& sets = scene.shown().sets;
    const auto count = static_cast<int>(sets.size());
    if (whichinfo == TVK_CALLBACK_INFO_SOS_COUNT) return put(result_p, count);
    if (sosindex < 0 || sosindex >= count) return TVK_ERROR_INDEX_RANGE;
    const mip::OrderedSet& set = sets[sosindex];
    const auto size = static_cast<int>(set.columns.size());
    switch (whichinfo) {
      case TVK_CALLBACK_INFO_SOS_TYPE:
        return put(result_p, set.type);
      case TVK_CALLBACK_INFO_SOS_SIZE:
        return put(result_p, size);
      case TVK_CALLBACK_INFO_SOS_IS_FEASIBLE: {
        return put_feasibility(callback, set, result_p);
      }
      case TVK_CALLBACK_INFO_SOS_MEMBER:
        if (member < 0 || member >= size) return TVK_ERROR_INDEX_RANGE;
        return put(result_p, set.columns[member]);
      default:
        return TVK_ERROR_BAD_ARGUMENT;
    }
  };
  return api::with_context(env, cbdata, wherefrom, write);
}

int TVKgetcallbackindicatorinfo(ConstEnvHandle env, void* cbdata, int wherefrom, int iindex, int whichinfo,
                                void* result_p) {
  const auto write = [&](Environment&, SearchCallback& callback) -> Status {
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const CallbackScene& scene = callback.scene();
    const std::vector<mip::Indicator>& indicators = scene.shown().indicators;
    const auto count = static_cast<int>(indicators.size());
    if (whichinfo == TVK_CALLBACK_INFO_INDICATOR_COUNT) return put(result_p, count);
    if (iindex < 0 || iindex >= count) return TVK_ERROR_INDEX_RANGE;
    const mip::Indicator& indicator = indicators[iindex];
    switch (whichinfo) {
      case TVK_CALLBACK_INFO_INDICATOR_COLUMN:
        return put(result_p, indicator.switch_column);
      case TVK_CALLBACK_INFO_INDICATOR_COMPLEMENTED:
        return put(result_p, indicator.active_value == 0 ? 1 : 0);
      case TVK_CALLBACK_INFO_INDICATOR_IS_FEASIBLE: {
        return put_feasibility(callback, indicator, result_p);
      }
      default:
        return TVK_ERROR_BAD_ARGUMENT;
    }
  };
  return api::with_context(env, cbdata, wherefrom, write);
}

/* The search proposes bounds, never constraints. */
int TVKgetcallbackbranchconstraints(ConstEnvHandle env, void* cbdata, int wherefrom, int* cuts_p,
                                    int* nzcnt_p, double*, char*, int*, int*, double*, int rmatsz,
                                    int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return api::with_node(env, cbdata, wherefrom, [&](Environment&, SearchCallback& callback) -> Status {
    if (callback.view().children == nullptr || rmatsz < 0) return TVK_ERROR_BAD_ARGUMENT;
    if (cuts_p == nullptr || nzcnt_p == nullptr) return TVK_ERROR_NULL_POINTER;
    *cuts_p = 0;
    *nzcnt_p = 0;
    return 0;
  });
}
