#include "mip/search/team_search.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace tovik::mip {
namespace {

constexpr int kPauses = 10;               // after which few open nodes do: they take long
constexpr double kSecondsPerTick = 5e-9;  // where the clock decides when to meet
constexpr double kLongestWhile = 8, kGrowth = 1.3;
constexpr auto kBetweenLooks = std::chrono::milliseconds(20);

double seconds_now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/* Of a member that is not the leader: its stops are the leader's. */
class MemberControl : public lp::Control {
 public:
  explicit MemberControl(const std::atomic<bool>& stop) : stop_(stop), begin_(seconds_now()) {}
  void log(const char*) override {}
  void flush() override {}
  void add_work(std::uint64_t) override {}
  double seconds() override { return seconds_now() - begin_; }
  lp::Stop poll() override { return stop_ ? lp::Stop::user_abort : lp::Stop::none; }
  lp::Stop poll_clock() override { return poll(); }
  lp::Stop iteration_callback(const lp::ProgressSource&) override { return poll(); }

 private:
  const std::atomic<bool>& stop_;
  const double begin_;
};

/* Keeps what a member finds until the next meeting. */
class Basket : public SolutionSink {
 public:
  void add(const Solution& solution) override { solutions_.push_back(solution); }
  void empty_into(SolutionSink& sink) {
    for (const Solution& solution : solutions_) sink.add(solution);
    solutions_.clear();
  }

 private:
  std::vector<Solution> solutions_;
};

bool is_stop(Conclusion end) {
  switch (end) {
    case Conclusion::unbounded:
    case Conclusion::infeasible_or_unbounded:
    case Conclusion::objective_stop:
    case Conclusion::solution_limit:
    case Conclusion::node_limit:
    case Conclusion::tree_limit:
    case Conclusion::node_file_failed:
    case Conclusion::time_limit:
    case Conclusion::tick_limit:
    case Conclusion::user_abort:
      return true;
    default:
      return false;
  }
}

}  // namespace

struct TeamSearch::Member {
  Search* search = nullptr;
  Conclusion end = Conclusion::paused;
  double busy = 0;                        // seconds since the last meeting
  std::int64_t nodes = 0;                 // since then
  std::int64_t allowed_nodes = kNoLimit;  // until the next one
  std::exception_ptr failure;
  // Of those that are not the leader:
  std::unique_ptr<MemberControl> control;
  std::unique_ptr<Origin> origin;
  SilentObserver observer;
  Basket basket;
  std::unique_ptr<Search> own;
};

TeamSearch::TeamSearch(Search& leader, const Problem& problem, const Settings& settings, lp::Control& control,
                       OriginMaker make_origin, SolutionSink* sink)
    : leader_(leader),
      problem_(problem),
      settings_(settings),
      team_(settings_.team),
      control_(control),
      make_origin_(std::move(make_origin)),
      sink_(sink),
      shared_costs_(problem.num_columns()) {}

TeamSearch::~TeamSearch() = default;

bool TeamSearch::serves(const Settings& settings, const SearchCallbacks* callbacks) {
  return settings.team.threads > 1 && callbacks == nullptr && !settings.enumeration.on &&
         settings.iteration_limit == kNoLimit && settings.solution_limit == kNoLimit &&
         settings.stall_limit == kNoLimit && !settings.witness.is_watched();
}

Conclusion TeamSearch::run() {
  const double begin = seconds_now();
  leader_.begin_run();
  Conclusion end = run_alone();
  times_.before = seconds_now() - begin;
  if (end == Conclusion::paused) {
    end = run_together();
    times_.together = seconds_now() - begin - times_.before;
  }
  leader_.end_run();
  return end;
}

/* paused: it is time for a team. */
Conclusion TeamSearch::run_alone() {
  for (int pauses = 0;; ++pauses) {
    leader_.pause_after(std::max<std::int64_t>(1, team_.ticks_alone), kInf);
    const Conclusion end = leader_.go_on();
    if (end != Conclusion::paused ||
        leader_.open_nodes() >= (pauses < kPauses ? team_.nodes_each : 1) * team_.threads)
      return end;
  }
}

Conclusion TeamSearch::run_together() {
  gather();
  std::optional<Conclusion> end;
  try {
    while (!end) {
      end = allow_nodes() ? work() : Conclusion::node_limit;
      if (end == Conclusion::node_limit) break;
      const double begin = seconds_now();
      if (!end) end = meet();
      times_.meetings += seconds_now() - begin;
    }
  } catch (...) {
    dissolve();
    throw;
  }
  dissolve();
  if (is_stop(*end)) return *end;
  return leader_.go_on();  // nothing is left to do but to say what came of it
}

