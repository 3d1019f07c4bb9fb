/* Several searches share the tree of one, each on a thread of its own.
 *
 * - Order: the leader, a Search that was made for it, does the root and the first nodes alone. Then it hands nodes to as many
 *   others as there are threads; all work for a while, meet, and pass on what they have found: the best solution,
 *   pseudo-costs, short clauses, cuts of the tree, and nodes to those that have none as good. In the end the leader takes all
 *   that is left, and is what one search would have become: it may be run again, alone or with a team.
 * - A while is so much work, in ticks, where the path has to be the same in every run with as many threads; else so much time.
 * - Caller: only the leader knows the caller's control, and reports. The others stop where it does, and count in its
 *   progress as of the last meeting.
 * - A limit of nodes is kept exactly: what it leaves is shared out at each meeting.
 * - Not for searches in which callbacks take part, that enumerate, or that have a limit of iterations or solutions: serves()
 *   tells.
 * - Paper: "FiberSCIP - A Shared Memory Parallelization of SCIP", INFORMS J. Comput. 30 (2018), passes nodes and solutions alike.
 * - Errors: as Search. */
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "mip/search/search.h"

namespace tovik::mip {

/* Of the time that passed while a team worked; waits are averages over its members. */
struct TeamTimes {
  int threads = 0;      // 0: there was no team
  double before = 0;    // seconds: of the leader alone
  double together = 0;  // since then
  double meetings = 0;  // passing on what was found
  double waiting = 0;   // for the last one
};

class TeamSearch {
 public:
  /* The origin of a member's solutions, with a judge that no other member uses; null where the problem is the user's own. */
  using OriginMaker = std::function<std::unique_ptr<Origin>(lp::Control&)>;

  TeamSearch(Search& leader, const Problem& problem, const Settings& settings, lp::Control& control,
             OriginMaker make_origin, SolutionSink* sink);
  ~TeamSearch();
  TeamSearch(const TeamSearch&) = delete;
  TeamSearch& operator=(const TeamSearch&) = delete;

  static bool serves(const Settings& settings, const SearchCallbacks* callbacks);

  Conclusion run();
  const TeamTimes& times() const { return times_; }

 private:
  struct Member;

  Conclusion run_alone();
  Conclusion run_together();
  void gather();
  bool allow_nodes();
  std::optional<Conclusion> work();
  void work_as(Member& member);
  std::optional<Conclusion> meet();
  void share_solutions();
  void share_findings();
  void share_pseudo_costs();
  void share_nodes();
  void report();
  void dissolve();
  bool gap_is_closed() const;

  Search& leader_;
  const Problem& problem_;
  const Settings& settings_;
  const TeamSettings& team_;
  lp::Control& control_;
  OriginMaker make_origin_;
  SolutionSink* sink_;
  std::atomic<bool> stop_ = false;
  std::vector<std::unique_ptr<Member>> members_;  // the leader first
  PseudoCosts shared_costs_;
  double while_ = 1;  // in units of the first
  TeamTimes times_;
};

}  // namespace tovik::mip
