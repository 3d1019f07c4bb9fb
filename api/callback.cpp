/* Registration of callbacks and of the caller's terminate flag. */
#include "env/callbacks.h"

#include "env/entry.h"
#include "env/handles.h"

using namespace tovik;

namespace {

template <class Function>
using SlotOf = CallbackSlot<Function>& (*)(Callbacks&);

template <class Function>
int set_slot(EnvHandle env, SlotOf<Function> slot, Function function, void* handle) {
  return with_environment(env, [&](Environment& e) -> Status {
    slot(e.callbacks) = {function, handle};
    return 0;
  });
}

/* Either address may be null. */
template <class Function>
int get_slot(ConstEnvHandle env, SlotOf<Function> slot, Function* function_p, void** handle_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (function_p != nullptr) *function_p = slot(e.callbacks).function;
    if (handle_p != nullptr) *handle_p = slot(e.callbacks).handle;
    return 0;
  });
}

/* The family without a code: a bad environment has no callbacks. */
template <class Function>
void get_control_slot(ConstEnvHandle env, SlotOf<Function> slot, Function* function_p, void** handle_p) {
  if (function_p != nullptr) *function_p = nullptr;
  if (handle_p != nullptr) *handle_p = nullptr;
  get_slot(env, slot, function_p, handle_p);
}

CallbackSlot<InformFunction>& lp_slot(Callbacks& c) {
  return c.lp;
}
CallbackSlot<InformFunction>& mip_slot(Callbacks& c) {
  return c.mip;
}
CallbackSlot<InformFunction>& info_slot(Callbacks& c) {
  return c.info;
}
CallbackSlot<InformFunction>& network_slot(Callbacks& c) {
  return c.network;
}
CallbackSlot<InformFunction>& tuning_slot(Callbacks& c) {
  return c.tuning;
}
CallbackSlot<BranchFunction>& branch_slot(Callbacks& c) {
  return c.control.branch;
}
CallbackSlot<BranchFunction>& branch_without_solution_slot(Callbacks& c) {
  return c.control.branch_without_solution;
}
CallbackSlot<CutFunction>& cut_slot(Callbacks& c) {
  return c.control.cut;
}
CallbackSlot<NodeFunction>& node_slot(Callbacks& c) {
  return c.control.node;
}
CallbackSlot<HeuristicFunction>& heuristic_slot(Callbacks& c) {
  return c.control.heuristic;
}
CallbackSlot<IncumbentFunction>& incumbent_slot(Callbacks& c) {
  return c.control.incumbent;
}
CallbackSlot<SolveFunction>& solve_slot(Callbacks& c) {
  return c.control.solve;
}
CallbackSlot<DeleteNodeFunction>& delete_node_slot(Callbacks& c) {
  return c.control.delete_node;
}

}  // namespace

int TVKsetlpcallbackfunc(EnvHandle env, InformFunction func, void* handle) {
  return set_slot(env, lp_slot, func, handle);
}
int TVKgetlpcallbackfunc(ConstEnvHandle env, InformFunction* func_p, void** handle_p) {
  return get_slot(env, lp_slot, func_p, handle_p);
}

int TVKsetmipcallbackfunc(EnvHandle env, InformFunction func, void* handle) {
  return set_slot(env, mip_slot, func, handle);
}
int TVKgetmipcallbackfunc(ConstEnvHandle env, InformFunction* func_p, void** handle_p) {
  return get_slot(env, mip_slot, func_p, handle_p);
}

int TVKsetinfocallbackfunc(EnvHandle env, InformFunction func, void* handle) {
  return set_slot(env, info_slot, func, handle);
}
int TVKgetinfocallbackfunc(ConstEnvHandle env, InformFunction* func_p, void** handle_p) {
  return get_slot(env, info_slot, func_p, handle_p);
}

int TVKsetnetcallbackfunc(EnvHandle env, InformFunction func, void* handle) {
  return set_slot(env, network_slot, func, handle);
}
int TVKgetnetcallbackfunc(ConstEnvHandle env, InformFunction* func_p, void** handle_p) {
  return get_slot(env, network_slot, func_p, handle_p);
}