void TeamSearch::gather() {
  members_.push_back(std::make_unique<Member>());
  members_[0]->search = &leader_;
  Settings settings = settings_;
  for (int k = 1; k < team_.threads; ++k) {
    auto member = std::make_unique<Member>();
    settings.seed = settings_.seed + static_cast<std::uint64_t>(k);
    member->control = std::make_unique<MemberControl>(stop_);
    member->origin = make_origin_(*member->control);
    member->own = std::make_unique<Search>(problem_, settings, *member->control, member->observer,
                                           member->origin.get());
    member->search = member->own.get();
    if (sink_ != nullptr) member->search->set_sink(&member->basket);
    member->search->join(leader_);
    member->search->begin_run();
    members_.push_back(std::move(member));
  }
  times_.threads = team_.threads;
  shared_costs_ = leader_.pseudo_costs();
  for (const std::unique_ptr<Member>& member : members_) member->search->take_findings();
  share_nodes();
}

/* Equal shares of what the limit leaves; the last nodes go to one each, the leader's first. False: none are left. */
bool TeamSearch::allow_nodes() {
  if (settings_.node_limit == kNoLimit) return true;
  report();
  std::int64_t left = settings_.node_limit - leader_.progress().nodes;
  std::int64_t working = 0;
  for (const std::unique_ptr<Member>& member : members_) working += member->search->open_nodes() > 0 ? 1 : 0;
  if (left <= 0) return false;
  const std::int64_t share = std::max<std::int64_t>(1, left / std::max<std::int64_t>(1, working));
  for (const std::unique_ptr<Member>& member : members_) {
    member->allowed_nodes = member->search->open_nodes() > 0 ? std::min(share, left) : 0;
    left -= member->allowed_nodes;
  }
  return true;
}

void TeamSearch::work_as(Member& member) {
  const double begin = seconds_now();
  const std::int64_t before = member.search->progress_since_joining().nodes;
  try {
    const double ticks = while_ * static_cast<double>(team_.ticks_together);
    if (team_.deterministic) {
      member.search->pause_after(static_cast<std::int64_t>(ticks), kInf, member.allowed_nodes);
    } else {
      member.search->pause_after(kNoLimit, ticks * kSecondsPerTick, member.allowed_nodes);
    }
    member.end = member.search->go_on();
  } catch (...) {
    member.failure = std::current_exception();
    stop_ = true;
  }
  member.busy = seconds_now() - begin;
  member.nodes = member.search->progress_since_joining().nodes - before;
}

/* All for a while; what ends the search for all, if anything does. */
std::optional<Conclusion> TeamSearch::work() {
  const double begin = seconds_now();
  std::mutex mutex;
  std::condition_variable done;
  std::size_t working = 0;
  std::vector<std::thread> threads;
  std::vector<Member*> left_over;
  for (std::size_t k = 1; k < members_.size(); ++k) {
    Member& member = *members_[k];
    member.busy = 0;
    member.nodes = 0;
    if (member.search->open_nodes() == 0) continue;
    try {
      {
        const std::scoped_lock lock(mutex);
        ++working;
      }
      threads.emplace_back([this, &member, &mutex, &done, &working] {
        work_as(member);
        const std::scoped_lock lock(mutex);
        --working;
        done.notify_one();
      });
    } catch (const std::system_error&) {  // no thread is to be had now: its turn comes after the leader's
      const std::scoped_lock lock(mutex);
      --working;
      left_over.push_back(&member);
    }
  }
  work_as(*members_[0]);
  if (is_stop(members_[0]->end)) stop_ = true;
  for (Member* const member : left_over) work_as(*member);
  {
    std::unique_lock lock(mutex);
    while (!done.wait_for(lock, kBetweenLooks, [&] { return working == 0; })) {
      lock.unlock();
      if (control_.poll() != lp::Stop::none || control_.poll_clock() != lp::Stop::none) stop_ = true;
      lock.lock();
    }
  }
  for (std::thread& thread : threads) thread.join();
  const double passed = seconds_now() - begin;
  for (const std::unique_ptr<Member>& member : members_) {
    times_.waiting += std::max(0.0, passed - member->busy) / static_cast<double>(members_.size());
    if (member->failure != nullptr) std::rethrow_exception(member->failure);
  }
  for (const std::unique_ptr<Member>& member : members_) {
    if (is_stop(member->end) && (member->end != Conclusion::user_abort || member == members_[0]))
      return member->end;
  }
  if (!stop_) return std::nullopt;
  // The caller's wish was seen between the leader's nodes.
  const lp::Stop stop = control_.poll() != lp::Stop::none ? control_.poll() : control_.poll_clock();
  return stop == lp::Stop::time_limit   ? Conclusion::time_limit
         : stop == lp::Stop::tick_limit ? Conclusion::tick_limit
                                        : Conclusion::user_abort;
}

