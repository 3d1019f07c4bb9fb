/* Presolve and branch and cut as one: searches what presolve leaves of a problem, and answers in the problem's own space.
 *
 * - Gets, run(), errors: as Search. Points that are offered, and solutions, are the given problem's; every solution has
 *   passed the judge there, its continuous columns found anew where the way back has cost them the tolerances.
 * - Presolve runs when run() is called first, and again when the search asks for a restart at its root: then on what the
 *   last one has left, with the bounds that the root has found.
 * - Without presolve there are no stages: the search is on the problem itself.
 * - With callbacks that state cuts, children or solutions, or refuse one (SearchCallbacks::Kinds::shape_the_problem), presolve
 *   has to keep every feasible point and to leave every column a linear function of those that are searched
 *   (PresolveSettings::keep_all_points); with any there may be no restarts. Where they judge solutions presolve runs with the
 *   first point that is offered, so that they are asked about it too.
 * - A presolve that is stopped leaves no search; the next run() begins anew. */
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "mip/presolve/presolve.h"
#include "mip/search/search.h"
#include "mip/search/team_search.h"

namespace tovik::mip {

class PresolvedSearch : private Origin {
 public:
  PresolvedSearch(const Problem& problem, const Settings& settings, lp::Control& control, Observer& observer);
  ~PresolvedSearch() override;

  /* Before run() and what is offered. Null: none. */
  void set_callbacks(SearchCallbacks* callbacks);
  /* Null: none. */
  void set_sink(SolutionSink* sink);
  bool has_search() const { return search_ != nullptr; }
  bool is_presolved() const { return settings_.presolve.on; }
  /* What is searched now; without presolve it is there from the beginning. */
  Search& search() { return *search_; }

  Conclusion run();
  /* After run() has met a limit, until the control ends it: searches about the incumbent. The conclusion, where that has closed the
   * gap. */
  std::optional<Conclusion> polish();
  void change_settings(const Settings& settings);
  /* Between two runs: what was dropped so far does not count by these settings either. */
  bool can_go_on_with(const Settings& settings) const;
  bool offer(std::span<const double> x);
  /* What was spent on points that were to be offered counts, too. */
  void count_iterations(std::int64_t iterations) { earlier_.iterations += iterations; }

  /* The problem that was given. */
  const Problem& given() const { return problem_; }
  const Solution& incumbent() const { return is_direct() ? search_->incumbent() : incumbent_; }
  /* A solution of a problem without columns has no values. */
  bool has_incumbent() const { return incumbent().objective < kInf; }
  Progress progress();
  lp::simplex::Statistics relaxation_statistics() const;
  SearchStatistics statistics() const;

  /* From the problem that is searched to the given one, and back. */
  std::vector<double> expand(std::span<const double> x) const;
  /* That search once there is a tree. */
  int threads() const { return TeamSearch::serves(of_search(), callbacks_) ? settings_.team.threads : 1; }
  /* Of the last run. */
  const TeamTimes& team_times() const { return team_times_; }
  std::vector<double> crush(std::span<const double> x) const override;

  /* Called after each presolve; again: it was not the first. */
  using Listener = std::function<void(const Presolved&, bool again)>;
  void set_listener(Listener listener) { listener_ = std::move(listener); }
  /* The way from the problem that is searched to the given one, the first presolve's first; empty before run(). */
  std::span<const std::unique_ptr<Presolved>> stages() const { return stages_; }

 private:
  class MemberOrigin;

  Conclusion run_search();
  bool is_direct() const { return search_ != nullptr && stages_.empty(); }
  bool accept(std::span<const double> x, double cutoff, Solution* solution) override;
  bool accept_as_it_is(std::span<const double> x, Solution* solution) const override;
  void take(const Solution& solution) override { incumbent_ = solution; }
  void add_cut(const Cut& cut) override;
  Conclusion no_more_solutions() const;
  /* Presolve and what comes of it, where that is still to be done; what ends the run, if anything does. */
  std::optional<Conclusion> prepare();
  std::int64_t iterations() const override { return judge_.iterations() - judged_; }
  /* One more stage; what ends the run, if anything does. */
  std::optional<Conclusion> presolve_once(const Problem& problem);
  Witness witness() const;
  Settings of_search() const;
  void make_search();
  /* Presolve of what the root has left; what ends the run, if anything does. */
  std::optional<Conclusion> restart();

  const Problem& problem_;
  Settings settings_;
  lp::Control& control_;
  Observer& observer_;
  Judge judge_;
  Listener listener_;
  std::vector<std::unique_ptr<Presolved>> stages_;
  std::unique_ptr<Search> search_;
  SearchCallbacks* callbacks_ = nullptr;
  SolutionSink* sink_ = nullptr;
  Solution incumbent_;
  std::int64_t judged_ = 0;  // iterations of the judge that count as earlier
  int restarts_ = 0;
  TeamTimes team_times_;
  SearchStatistics earlier_statistics_;
  double seconds_before_ = 0;  // of earlier calls, of which the present search's clock knows nothing
  Progress earlier_;           // of searches that were given up for a restart, and of what was offered
  bool is_infeasible_ = false;
};

}  // namespace tovik::mip
