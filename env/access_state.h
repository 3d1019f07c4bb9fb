/* Which routines are at work on a record (a problem or a network). A callback or message function that one of
 * them calls may read the record; changing or freeing it would pull it away from under them and is
 * refused. */
#pragma once

#include <atomic>

namespace tovik {

struct AccessState {
  bool changing = false;         // a routine that may change the record
  std::atomic<int> reading{0};   // routines that read it, on any thread
  AccessState* owner = nullptr;  // of the record that this one goes with: who reads the one reads the other

  bool busy() const { return changing || reading.load(std::memory_order_relaxed) > 0; }
};

/* Marks a record while a routine changes or optimizes it. */
class WriteAccess {
 public:
  explicit WriteAccess(AccessState& use) : use_(use) { use_.changing = true; }
  ~WriteAccess() { use_.changing = false; }
  WriteAccess(const WriteAccess&) = delete;
  WriteAccess& operator=(const WriteAccess&) = delete;

 private:
  AccessState& use_;
};

/* Marks a record while a routine reads it. */
class ReadAccess {
 public:
  explicit ReadAccess(AccessState& use) : use_(use) { add(1); }
  ~ReadAccess() { add(-1); }
  ReadAccess(const ReadAccess&) = delete;
  ReadAccess& operator=(const ReadAccess&) = delete;

 private:
  void add(int count) {
    for (AccessState* use = &use_; use != nullptr; use = use->owner)
      use->reading.fetch_add(count, std::memory_order_relaxed);
  }
  AccessState& use_;
};

}  // namespace tovik
