#include "mip/search/presolved_search.h"

#include <algorithm>
#include <utility>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr int kMostRestarts = 3;

/* Cuts hold for every point that the reduced problem has a way back from. */
std::vector<Cut> crush_cuts(const Postsolve& postsolve, const std::vector<Cut>& cuts) {
  std::vector<Cut> crushed;
  for (const Cut& cut : cuts) {
    std::optional<LinearForm> form = postsolve.crush(LinearForm{cut.columns, cut.values, 0});
    if (!form || form->columns.empty()) continue;
    Cut c = cut;
    c.columns = std::move(form->columns);
    c.values = std::move(form->values);
    c.side = cut.side - form->constant;
    c.is_integral = false;
    crushed.push_back(std::move(c));
  }
  return crushed;
}

void crush_user_cuts(const Problem& from, Presolved& to) {
  to.problem.user_cuts.clear();
  for (const UserCut& cut : from.user_cuts) {
    std::optional<LinearForm> form = to.postsolve.crush(LinearForm{cut.columns, cut.values, 0});
    if (!form || form->columns.empty()) continue;
    to.problem.user_cuts.push_back({std::move(form->columns), std::move(form->values),
                                    cut.lower - form->constant, cut.upper - form->constant});
  }
}

}  // namespace

PresolvedSearch::PresolvedSearch(const Problem& problem, const Settings& settings, lp::Control& control,
                                 Observer& observer)
    : problem_(problem),
      settings_(settings),
      control_(control),
      observer_(observer),
      judge_(problem, settings_, control) {
  if (!settings.presolve.on) search_ = std::make_unique<Search>(problem, settings, control, observer);
}

PresolvedSearch::~PresolvedSearch() = default;

/* In the space of the last stage; none, once there is a solution as good. */
Witness PresolvedSearch::witness() const {
  const Witness& known = settings_.witness;
  if (!known.is_watched() || objective(problem_, known.x) >= incumbent_.objective - 1e-6) return {};
  return {crush(known.x), known.complain};
}

Settings PresolvedSearch::of_search() const {
  Settings settings = settings_;
  if (restarts_ >= kMostRestarts || stages_.empty()) settings.presolve.restarts = 0;
  const auto take = [](std::int64_t& limit, std::int64_t used) {
    if (limit < kNoLimit) limit = std::max<std::int64_t>(0, limit - used);
  };
  take(settings.node_limit, earlier_.nodes);
  take(settings.iteration_limit, earlier_.iterations);
  take(settings.solution_limit, earlier_.solutions);
  take(settings.polish.nodes, earlier_.nodes);
  take(settings.polish.solutions, earlier_.solutions);
  settings.witness = witness();
  return settings;
}

void PresolvedSearch::change_settings(const Settings& settings) {
  settings_ = settings;
  if (search_ != nullptr) search_->change_settings(of_search());
}

bool PresolvedSearch::can_go_on_with(const Settings& wanted) const {
  const EnumerationSettings &now = settings_.enumeration, &then = wanted.enumeration;
  if (now.on != then.on) return false;
  if (now.on && (now.splits != then.splits || settings_.presolve.dual != wanted.presolve.dual ||
                 then.relative_gap > now.relative_gap || then.absolute_gap > now.absolute_gap))
    return false;
  return wanted.cutoff <= settings_.cutoff && wanted.least_improvement >= settings_.least_improvement &&
         wanted.least_relative_improvement >= settings_.least_relative_improvement &&
         wanted.tolerances.integrality == settings_.tolerances.integrality &&
         wanted.tolerances.feasibility == settings_.tolerances.feasibility;
}

std::vector<double> PresolvedSearch::expand(std::span<const double> x) const {
  std::vector<double> point(x.begin(), x.end());
  for (std::size_t k = stages_.size(); k-- > 0;) point = stages_[k]->postsolve.expand(point);
  return point;
}

