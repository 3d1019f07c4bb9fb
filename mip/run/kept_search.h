/* The searches that stay with a mixed-integer problem between calls, and what surrounds them while a call runs. */
#pragma once

#include <cstdint>
#include <memory>

#include "env/environment.h"
#include "env/problem.h"
#include "include/tovik.h"
#include "lp/base/control.h"
#include "mip/run/caller_callbacks.h"
#include "mip/run/informer.h"
#include "mip/run/mip_run.h"
#include "mip/run/node_log.h"
#include "mip/run/search_callback.h"
#include "mip/search/presolved_search.h"

namespace tovik::mip::run {

/* Hands on to the control of the call that runs, and to its callbacks: a search outlives its call. */
class CallControl : public lp::Control {
 public:
  explicit CallControl(lp::Control* control) : control_(control) {}
  void set(lp::Control* control, Informer* informer, const CallerCallbacks* callbacks) {
    control_ = control;
    informer_ = informer;
    callbacks_ = callbacks;
  }
  void log(const char* text) override { control_->log(text); }
  void flush() override { control_->flush(); }
  void add_work(std::uint64_t ticks) override { control_->add_work(ticks); }
  double seconds() override { return control_->seconds(); }
  lp::Stop poll() override {
    const bool stops = (informer_ != nullptr && informer_->asks_to_stop()) ||
                       (callbacks_ != nullptr && callbacks_->wants_to_stop());
    return stops ? lp::Stop::user_abort : control_->poll();
  }
  lp::Stop poll_clock() override {
    const lp::Stop stop = control_->poll_clock();
    if (!(extension_ > 0) || stop == lp::Stop::user_abort) return stop;
    return control_->seconds() - extended_at_ < extension_ ? lp::Stop::none : lp::Stop::time_limit;
  }
  /* In place of the call's time limit: so many seconds from a time of the call on. 0: the call's own again. */
  void extend(double from, double seconds) {
    extended_at_ = from;
    extension_ = seconds;
  }
  lp::Stop iteration_callback(const lp::ProgressSource&) override {
    if (informer_ != nullptr) informer_->inform_now_and_then();
    return lp::Stop::none;
  }

 private:
  lp::Control* control_;
  double extended_at_ = 0, extension_ = 0;  // seconds
  Informer* informer_ = nullptr;
  const CallerCallbacks* callbacks_ = nullptr;
};

/* What the search tells: to the log, then to the callbacks of the call that runs. */
class Audience : public Observer {
 public:
  explicit Audience(NodeLog& log) : log_(log) {}
  void set(Informer* informer) { informer_ = informer; }
  void presolve() { inform(TVK_CALLBACK_MIP_PRESOLVE); }
  void node(const NodeEvent& event) override {
    log_.node(event);
    if (!event.by_heuristic) inform(TVK_CALLBACK_MIP);  // of an incumbent solution() has told
  }
  void cuts(const CutCounts& added) override {
    log_.cuts(added);
    inform(TVK_CALLBACK_MIP_ROOT_CUTS);
  }
  void solution(double objective, std::span<const double> x) override {
    log_.solution(objective, x);
    inform(TVK_CALLBACK_MIP_INCUMBENT);
  }

 private:
  void inform(int wherefrom) {
    if (informer_ != nullptr) informer_->inform(wherefrom);
  }
  NodeLog& log_;
  Informer* informer_ = nullptr;
};

/* As the parameters say, and what callbacks need of presolve. */
Settings settings_with_callbacks(const Environment& env, const tovik::Problem& problem);

/* Those of the main search: with the start that is followed, where one is. */
Settings settings_of_search(Environment& env, const tovik::Problem& user, const mip::Problem& problem);

struct KeptSearch : Derived {
  /* A search, and what callbacks see of it. own: the problem that it searches, where it is not the one of all. */
  struct Part {
    Part(Environment& env, const tovik::Problem& user, KeptSearch& kept, const Settings& settings,
         std::unique_ptr<const mip::Problem> own = nullptr);
    const std::unique_ptr<const mip::Problem> own_problem;
    const std::uint64_t filters;  // revision of those that it knows
    PresolvedSearch search;
    const SpaceMap spaces;
    SearchedProblem searched_problem;
  };

  KeptSearch(Environment& env, const tovik::Problem& user, mip::Problem built, lp::Control& first);
  /* They may be gone on with: the same environment and callbacks, and nothing has changed. */
  bool is_current(const Environment& env, const tovik::Problem& user) const;

  const Environment* const environment;  // that it writes its log to
  const ControlCallbacks functions;      // that take part
  const mip::Problem problem;
  CallControl control;
  NodeLog log;
  Audience audience;
  Part main;
  std::unique_ptr<Part> enumeration;  // for the solution pool; null: none
  SearchResult result;
  bool may_go_on = false;          // there is something left to do for the main search
  bool is_solved = false;          // it has closed the gap, and there is a solution
  std::uint64_t tried_starts = 0;  // their identity
};

/* While a call works with a search; what an error leaves of it is not gone on with. */
class CallScope {
 public:
  CallScope(KeptSearch& kept, KeptSearch::Part& part, lp::Control& control, Informer& informer,
            CallerCallbacks* callbacks, SolutionSink* sink)
      : kept_(kept), part_(part) {
    part_.search.set_sink(sink);
    kept_.log.follow(part_.search);
    kept_.control.set(&control, &informer, callbacks);
    if (callbacks != nullptr) part_.search.set_callbacks(callbacks);
    kept_.audience.set(&informer);
  }
  ~CallScope() {
    part_.search.set_sink(nullptr);
    kept_.control.set(nullptr, nullptr, nullptr);
    if (kept_.functions.any()) part_.search.set_callbacks(nullptr);
    kept_.audience.set(nullptr);
  }
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  KeptSearch& kept_;
  KeptSearch::Part& part_;
};

/* Where memory runs out the incumbent stays, as at the limit on the tree; the tree is not whole then, nor where node files cannot
 * be read. */
Conclusion run_within_memory(PresolvedSearch& search, bool* is_whole);

/* After Conclusion::node_file_failed: 1801, 1802 or 1803. */
Status failure_of_node_files(PresolvedSearch& search);

/* The status with a solution; without one it is the next number, where there is a pair. */
int status_code(Conclusion end, bool has_solution);

/* The incumbent in the user's columns; null without one. */
std::unique_ptr<tovik::Solution> solution_of(const tovik::Problem& problem, const mip::Solution& incumbent);

class PoolFeed;
/* run_branch_and_cut() with the feed of the pool, which it makes anew where the search is a new one. */
Status run_main_search(Environment& env, tovik::Problem& problem, PoolFeed& feed);

}  // namespace tovik::mip::run