bool TeamSearch::gap_is_closed() const {
  double bound = kInf;
  for (const std::unique_ptr<Member>& member : members_) bound = std::min(bound, member->search->bound());
  return leader_.closes_gap(bound);
}

std::optional<Conclusion> TeamSearch::meet() {
  share_solutions();
  share_findings();
  share_pseudo_costs();
  if (gap_is_closed()) return Conclusion::within_gap;
  share_nodes();
  report();
  while_ = std::min(kLongestWhile, while_ * kGrowth);
  // Nodes within the gap are left alone; where a node that nothing decides keeps the gap open they are the leader's in the end.
  const bool any = std::any_of(members_.begin(), members_.end(), [this](const auto& member) {
    return member->search->open_nodes() > 0 && !leader_.closes_gap(member->search->bound_of_nodes());
  });
  return any ? std::nullopt : std::optional(Conclusion::optimal);
}

void TeamSearch::share_solutions() {
  for (std::size_t k = 1; k < members_.size(); ++k) {
    if (sink_ != nullptr) members_[k]->basket.empty_into(*sink_);
  }
  const Search* finder = &leader_;
  for (const std::unique_ptr<Member>& member : members_) {
    if (member->search->incumbent().objective < finder->incumbent().objective) finder = member->search;
  }
  for (const std::unique_ptr<Member>& member : members_) {
    if (member->search != finder) member->search->hear_of(*finder, member == members_[0]);
  }
}

/* They rest on the cutoff of the best solution at most, which all know by now. */
void TeamSearch::share_findings() {
  std::vector<Findings> findings;
  for (const std::unique_ptr<Member>& member : members_) findings.push_back(member->search->take_findings());
  for (std::size_t k = 0; k < members_.size(); ++k) {
    for (std::size_t other = 0; other < members_.size(); ++other) {
      if (other != k) members_[k]->search->learn_from(findings[other]);
    }
  }
}

void TeamSearch::share_pseudo_costs() {
  PseudoCosts all = shared_costs_;
  for (const std::unique_ptr<Member>& member : members_)
    all.add_difference(member->search->pseudo_costs(), shared_costs_);
  shared_costs_ = std::move(all);
  const bool cuts_pay = std::any_of(members_.begin(), members_.end(),
                                    [](const auto& member) { return member->search->cuts_have_paid(); });
  for (const std::unique_ptr<Member>& member : members_) {
    member->search->set_pseudo_costs(shared_costs_);
    if (cuts_pay) member->search->set_cuts_due();
  }
}

/* Who has nothing, or nothing as good as what the richest would come to in the next while, gets every second of its best. */
void TeamSearch::share_nodes() {
  for (const std::unique_ptr<Member>& member : members_) {
    Search& poor = *member->search;
    Search* rich = nullptr;
    std::int64_t usual = team_.nodes_each;  // nodes of a while
    for (const std::unique_ptr<Member>& other : members_) {
      usual = std::max(usual, other->nodes);
      if (other != member && (rich == nullptr || other->search->open_nodes() > rich->open_nodes()))
        rich = other->search;
    }
    if (rich == nullptr || rich->open_nodes() < 2) continue;
    const std::int64_t near = std::min(usual, rich->open_nodes() / 2);
    const bool is_poor = poor.open_nodes() == 0 || rich->bound_behind(near) <= poor.bound() ||
                         2 * poor.open_nodes() < std::min(usual, rich->open_nodes());
    if (is_poor) poor.take_over(rich->hand_over(usual));
  }
}

void TeamSearch::report() {
  Progress beside;
  beside.best_bound = kInf;
  for (std::size_t k = 1; k < members_.size(); ++k) {
    const Progress p = members_[k]->search->progress_since_joining();
    beside.nodes += p.nodes;
    beside.left += p.left;
    beside.iterations += p.iterations;
    beside.tree_bytes += p.tree_bytes;
    beside.best_bound = std::min(beside.best_bound, p.best_bound);
  }
  leader_.set_beside(beside);
}

void TeamSearch::dissolve() {
  leader_.set_beside({});
  leader_.pause_after(kNoLimit, kInf);
  for (std::size_t k = 1; k < members_.size(); ++k) {
    Search& member = *members_[k]->search;
    leader_.hear_of(member, true);
    if (sink_ != nullptr) members_[k]->basket.empty_into(*sink_);
    member.end_run();
    leader_.absorb(member);
  }
  members_.clear();
}

}  // namespace tovik::mip
