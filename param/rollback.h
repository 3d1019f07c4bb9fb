/* Takes back changes of parameters: unless commit() is called, the destructor gives the environment the values and
 * the screen that it had before.
 * - Errors: bad_alloc in the constructor only. */
#pragma once

#include <array>

#include "env/environment.h"

namespace tovik::param {

class Rollback {
 public:
  explicit Rollback(Environment& env);
  ~Rollback();
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  void commit() noexcept { committed_ = true; }

 private:
  Environment& env_;
  Settings settings_;
  std::array<bool, 3> on_screen_{};
  bool committed_ = false;
};

}  // namespace tovik::param
