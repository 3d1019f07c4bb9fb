/* The frame of routines that a callback of a mixed-integer search may call with its context. */
#pragma once

#include <initializer_list>

#include "env/entry.h"
#include "mip/run/search_callback.h"

namespace tovik::api {

using mip::run::SearchCallback;

/* The callback that cbdata names: 3003 for a null one and for those of other optimizers, 1002 for one that is not running. */
inline Status find_context(Environment& env, void* cbdata, SearchCallback** callback) {
  if (cbdata == nullptr) return TVK_ERROR_NOT_MIP;
  if (env.running_callback == nullptr || env.running_callback->cbdata() != cbdata)
    return TVK_ERROR_NO_ENVIRONMENT;
  *callback = mip::run::find_callback(env, cbdata);
  return *callback == nullptr ? TVK_ERROR_NOT_MIP : 0;
}

/* worker: Status(Environment&, SearchCallback&). */
template <class Worker>
int with_context(ConstEnvHandle env, void* cbdata, Worker&& worker) {
  const auto find = [&](Environment& e) -> Status {
    SearchCallback* callback = nullptr;
    if (const Status s = find_context(e, cbdata, &callback); !s.ok()) return s;
    if (!callback->scene().has_search()) return TVK_ERROR_NOT_MIP;
    return worker(e, *callback);
  };
  return with_environment(env, find, CallbackContext::refused);
}

/* Before there is a search, too, and from the info callback; 1003 as well for a wherefrom that is not the call's own. */
template <class Worker>
int with_any_context(ConstEnvHandle env, void* cbdata, int wherefrom, Worker&& worker) {
  const auto find = [&](Environment& e) -> Status {
    SearchCallback* callback = nullptr;
    if (const Status s = find_context(e, cbdata, &callback); !s.ok()) return s;
    if (callback->wherefrom() != wherefrom) return TVK_ERROR_BAD_ARGUMENT;
    return worker(e, *callback);
  };
  return with_environment(env, find, CallbackContext::allowed);
}

/* 1003 as well for a wherefrom that is not the call's own. */
template <class Worker>
int with_context(ConstEnvHandle env, void* cbdata, int wherefrom, Worker&& worker) {
  const auto compare = [&](Environment& e, SearchCallback& callback) -> Status {
    if (callback.wherefrom() != wherefrom) return TVK_ERROR_BAD_ARGUMENT;
    return worker(e, callback);
  };
  return with_context(env, cbdata, compare);
}

/* Where there is a node; 3003 else. */
template <class Worker>
int with_node(ConstEnvHandle env, void* cbdata, int wherefrom, Worker&& worker) {
  const auto compare = [&](Environment& e, SearchCallback& callback) -> Status {
    if (callback.view().sight == nullptr) return TVK_ERROR_NOT_MIP;
    if (callback.wherefrom() != wherefrom) return TVK_ERROR_BAD_ARGUMENT;
    return worker(e, callback);
  };
  return with_context(env, cbdata, compare);
}

}  // namespace tovik::api
