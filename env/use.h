/* Which routines are at work on a record (a problem or a network). A callback or message function that one of
 * them calls may read the record; changing or freeing it would pull it away from under them and is
 * refused. */
#pragma once

#include <atomic>

namespace tovik {

struct Use {
  bool changing = false;        // a routine that may change the record
  std::atomic<int> reading{0};  // routines that read it, on any thread

  bool busy() const { return changing || reading.load(std::memory_order_relaxed) > 0; }
};

/* Marks a record while a routine changes or optimizes it. */
class Changing {
 public:
  explicit Changing(Use& use) : use_(use) { use_.changing = true; }
  ~Changing() { use_.changing = false; }
  Changing(const Changing&) = delete;
  Changing& operator=(const Changing&) = delete;

 private:
  Use& use_;
};

/* Marks a record while a routine reads it. */
class Reading {
 public:
  explicit Reading(Use& use) : use_(use) { use_.reading.fetch_add(1, std::memory_order_relaxed); }
  ~Reading() { use_.reading.fetch_sub(1, std::memory_order_relaxed); }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  Use& use_;
};

}  // namespace tovik
