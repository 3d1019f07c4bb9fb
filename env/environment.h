/* The environment record: everything that one opened environment owns. Created by TVKopenTOVIK or TVKparenv.
 * An opened environment is owned by its caller's handle; a child by its parent. Neither ever moves.
 *
 * Threads: nothing in it is locked by itself; one thread uses an environment at a time. `lock` is for the
 * workers of a parallel optimizer that share their master's state. */
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

#include "env/callbacks.h"
#include "env/channel.h"
#include "env/error.h"
#include "env/limits.h"
#include "env/registry.h"
#include "env/settings.h"
#include "include/tovik.h"

namespace tovik {

struct Problem;
struct NetworkProblem;

inline constexpr char kVersion[] = "12.2.0.0";

/* Deterministic work: ticks += count << (shift & 63). */
struct WorkCounter {
  std::uint64_t ticks = 0;
  std::uint32_t shift = 0;
  void add(std::uint64_t count) { ticks += count << (shift & 63); }
};

struct Environment {
  Environment();  // with its four channels; parameters are not yet set
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  void* binding_handle = nullptr;
  Settings settings;
  std::vector<std::unique_ptr<Channel>> channels;  // the four standard ones and the callers' own
  std::vector<std::unique_ptr<Channel>>
      retired_channels;              // deleted while routines at work might still write to them
  Channel* error_channel = nullptr;  // null once the caller deleted it; so the next three
  Channel* warning_channel = nullptr;
  Channel* results_channel = nullptr;
  Channel* log_channel = nullptr;
  std::vector<std::unique_ptr<Problem>> problems;
  std::vector<std::unique_ptr<NetworkProblem>> networks;
  std::vector<std::unique_ptr<Environment>> children;
  Environment* parent = nullptr;
  int thread_number = 0;        // of a child: 1 and up
  int in_callback = 0;          // an informational callback is running
  std::atomic<int> entered{0};  // exported routines at work in it; its one thread counts, others read
  int size_limits[3] = {2100000000, 2100000000, 2100000000};
  std::recursive_mutex lock;
  WorkCounter own_work;
  WorkCounter* work = &own_work;  // the counter in force
  LimitFrames limits;
  Callbacks callbacks;
  RunningCallback* running_callback = nullptr;  // the innermost
  std::uintptr_t callbacks_run = 0;             // numbers the callbacks of searches
  int (*terminate_function)() = nullptr;        // optimizers stop when it says something else than 0
  FILE* log_file = nullptr;
  bool ready = false;  // opened completely
  LiveHandle live;     // last: a handle is live while the record is whole

  void add_work(std::uint64_t count) { work->add(count); }
  bool delivering() const;  // called from a destination function of one of the channels, children's included
  bool in_use() const;      // a routine works on one of the problems or networks, or in a child
  /* The one that was opened: this one, or a child's parent. */
  const Environment& master() const { return parent != nullptr ? *parent : *this; }
};

/* 1804 while a routine other than the `callers` works in it: the one that wants to free it is then called from a
 * callback or a message function. */
Status may_be_freed(const Environment& env, int callers);
/* Frees a child; the pointer is only compared with those of the parent. 1002 for no child of it. */
Status free_child(Environment& parent, const Environment* child);

/* Marks an environment while an exported routine works in it. */
class Entrance {
 public:
  explicit Entrance(Environment& env) : entered_(env.entered) { add(1); }
  ~Entrance() { add(-1); }
  Entrance(const Entrance&) = delete;
  Entrance& operator=(const Entrance&) = delete;

 private:
  void add(int count) {
    entered_.store(entered_.load(std::memory_order_relaxed) + count, std::memory_order_relaxed);
  }
  std::atomic<int>& entered_;
};

/* Work done while it lives does not count. */
class UncountedWork {
 public:
  explicit UncountedWork(Environment& env) : counter_(*env.work), saved_(*env.work) {}
  ~UncountedWork() { counter_ = saved_; }
  UncountedWork(const UncountedWork&) = delete;
  UncountedWork& operator=(const UncountedWork&) = delete;

 private:
  WorkCounter& counter_;
  WorkCounter saved_;
};

/* Threads that the library may use: the processors available to the process, at least 1. */
int thread_limit();

/* Seconds on the environment's clock: processor time of the process or wall-clock time, as
 * TVK_PARAM_CLOCKTYPE says. Only differences mean something. */
double clock_seconds(const Environment& env);

}  // namespace tovik
