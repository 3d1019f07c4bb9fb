/* What plugs into a search: separators and heuristics, each one file with one class.
 *
 * - State: none between calls that another worker could miss; an object belongs to one worker.
 * - It changes nothing but its worker, which it leaves as warm as it found it: bounds on the trail are taken back, and the
 *   relaxation stands where it stood (restore()). What was found is in worker.out, and holds globally.
 * - Effort: it stops by the budget, which it asks for at every loop over entries; its caller counts calls, successes and
 *   work, and calls what brings nothing ever more seldom. */
#pragma once

#include <cstdint>

namespace tovik::mip {

struct Worker;

enum class Verdict {
  nothing,
  found,       // something is in worker.out
  infeasible,  // the node has no solution better than the cutoff
};

struct Moment {
  bool root = false;
  int depth = 0;
  int round = 0;                   // of separation at this node
  bool before_relaxation = false;  // of the root: there is none yet
  bool before_cuts = false;        // the first relaxation of the root
  bool first = false;              // there is no incumbent, or one only that no relaxation has seen
  int least_effort = 0;            // of the families of cuts that are called
  std::int64_t budget = 0;         // entries that may be touched
  std::int64_t iterations = 0;     // of the simplex that may be spent
};

class Plugin {
 public:
  Plugin() = default;
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  virtual ~Plugin() = default;
  virtual const char* name() const = 0;
  virtual Verdict call(Worker& worker, const Moment& moment) = 0;
};

}  // namespace tovik::mip
