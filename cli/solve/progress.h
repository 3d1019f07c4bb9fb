/* Lines that tell how far a solve is: method, phase, objective and the infeasibility that is left. A solve of a second has
 * none; a longer one gets the first after a second and then one every two seconds, later every tenth of the time so far. A
 * mixed-integer search gets one, with nodes, bound and incumbent, when its log has shown nothing for three seconds.
 * It hangs on the LP, the network and the informational MIP callback of the environment while it lives: what an application
 * does, the program does. */
#pragma once

#include <chrono>
#include <string>

#include "cli/console.h"
#include "cli/library.h"

namespace tovik::cli {

class ProgressLines {
 public:
  ProgressLines(const Environment& environment, Console& console);
  ~ProgressLines();
  ProgressLines(const ProgressLines&) = delete;
  ProgressLines& operator=(const ProgressLines&) = delete;

 private:
  static int on_search(ConstEnvHandle env, void* cbdata, int wherefrom, void* self);
  double seconds() const;
  static int on_call(ConstEnvHandle env, void* cbdata, int wherefrom, void* self);
  void tell(ConstEnvHandle env, void* cbdata, int wherefrom, double seconds);

  const Environment& environment_;
  Console& console_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  double next_;  // seconds since then
};

}  // namespace tovik::cli
