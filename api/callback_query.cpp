/* What callbacks of a mixed-integer search may look at, column by column. */
#include <algorithm>
#include <cmath>
#include <vector>

#include "api/callback_context.h"
#include "mip/domain/point.h"
#include "mip/run/search_columns.h"
#include "model/routines/check.h"

using namespace tovik;
using api::SearchCallback;
using mip::run::CallbackScene;
using mip::run::SearchColumns;

namespace {

struct Range {
  const char* routine;
  int begin, end;
};

Status check(Environment& env, const SearchCallback& callback, const Range& range) {
  return model::check_range(env, range.routine, range.begin, range.end, callback.scene().columns());
}

/* value(j): of column j as callbacks count them. */
template <class T, class Value>
void fill(const Range& range, T* out, Value value) {
  for (int j = range.begin; j <= range.end; ++j) out[j - range.begin] = value(j);
}

/* Bounds that make(columns) returns. */
template <class Value>
int get_bounds(ConstEnvHandle env, void* cbdata, int wherefrom, const Range& range, double* out,
               Value value) {
  const auto copy = [&](Environment& e, SearchCallback& callback) -> Status {
    if (out == nullptr) return TVK_ERROR_NULL_POINTER;
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const SearchColumns columns(callback.scene());
    fill(range, out, [&](int j) { return value(columns, j); });
    return 0;
  };
  return api::with_context(env, cbdata, wherefrom, copy);
}

}  // namespace

int TVKgetcallbackincumbent(ConstEnvHandle env, void* cbdata, int wherefrom, double* x, int begin, int end) {
  const auto copy = [&](Environment& e, SearchCallback& callback) -> Status {
    if (x == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbackincumbent", begin, end};
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const CallbackScene& scene = callback.scene();
    const std::vector<double>& given = scene.whole.incumbent().x;
    if (given.empty()) return TVK_ERROR_NO_SOLUTION;
    // The searched problem may have lost it to bounds that only better solutions keep.
    const std::vector<double> point = scene.in_user_space ? given : scene.whole.crush(given);
    fill(range, x, [&](int j) { return point[j]; });
    return 0;
  };
  return api::with_any_context(env, cbdata, wherefrom, copy);
}

int TVKgetcallbacknodex(ConstEnvHandle env, void* cbdata, int wherefrom, double* x, int begin, int end) {
  return api::with_node(env, cbdata, wherefrom, [&](Environment& e, SearchCallback& callback) -> Status {
    if (x == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbacknodex", begin, end};
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const mip::Sight& sight = *callback.view().sight;
    if (!sight.has_point) return TVK_ERROR_NO_SOLUTION;
    if (begin > end) return 0;
    const std::vector<double> point = callback.scene().point(sight);
    std::copy(point.begin() + begin, point.begin() + end + 1, x);
    return 0;
  });
}

int TVKgetcallbacknodeintfeas(ConstEnvHandle env, void* cbdata, int wherefrom, int* feas, int begin,
                              int end) {
  return api::with_node(env, cbdata, wherefrom, [&](Environment& e, SearchCallback& callback) -> Status {
    if (feas == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbacknodeintfeas", begin, end};
    const CallbackScene& scene = callback.scene();
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const mip::Sight& sight = *callback.view().sight;
    if (!sight.has_point) return TVK_ERROR_NO_SOLUTION;
    const SearchColumns columns(scene);
    const std::vector<double> point = scene.point(sight);
    const double tolerance = scene.search().global().settings.tolerances.integrality;
    fill(range, feas, [&](int j) {
      return columns.is_integer(j) && mip::fractionality(point[j]) > tolerance ? TVK_INTEGER_INFEASIBLE
                                                                               : TVK_INTEGER_FEASIBLE;
    });
    return 0;
  });
}

int TVKgetcallbacknodelb(ConstEnvHandle env, void* cbdata, int wherefrom, double* lb, int begin, int end) {
  return get_bounds(env, cbdata, wherefrom, {"TVKgetcallbacknodelb", begin, end}, lb,
                    [](const SearchColumns& columns, int j) { return columns.node_bounds(j).lower; });
}
int TVKgetcallbacknodeub(ConstEnvHandle env, void* cbdata, int wherefrom, double* ub, int begin, int end) {
  return get_bounds(env, cbdata, wherefrom, {"TVKgetcallbacknodeub", begin, end}, ub,
                    [](const SearchColumns& columns, int j) { return columns.node_bounds(j).upper; });
}
int TVKgetcallbackgloballb(ConstEnvHandle env, void* cbdata, int wherefrom, double* lb, int begin, int end) {
  return get_bounds(env, cbdata, wherefrom, {"TVKgetcallbackgloballb", begin, end}, lb,
                    [](const SearchColumns& columns, int j) { return columns.global_bounds(j).lower; });
}
int TVKgetcallbackglobalub(ConstEnvHandle env, void* cbdata, int wherefrom, double* ub, int begin, int end) {
  return get_bounds(env, cbdata, wherefrom, {"TVKgetcallbackglobalub", begin, end}, ub,
                    [](const SearchColumns& columns, int j) { return columns.global_bounds(j).upper; });
}

int TVKgetcallbackctype(ConstEnvHandle env, void* cbdata, int wherefrom, char* ctype, int begin, int end) {
  const auto copy = [&](Environment& e, SearchCallback& callback) -> Status {
    if (ctype == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbackctype", begin, end};
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const SearchColumns columns(callback.scene());
    fill(range, ctype, [&](int j) { return columns.type(j); });
    return 0;
  };
  return api::with_context(env, cbdata, wherefrom, copy);
}

int TVKgetcallbackorder(ConstEnvHandle env, void* cbdata, int wherefrom, int* priority, int* direction,
                        int begin, int end) {
  const auto copy = [&](Environment& e, SearchCallback& callback) -> Status {
    if (priority == nullptr && direction == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbackorder", begin, end};
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const SearchColumns columns(callback.scene());
    if (priority != nullptr) fill(range, priority, [&](int j) { return columns.priority(j).level; });
    if (direction != nullptr) fill(range, direction, [&](int j) { return columns.priority(j).direction; });
    return 0;
  };
  return api::with_context(env, cbdata, wherefrom, copy);
}

int TVKgetcallbackpseudocosts(ConstEnvHandle env, void* cbdata, int wherefrom, double* up, double* down,
                              int begin, int end) {
  const auto copy = [&](Environment& e, SearchCallback& callback) -> Status {
    if (up == nullptr && down == nullptr) return TVK_ERROR_NULL_POINTER;
    const Range range{"TVKgetcallbackpseudocosts", begin, end};
    if (const Status s = check(e, callback, range); !s.ok()) return s;
    const SearchColumns columns(callback.scene());
    using mip::Direction;
    if (up != nullptr) fill(range, up, [&](int j) { return columns.pseudo_cost(j, Direction::up); });
    if (down != nullptr) fill(range, down, [&](int j) { return columns.pseudo_cost(j, Direction::down); });
    return 0;
  };
  return api::with_context(env, cbdata, wherefrom, copy);
}