int TVKsettuningcallbackfunc(EnvHandle env, InformFunction func, void* handle) {
  return set_slot(env, tuning_slot, func, handle);
}
int TVKgettuningcallbackfunc(ConstEnvHandle env, InformFunction* func_p, void** handle_p) {
  return get_slot(env, tuning_slot, func_p, handle_p);
}

int TVKsetprofcallbackfunc(EnvHandle env, ProfileFunction func, void* handle) {
  const auto profile = [](Callbacks& c) -> CallbackSlot<ProfileFunction>& { return c.profile; };
  return set_slot<ProfileFunction>(env, profile, func, handle);
}

int TVKsetbranchcallbackfunc(EnvHandle env, BranchFunction func, void* handle) {
  return set_slot(env, branch_slot, func, handle);
}
void TVKgetbranchcallbackfunc(ConstEnvHandle env, BranchFunction* func_p, void** handle_p) {
  get_control_slot(env, branch_slot, func_p, handle_p);
}

int TVKsetbranchnosolncallbackfunc(EnvHandle env, BranchFunction func, void* handle) {
  return set_slot(env, branch_without_solution_slot, func, handle);
}
void TVKgetbranchnosolncallbackfunc(ConstEnvHandle env, BranchFunction* func_p, void** handle_p) {
  get_control_slot(env, branch_without_solution_slot, func_p, handle_p);
}

int TVKsetcutcallbackfunc(EnvHandle env, CutFunction func, void* handle) {
  return set_slot(env, cut_slot, func, handle);
}
void TVKgetcutcallbackfunc(ConstEnvHandle env, CutFunction* func_p, void** handle_p) {
  get_control_slot(env, cut_slot, func_p, handle_p);
}

int TVKsetnodecallbackfunc(EnvHandle env, NodeFunction func, void* handle) {
  return set_slot(env, node_slot, func, handle);
}
void TVKgetnodecallbackfunc(ConstEnvHandle env, NodeFunction* func_p, void** handle_p) {
  get_control_slot(env, node_slot, func_p, handle_p);
}

int TVKsetheuristiccallbackfunc(EnvHandle env, HeuristicFunction func, void* handle) {
  return set_slot(env, heuristic_slot, func, handle);
}
void TVKgetheuristiccallbackfunc(ConstEnvHandle env, HeuristicFunction* func_p, void** handle_p) {
  get_control_slot(env, heuristic_slot, func_p, handle_p);
}

int TVKsetincumbentcallbackfunc(EnvHandle env, IncumbentFunction func, void* handle) {
  return set_slot(env, incumbent_slot, func, handle);
}
void TVKgetincumbentcallbackfunc(ConstEnvHandle env, IncumbentFunction* func_p, void** handle_p) {
  get_control_slot(env, incumbent_slot, func_p, handle_p);
}

int TVKsetsolvecallbackfunc(EnvHandle env, SolveFunction func, void* handle) {
  return set_slot(env, solve_slot, func, handle);
}
void TVKgetsolvecallbackfunc(ConstEnvHandle env, SolveFunction* func_p, void** handle_p) {
  get_control_slot(env, solve_slot, func_p, handle_p);
}

int TVKsetdeletenodecallbackfunc(EnvHandle env, DeleteNodeFunction func, void* handle) {
  return set_slot(env, delete_node_slot, func, handle);
}
void TVKgetdeletenodecallbackfunc(ConstEnvHandle env, DeleteNodeFunction* func_p, void** handle_p) {
  get_control_slot(env, delete_node_slot, func_p, handle_p);
}

int TVKsetterminate(EnvHandle env, volatile int* terminate_p) {
  const auto store = [&](Environment& e) -> Status {
    e.callbacks.terminate = terminate_p;
    return 0;
  };
  return with_environment(env, store, CallbackContext::allowed);
}

void TVKEsetterminatefunc(EnvHandle env, int (*func)(void)) {
  if (Environment* e = from_handle(env); e != nullptr) e->terminate_function = func;
}
