/* The control callbacks of an environment as the search asks for them: each call carries the search's words into those of the
 * function (its space, its sense of objective) and the answers back.
 *
 * - Holds: the functions that were registered when the call began; what is registered meanwhile is for later calls.
 * - Failure: a function that returns something else than 0, or TVK_CALLBACK_FAIL, ends the search: wants_to_stop(). */
#pragma once

#include <optional>
#include <vector>

#include "mip/run/search_callback.h"
#include "mip/search/callbacks.h"

namespace tovik::mip::run {

/* What is asked for where these are registered. */
SearchCallbacks::Kinds kinds_of(const ControlCallbacks& functions);

class CallerCallbacks : public SearchCallbacks {
 public:
  CallerCallbacks(const CallbackScene& scene, const ControlCallbacks& functions);

  int choose_node(int proposed) override;
  OwnSolve solve(const Sight& sight) override;
  OwnCuts cuts(const Sight& sight) override;
  std::vector<double> heuristic(const Sight& sight) override;
  bool accepts(const Sight& sight) override;
  std::optional<std::vector<NewChild>> branch(const Sight& sight, const Proposal& proposal) override;
  void delete_node(std::int64_t id, void* handle) override;

 private:
  bool has_failed(int code, int action);

  const CallbackScene& scene_;
  const ControlCallbacks functions_;
};

}  // namespace tovik::mip::run
