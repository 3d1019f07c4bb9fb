/* The functions that a caller registers in an environment, each with the pointer that it is handed, stored as given. They
 * are settings: a child environment begins with those of its parent.
 *
 * A callback that runs is known to its environment through a RunningCallback, by which the routines that it may call find
 * what they ask about. The pointer that the function gets (cbdata) is only ever compared with those of running callbacks,
 * never followed. */
#pragma once

#include <utility>

#include "env/error.h"
#include "include/tovik.h"

namespace tovik {

template <class Function>
struct CallbackSlot {
  Function function = nullptr;  // null: none
  void* handle = nullptr;
  explicit operator bool() const { return function != nullptr; }
  bool operator==(const CallbackSlot&) const = default;
};

using InformFunction = int (*)(ConstEnvHandle, void*, int, void*);
using ProfileFunction = void (*)(ConstEnvHandle, int, void*);
using BranchFunction = int (*)(ConstEnvHandle, void*, int, void*, int, int, int, int, const double*,
                               const int*, const int*, const char*, const double*, int*);
using CutFunction = int (*)(ConstEnvHandle, void*, int, void*, int*);
using NodeFunction = int (*)(ConstEnvHandle, void*, int, void*, int*, int*);
using HeuristicFunction = int (*)(ConstEnvHandle, void*, int, void*, double*, double*, int*, int*);
using IncumbentFunction = int (*)(ConstEnvHandle, void*, int, void*, double, double*, int*, int*);
using SolveFunction = int (*)(ConstEnvHandle, void*, int, void*, int*);
using DeleteNodeFunction = void (*)(ConstEnvHandle, int, void*, int, void*);

/* Those that take part in the mixed-integer search. */
struct ControlCallbacks {
  CallbackSlot<BranchFunction> branch, branch_without_solution;
  CallbackSlot<CutFunction> cut;
  CallbackSlot<NodeFunction> node;
  CallbackSlot<HeuristicFunction> heuristic;
  CallbackSlot<IncumbentFunction> incumbent;
  CallbackSlot<SolveFunction> solve;
  CallbackSlot<DeleteNodeFunction> delete_node;

  bool any() const { return *this != ControlCallbacks{}; }
  bool operator==(const ControlCallbacks&) const = default;
};

struct Callbacks {
  CallbackSlot<InformFunction> lp, mip, info, network, tuning;
  CallbackSlot<ProfileFunction> profile;
  ControlCallbacks control;
  volatile int* terminate = nullptr;
};

/* While it lives it is the innermost callback of its environment. */
class RunningCallback {
 public:
  RunningCallback(RunningCallback*& innermost, const void* cbdata, int wherefrom)
      : innermost_(innermost),
        outer_(std::exchange(innermost, this)),
        cbdata_(cbdata),
        wherefrom_(wherefrom) {}
  virtual ~RunningCallback() { innermost_ = outer_; }
  RunningCallback(const RunningCallback&) = delete;
  RunningCallback& operator=(const RunningCallback&) = delete;

  const void* cbdata() const { return cbdata_; }
  int wherefrom() const { return wherefrom_; }
  /* Writes an int or a double, TVK_CALLBACK_INFO_..; 1003 for what the context does not have. */
  virtual Status write(int item, void* result) = 0;

 private:
  RunningCallback*& innermost_;
  RunningCallback* outer_;  // of the callback that optimizes another problem
  const void* cbdata_;
  int wherefrom_;
};

}  // namespace tovik
