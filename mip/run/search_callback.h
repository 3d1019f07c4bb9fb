/* A callback of a mixed-integer search while it runs: what it may ask for, in the caller's sense of objective and in the
 * space that TVK_PARAM_MIPCBREDLP names.
 *
 * It is known to the environment while it lives, by a number that no other callback of the environment ever had. Nothing is
 * computed before it is asked for. */
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "env/environment.h"
#include "env/problem.h"
#include "mip/run/space_map.h"
#include "mip/search/presolved_search.h"

namespace tovik::mip::run {

/* What is searched as a problem that callbacks may read: made when first asked for, and anew after a restart. */
struct SearchedProblem {
  std::unique_ptr<tovik::Problem> problem;
  std::size_t stages = 0;  // of presolve, when it was made
};

/* What all callbacks of one search share. */
struct CallbackScene {
  Environment& env;
  tovik::Problem& problem;
  PresolvedSearch& whole;
  const SpaceMap& spaces;
  SearchedProblem& searched_problem;
  bool in_user_space;  // what callbacks say and hear; else it is the searched problem

  /* That is running; there is one in every callback but those of solutions that come before it. */
  Search& search() const { return whole.search(); }
  bool has_search() const { return whole.has_search(); }
  double sign() const;  // of the caller's objective
  int columns() const { return in_user_space ? spaces.user_columns() : spaces.searched_columns(); }
  /* The point in question in the callbacks' space. */
  std::vector<double> point(const Sight& sight) const;
  /* The same with the columns of shown(), which may be more. */
  std::vector<double> whole_point(const Sight& sight) const;
  /* The problem whose sets, indicators and priorities callbacks speak of. */
  const mip::Problem& shown() const { return in_user_space ? whole.given() : search().global().problem; }
  double objective(double searched) const;  // +-1e75 for what there is not
  /* In the callbacks' space, -1 for a column that is not there. */
  int shown_column(int searched) const { return in_user_space ? spaces.user_column(searched) : searched; }
  /* The problem that the callbacks' indices speak of; it is to be read only. */
  Status shown_problem(const tovik::Problem** problem) const;
};

/* What the callback looks at and where its answers go; null where its kind does not have it. */
struct CallbackView {
  const Sight* sight = nullptr;  // null: no node
  OwnCuts* cuts = nullptr;
  std::vector<NewChild>* children = nullptr;
  const std::vector<int>* nodes = nullptr;  // open ones, as they are offered for a choice
};

class SearchCallback : public RunningCallback {
 public:
  SearchCallback(const CallbackScene& scene, int wherefrom, const CallbackView& view = {});
  ~SearchCallback() override;

  void* cbdata_value() const { return const_cast<void*>(cbdata()); }
  Status write(int item, void* result) override;
  const CallbackScene& scene() const { return scene_; }
  const CallbackView& view() const { return view_; }
  /* The node that is being processed. */
  std::optional<Node> node() const;
  /* The nodes that nodeindex counts: those on offer; else the node that is being processed, then the open ones by age.
   * Made when first asked for. */
  const std::vector<int>& nodes();
  /* Made when first asked for; it lives as long as the callback. */
  Status node_problem(tovik::Problem** problem);
  tovik::Problem* node_problem_made() const { return node_problem_.get(); }

 private:
  const CallbackScene& scene_;
  CallbackView view_;
  std::vector<int> nodes_;
  bool has_nodes_ = false;
  std::unique_ptr<tovik::Problem> node_problem_;
};

/* Items of a node, TVK_CALLBACK_INFO_NODE_..; 1003 for what is none. */
Status write_node_item(const CallbackScene& scene, const Node& node, int item, void* result);

/* The context that the pointer names; null for one that is none of a search, or no longer. */
SearchCallback* find_callback(const Environment& env, const void* cbdata);

}  // namespace tovik::mip::run
