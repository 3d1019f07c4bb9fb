/* What callbacks of a mixed-integer search may add to it: cuts and children of a node. */
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "api/callback_context.h"
#include "mip/run/caller_rows.h"
#include "model/routines/check.h"

using namespace tovik;
using api::SearchCallback;
using mip::run::CallbackScene;
using mip::run::CallerRow;

namespace {

constexpr std::size_t kMostChildren = 2;

bool is_sense(int sense) {
  return sense == 'L' || sense == 'E' || sense == 'G';
}

/* The cut in the columns that are searched. */
Status make_cut(Environment& env, const CallbackScene& scene, const CallerRow& row, mip::Cut* cut) {
  if (!is_sense(row.sense)) return fail(env, TVK_ERROR_SENSE_ENTRY, row.sense);
  for (int k = 0; k < row.count; ++k) {
    if (row.columns[k] < 0 || row.columns[k] >= scene.columns())
      return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
  }
  if (const Status s = model::check_numbers(env, row.count, row.values); !s.ok()) return s;
  if (std::isnan(row.rhs)) return fail(env, TVK_ERROR_NOT_A_NUMBER, 0);
  *cut = mip::run::cut_of(scene, row);
  env.add_work(static_cast<std::uint64_t>(row.count));
  return 0;
}

struct CutCall {
  void* cbdata;
  int wherefrom;
  CallerRow row;
  bool in_subtree;
  bool stays;
};

int add_cut(ConstEnvHandle env, const CutCall& call) {
  return api::with_context(env, call.cbdata, [&](Environment& e, SearchCallback& callback) -> Status {
    if (callback.view().sight == nullptr) return TVK_ERROR_NOT_MIP;
    const bool is_here = call.wherefrom == TVK_CALLBACK_MIP_CUT && callback.view().cuts != nullptr;
    if (!is_here) return TVK_ERROR_BAD_ARGUMENT;
    if (const Status s = model::check_count({call.row.count}); !s.ok()) return s;
    if (call.row.columns == nullptr || call.row.values == nullptr) return TVK_ERROR_NULL_POINTER;
    mip::Cut cut;
    if (const Status s = make_cut(e, callback.scene(), call.row, &cut); !s.ok()) return s;
    cut.stays = call.stays;
    mip::OwnCuts& cuts = *callback.view().cuts;
    (call.in_subtree ? cuts.in_subtree : cuts.everywhere).push_back(std::move(cut));
    return 0;
  });
}

/* A child as a callback describes it. */
struct ChildCall {
  void* cbdata;
  int wherefrom;
  double estimate;
  int bounds;
  const int* columns;
  const char* sides;
  const double* values;
  model::PackedMatrix rows;
  const double* rhs;
  const char* senses;
  void* handle;
  int* seqnum_p;
};

bool lacks_an_array(const ChildCall& c) {
  return (c.bounds > 0 && (c.columns == nullptr || c.sides == nullptr || c.values == nullptr)) ||
         (c.rows.vectors > 0 && (c.rhs == nullptr || c.senses == nullptr || c.rows.begin == nullptr)) ||
         (c.rows.entries > 0 && (c.rows.index == nullptr || c.rows.value == nullptr));
}

Status check_bounds(Environment& env, const CallbackScene& scene, const ChildCall& call) {
  for (int k = 0; k < call.bounds; ++k) {
    if (call.columns[k] < 0 || call.columns[k] >= scene.columns())
      return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
    if (const char side = call.sides[k]; side != 'L' && side != 'U' && side != 'B')
      return fail(env, TVK_ERROR_BOUND_INDICATOR, k);
    if (std::isnan(call.values[k])) return fail(env, TVK_ERROR_NOT_A_NUMBER, k);
  }
  return 0;
}

void add_bounds(const CallbackScene& scene, const ChildCall& call, mip::NewChild& child) {
  for (int k = 0; k < call.bounds; ++k) {
    mip::run::add_bound(scene, {call.columns[k], call.sides[k], call.values[k]}, child);
  }
}

Status add_rows(Environment& env, const CallbackScene& scene, const ChildCall& call, mip::NewChild& child) {
  const model::PackedMatrix& rows = call.rows;
  if (const Status s = model::check_safe(env, {'c', scene.columns()}, rows); !s.ok()) return s;
  for (int i = 0; i < rows.vectors; ++i) {
    const int begin = rows.begin[i], end = i + 1 < rows.vectors ? rows.begin[i + 1] : rows.entries;
    const CallerRow row{end - begin, rows.index + begin, rows.value + begin, call.rhs[i], call.senses[i]};
    mip::Cut cut;
    if (const Status s = make_cut(env, scene, row, &cut); !s.ok()) return s;
    child.rows.push_back(std::move(cut));
  }
  return 0;
}

int add_child(ConstEnvHandle env, const ChildCall& call) {
  if (call.seqnum_p != nullptr) *call.seqnum_p = -1;
  return api::with_context(env, call.cbdata, [&](Environment& e, SearchCallback& callback) -> Status {
    if (callback.view().sight == nullptr) return TVK_ERROR_NOT_MIP;
    std::vector<mip::NewChild>* const children = callback.view().children;
    const bool is_here = callback.wherefrom() == call.wherefrom && children != nullptr;
    if (!is_here) return TVK_ERROR_BAD_ARGUMENT;
    if (const Status s = model::check_count({call.bounds, call.rows.vectors, call.rows.entries}); !s.ok())
      return s;
    if (lacks_an_array(call) || call.seqnum_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (children->size() >= kMostChildren) return TVK_ERROR_CALLBACK;
    const CallbackScene& scene = callback.scene();
    mip::NewChild child;
    child.handle = call.handle;
    child.estimate = std::isnan(call.estimate) ? -mip::kInf : scene.sign() * call.estimate;
    if (const Status s = check_bounds(e, scene, call); !s.ok()) return s;
    add_bounds(scene, call, child);
    if (const Status s = add_rows(e, scene, call, child); !s.ok()) return s;
    children->reserve(kMostChildren);
    child.id = scene.search().take_node_id();
    *call.seqnum_p = static_cast<int>(std::min<std::int64_t>(child.id, 2100000000));
    children->push_back(std::move(child));
    return 0;
  });
}

}  // namespace

int TVKcutcallbackadd(ConstEnvHandle env, void* cbdata, int wherefrom, int nzcnt, double rhs, int sense,
                      const int* cutind, const double* cutval, int cutclass) {
  return add_cut(env, {cbdata, wherefrom, {nzcnt, cutind, cutval, rhs, sense}, false, cutclass == 0});
}

int TVKcutcallbackaddlocal(ConstEnvHandle env, void* cbdata, int wherefrom, int nzcnt, double rhs, int sense,
                           const int* cutind, const double* cutval) {
  return add_cut(env, {cbdata, wherefrom, {nzcnt, cutind, cutval, rhs, sense}, true, true});
}

int TVKbranchcallbackbranchbds(ConstEnvHandle env, void* cbdata, int wherefrom, double nodeest, int cnt,
                               const int* indices, const char* lu, const double* bd, void* userhandle,
                               int* seqnum_p) {
  return TVKbranchcallbackbranchgeneral(env, cbdata, wherefrom, nodeest, cnt, indices, lu, bd, 0, 0, nullptr,
                                        nullptr, nullptr, nullptr, nullptr, userhandle, seqnum_p);
}

int TVKbranchcallbackbranchconstraints(ConstEnvHandle env, void* cbdata, int wherefrom, double nodeest,
                                       int rcnt, int nzcnt, const double* rhs, const char* sense,
                                       const int* rmatbeg, const int* rmatind, const double* rmatval,
                                       void* userhandle, int* seqnum_p) {
  return TVKbranchcallbackbranchgeneral(env, cbdata, wherefrom, nodeest, 0, nullptr, nullptr, nullptr, rcnt,
                                        nzcnt, rhs, sense, rmatbeg, rmatind, rmatval, userhandle, seqnum_p);
}

int TVKbranchcallbackbranchgeneral(ConstEnvHandle env, void* cbdata, int wherefrom, double nodeest,
                                   int varcnt, const int* varind, const char* varlu, const double* varbd,
                                   int rcnt, int nzcnt, const double* rhs, const char* sense,
                                   const int* rmatbeg, const int* rmatind, const double* rmatval,
                                   void* userhandle, int* seqnum_p) {
  return add_child(env, {cbdata,
                         wherefrom,
                         nodeest,
                         varcnt,
                         varind,
                         varlu,
                         varbd,
                         {rcnt, nzcnt, rmatbeg, rmatind, rmatval},
                         rhs,
                         sense,
                         userhandle,
                         seqnum_p});
}