std::vector<double> PresolvedSearch::crush(std::span<const double> x) const {
  std::vector<double> point(x.begin(), x.end());
  for (const std::unique_ptr<Presolved>& stage : stages_) point = stage->postsolve.crush(point);
  return point;
}

bool PresolvedSearch::accept(std::span<const double> x, double cutoff, Solution* solution) {
  return judge_.accept(expand(x), cutoff, solution);
}

bool PresolvedSearch::accept_as_it_is(std::span<const double> x, Solution* solution) const {
  return judge_.accept_as_it_is(expand(x), solution);
}

void PresolvedSearch::add_cut(const Cut& cut) {
  Cut own = cut;
  for (std::size_t k = stages_.size(); k-- > 0;) {
    for (int& j : own.columns) j = stages_[k]->postsolve.column_map()[j];
  }
  judge_.add_cut(own);
}

void PresolvedSearch::set_callbacks(SearchCallbacks* callbacks) {
  callbacks_ = callbacks;
  if (search_ != nullptr) search_->set_callbacks(callbacks);
}

void PresolvedSearch::set_sink(SolutionSink* sink) {
  sink_ = sink;
  if (search_ != nullptr) search_->set_sink(sink);
}

bool PresolvedSearch::offer(std::span<const double> x) {
  if (is_direct()) return search_->offer(x);
  if (callbacks_ != nullptr && callbacks_->kinds().judge_solutions()) {
    return !prepare() && search_->offer(crush(x));
  }
  Solution found;
  if (!judge_.accept(x, std::min(settings_.cutoff, incumbent_.objective), &found)) {
    if (sink_ != nullptr && judge_.accept_as_it_is(x, &found)) sink_->add(found);
    return false;
  }
  incumbent_ = std::move(found);
  if (sink_ != nullptr) sink_->add(incumbent_);
  ++earlier_.solutions;
  earlier_statistics_.incumbents.push_back({control_.seconds(), 0, incumbent_.objective, "start"});
  observer_.solution(incumbent_.objective, incumbent_.x);
  if (search_ != nullptr) {
    search_->change_settings(of_search());
    search_->inherit(incumbent_, crush(incumbent_.x));
  }
  return true;
}

Progress PresolvedSearch::progress() {
  if (search_ == nullptr) {
    Progress p = earlier_;
    p.iterations += iterations();
    if (is_infeasible_) p.best_bound = incumbent_.objective;
    return p;
  }
  Progress p = search_->progress();
  if (is_infeasible_) {
    p.best_bound = incumbent_.objective;
    p.left = 0;
  }
  p.nodes += earlier_.nodes;
  p.iterations += earlier_.iterations;
  p.solutions += earlier_.solutions;
  return p;
}

lp::simplex::Statistics PresolvedSearch::relaxation_statistics() const {
  return search_ == nullptr ? lp::simplex::Statistics{} : search_->relaxation_statistics();
}

SearchStatistics PresolvedSearch::statistics() const {
  if (search_ == nullptr) return earlier_statistics_;
  return joined(earlier_statistics_, search_->statistics(), seconds_before_);
}

std::optional<Conclusion> PresolvedSearch::presolve_once(const Problem& problem) {
  auto stage = std::make_unique<Presolved>(
      presolve(problem, settings_.presolve, settings_.tolerances, control_, witness()));
  earlier_statistics_.phases[static_cast<std::size_t>(Phase::presolve)].ticks += stage->counts.work;
  if (stage->stopped) {
    const lp::Stop stop = control_.poll() != lp::Stop::none ? control_.poll() : control_.poll_clock();
    return stop == lp::Stop::time_limit   ? Conclusion::time_limit
           : stop == lp::Stop::tick_limit ? Conclusion::tick_limit
                                          : Conclusion::user_abort;
  }
  const bool again = !stages_.empty();
  is_infeasible_ = stage->infeasible;
  if (is_infeasible_) {
    if (listener_) listener_(*stage, again);
    return no_more_solutions();
  }
  crush_user_cuts(problem, *stage);
  stages_.push_back(std::move(stage));
  if (listener_) listener_(*stages_.back(), again);
  return std::nullopt;
}

