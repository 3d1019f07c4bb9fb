/* The environment record: everything that one opened environment owns. Created by TVKopenTOVIK or TVKparenv. */
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

#include "env/channel.h"
#include "env/error.h"
#include "env/limits.h"
#include "env/random.h"
#include "env/settings.h"
#include "include/tovik.h"

namespace tovik {

struct Problem;

/* Deterministic work: ticks += count << (shift & 63). */
struct WorkCounter {
  std::uint64_t ticks = 0;
  std::uint32_t shift = 0;
  void add(std::uint64_t count) { ticks += count << (shift & 63); }
};

struct Callbacks {
  int (*lp)(ConstEnvHandle, void*, int, void*) = nullptr;
  void* lp_handle = nullptr;
  void (*profile)(ConstEnvHandle, int, void*) = nullptr;
  void* profile_handle = nullptr;
  int (*info)(ConstEnvHandle, void*, int, void*) = nullptr;
  void* info_handle = nullptr;
  volatile int* terminate = nullptr;
};

struct ErrorIndex;

struct Environment {
  Environment();
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  void* binding_handle = nullptr;
  Settings settings;
  Channel* error_channel = nullptr;
  Channel* warning_channel = nullptr;
  Channel* results_channel = nullptr;
  Channel* log_channel = nullptr;
  std::vector<std::unique_ptr<Channel>> channels;  // the four standard ones and the callers' own
  std::vector<std::unique_ptr<Problem>> problems;
  std::vector<Environment*> children;              // owned by the registry until TVKfreeparenv
  Environment* parent = nullptr;
  Random random;
  int thread_number = 0;
  int in_callback = 0;
  int size_limits[3] = {2100000000, 2100000000, 2100000000};
  std::unique_ptr<ErrorIndex> error_index;
  std::recursive_mutex lock;
  WorkCounter* work = nullptr;                     // the counter in force
  WorkCounter own_work;
  std::vector<WorkCounter*> saved_work;
  LimitFrames limits;
  int team_nesting = 0;
  Callbacks callbacks;
  FILE* log_file = nullptr;
  bool ready = false;

  void add_work(std::uint64_t count) { work->add(count); }
};

}  // namespace tovik