std::optional<Conclusion> PresolvedSearch::restart() {
  Problem left = stages_.back()->problem;
  search_->take_root_bounds(left);
  if (const std::optional<Conclusion> end = presolve_once(left)) return end;
  const std::vector<Cut> cuts = crush_cuts(stages_.back()->postsolve, search_->root_cuts());
  const Progress done = search_->progress();
  // The next search counts what has passed of this call as presolve.
  earlier_statistics_ = statistics();
  const double passed = earlier_statistics_.last_run;
  earlier_statistics_.phases[static_cast<std::size_t>(Phase::presolve)].seconds -= passed;
  seconds_before_ = earlier_statistics_.seconds - passed;
  earlier_.nodes += done.nodes;
  earlier_.iterations += done.iterations;
  earlier_.solutions += done.solutions;
  judged_ = judge_.iterations();
  ++restarts_;
  make_search();
  if (settings_.presolve.restarts != 1) search_->add_cuts(cuts);
  return std::nullopt;
}

void PresolvedSearch::make_search() {
  Origin* const origin = this;
  search_ = std::make_unique<Search>(stages_.back()->problem, of_search(), control_, observer_, origin);
  search_->set_callbacks(callbacks_);
  search_->set_sink(sink_);
  if (has_incumbent()) search_->inherit(incumbent_, crush(incumbent_.x));
}

Conclusion PresolvedSearch::no_more_solutions() const {
  return has_incumbent() ? Conclusion::optimal : Conclusion::infeasible;
}

std::optional<Conclusion> PresolvedSearch::prepare() {
  if (search_ != nullptr) return std::nullopt;
  if (is_infeasible_) return no_more_solutions();
  if (const std::optional<Conclusion> end = presolve_once(problem_)) return end;
  make_search();
  return std::nullopt;
}

/* Judges what a member of a team finds; what it takes counts when the leader hears of it. */
class PresolvedSearch::MemberOrigin : public Origin {
 public:
  MemberOrigin(const PresolvedSearch& whole, lp::Control& control)
      : whole_(whole), judge_(whole.problem_, whole.settings_, control) {}
  bool accept(std::span<const double> x, double cutoff, Solution* solution) override {
    return judge_.accept(whole_.expand(x), cutoff, solution);
  }
  bool accept_as_it_is(std::span<const double> x, Solution* solution) const override {
    return judge_.accept_as_it_is(whole_.expand(x), solution);
  }
  void take(const Solution&) override {}
  std::vector<double> crush(std::span<const double> x) const override { return whole_.crush(x); }
  void add_cut(const Cut& cut) override { judge_.add_cut(cut); }
  std::int64_t iterations() const override { return judge_.iterations(); }

 private:
  const PresolvedSearch& whole_;
  Judge judge_;
};

Conclusion PresolvedSearch::run_search() {
  const Settings settings = of_search();
  team_times_ = {};
  if (!TeamSearch::serves(settings, callbacks_)) return search_->run();
  const Problem& searched = stages_.empty() ? problem_ : stages_.back()->problem;
  const auto make_origin = [this](lp::Control& control) -> std::unique_ptr<Origin> {
    return is_direct() ? nullptr : std::make_unique<MemberOrigin>(*this, control);
  };
  TeamSearch team(*search_, searched, settings, control_, make_origin, sink_);
  const Conclusion end = team.run();
  team_times_ = team.times();
  return end;
}

Conclusion PresolvedSearch::run() {
  if (const std::optional<Conclusion> end = prepare()) return *end;
  for (;;) {
    const Conclusion end = run_search();
    if (end != Conclusion::restart) return end;
    if (const std::optional<Conclusion> stopped = restart()) return *stopped;
  }
}

std::optional<Conclusion> PresolvedSearch::polish() {
  return search_ == nullptr ? std::nullopt : search_->polish_on();
}

}  // namespace tovik::mip
