#include "lp/run/concurrent.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "env/channel.h"
#include "env/channels.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/run/barrier_run.h"
#include "lp/run/crossover_run.h"
#include "lp/run/finish_line.h"
#include "lp/run/iteration_log.h"
#include "lp/run/presolve_run.h"
#include "lp/run/simplex_run.h"
#include "lp/run/warm_simplex.h"
#include "model/store/model.h"
#include "param/environments.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

constexpr std::uint64_t kHeadStart = 20000000;  // ticks of the first clone before the others begin
constexpr std::uint64_t kHandicap =
    kHeadStart;  // that all but the dual simplex begin with, where ticks decide

bool is_deterministic(const Environment& env) {
  return env.settings.integer(TVK_PARAM_PARALLELMODE) >= 0;
}

int thread_budget(const Environment& env) {
  const int wanted = env.settings.integer(TVK_PARAM_THREADS);
  const int threads = wanted == 0 ? thread_limit() : wanted;
  return is_deterministic(env) ? std::min(threads, 2) : threads;
}

bool takes_barrier(const Environment& env) {
  constexpr int kNoCrossover = -1;
  return env.settings.integer(TVK_PARAM_BARCROSSALG) != kNoCrossover;
}

bool displays(const Environment& env) {
  return env.settings.integer(TVK_PARAM_SIMDISPLAY) != 0;
}

/* As an engine's control, until another clone has won. */
class CloneControl : public EngineControl {
 public:
  CloneControl(Environment& env, Problem& problem, Numbers numbers, const FinishLine& line, int clone,
               std::uint64_t handicap)
      : EngineControl(env, problem, numbers),
        work_(*env.work),
        begin_(env.work->ticks),
        line_(line),
        clone_(clone),
        handicap_(handicap) {}
  std::uint64_t work() const { return work_.ticks - begin_; }
  std::uint64_t time() const { return handicap_ + work(); }
  bool is_beaten() const { return line_.beats(clone_, time()); }
  Stop poll() override {
    if (start_others_ && work() >= kHeadStart) std::exchange(start_others_, nullptr)();
    return is_beaten() ? Stop::user_abort : EngineControl::poll();
  }
  Stop poll_clock() override { return is_beaten() ? Stop::user_abort : EngineControl::poll_clock(); }
  /* `start` is called once, from the clone's thread, after the head start. */
  void then(std::function<void()> start) { start_others_ = std::move(start); }

 private:
  const WorkCounter& work_;
  const std::uint64_t begin_;
  const FinishLine& line_;
  const int clone_;
  const std::uint64_t handicap_;
  std::function<void()> start_others_;
};

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};

/* One algorithm with all that it works on. Members are destroyed in the opposite order. */
struct Clone {
  Algorithm algorithm{Method::dual};
  BarrierCounts barrier;
  std::unique_ptr<FILE, FileCloser> file;
  std::unique_ptr<Environment> own;  // null: the caller's
  Environment* env = nullptr;
  std::unique_ptr<CloneControl> control;
  std::unique_ptr<IterationLog> log;
  std::unique_ptr<Optimizer> optimizer;
  Outcome outcome = Outcome::numerical_failure;
  std::exception_ptr failure;
};

bool is_conclusion(Outcome outcome) {
  return outcome == Outcome::optimal || outcome == Outcome::infeasible || outcome == Outcome::unbounded ||
         outcome == Outcome::objective_limit;
}

bool is_stop(Outcome outcome) {
  return is_limit(outcome) && outcome != Outcome::iteration_limit;
}

void announce_winner(const Environment& env, const char* name) {
  message(env.results_channel, "\n%s", name);
  message(env.results_channel, " solved model.\n\n");
}

const char* simplex_name(bool primal) {
  return primal ? "Primal simplex" : "Dual simplex";
}

/* Seconds and ticks that are left to the caller are left to the clone. */
void hand_on_limits(const Environment& env, Environment& clone) {
  constexpr double kUnlimited = 1e75;
  const LimitFrame* const frame = env.limits.top();
  double seconds = kUnlimited, ticks = kUnlimited;
  if (frame != nullptr && frame->deadline < kUnlimited) seconds = frame->deadline - clock_seconds(env);
  if (frame != nullptr && frame->tick_deadline != ~std::uint64_t{0})
    ticks = static_cast<double>(frame->tick_deadline - std::min(frame->tick_deadline, env.work->ticks));
  clone.limits.push(clock_seconds(clone), std::max(0.0, seconds), clone.work->ticks, ticks);
}

std::string date_and_time() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[64];
  std::strftime(text, sizeof text, "%a %b %e %H:%M:%S %Y", &parts);
  return text;
}

class ContestRun {
 public:
  ContestRun(Environment& env, Problem& problem, Method simplex, Question question)
      : env_(env),
        problem_(problem),
        simplex_(simplex),
        question_(std::move(question)),
        line_(is_deterministic(env)),
        begin_(env.work->ticks),
        clones_(static_cast<std::size_t>(std::max(1, clones_wanted(env)))) {}

  Contest run() {
    Contest contest;
    for (std::size_t k = 0; k < clones_.size(); ++k) {
      if (contest.status = set_up(k); !contest.status.ok()) return contest;
    }
    clones_[0].optimizer = std::move(question_.ready);
    clones_[0].control->then([this] { start_others(); });
    work(0);
    // The caller's wishes reach its own thread only: nobody works on when it has been told to stop.
    if (is_stop(clones_[0].outcome)) line_.close();
    if (!is_conclusion(clones_[0].outcome) && !is_stop(clones_[0].outcome)) start_others();
    for (std::thread& member : team_) member.join();
    if (!all_started_) {
      contest.status = Status(TVK_ERROR_PARALLEL_THREAD);
      return contest;
    }
    for (const Clone& clone : clones_) {
      if (clone.failure != nullptr) std::rethrow_exception(clone.failure);
    }
    finish(contest);
    return contest;
  }

 private:
  void start_others() {
    if (!team_.empty()) return;
    try {
      for (std::size_t k = 1; k < clones_.size(); ++k) {
        team_.emplace_back([this, k] {
          {
            const std::lock_guard guard(env_.lock);
            env_.limits.note_thread();
          }
          work(static_cast<int>(k));
        });
      }
    } catch (const std::system_error&) {
      all_started_ = false;
      line_.close();
    }
  }

  Status set_up(std::size_t k) {
    Clone& clone = clones_[k];
    if (const Status status = choose_algorithm(k); !status.ok()) return status;
    clone.env = &env_;
    if (k > 0) {
      if (const Status status = open_environment(k); !status.ok()) return status;
    }
    clone.algorithm.dual_form = question_.dual_form && clone.algorithm.barrier == nullptr;
    const Numbers numbers = clone.algorithm.dual_form ? Numbers::of_dual_form : Numbers::of_problem;
    const std::uint64_t handicap = is_deterministic(env_) && !is_dual_simplex(clone) ? kHandicap : 0;
    clone.control =
        std::make_unique<CloneControl>(*clone.env, problem_, numbers, line_, static_cast<int>(k), handicap);
    clone.log = std::make_unique<IterationLog>(*clone.env, problem_,
                                               clone.env->settings.integer(TVK_PARAM_SIMDISPLAY));
    const Origin& origin = question_.origin;
    if (origin.rows != nullptr) clone.log->set_origin(*origin.rows, *origin.columns);
    return {};
  }

  static bool is_dual_simplex(const Clone& clone) {
    return clone.algorithm.barrier == nullptr && clone.algorithm.method == Method::dual;
  }

  Status choose_algorithm(std::size_t k) {
    Clone& clone = clones_[k];
    if (!takes_barrier(env_)) {
      clone.algorithm.method = k == 0 ? Method::dual : Method::primal;
    } else if (k == 1) {
      Crossover crossover;
      if (const Status status = resolve_crossover(env_, 0, &crossover); !status.ok()) return status;
      clone.algorithm.method = crossover.method;
      clone.algorithm.barrier = &clone.barrier;
    } else if (clones_.size() > 2) {
      clone.algorithm.method = k == 0 ? Method::dual : Method::primal;
    } else {
      clone.algorithm.method = simplex_;
    }
    return {};
  }

  Status open_environment(std::size_t k) {
    Clone& clone = clones_[k];
    if (const Status status = param::open_clone(env_, clone.own); !status.ok()) return status;
    clone.env = clone.own.get();
    clone.own->callbacks = Callbacks{};
    clone.own->callbacks.terminate = env_.callbacks.terminate;
    constexpr int kWallClock = 2;
    clone.own->settings.set_integer(TVK_PARAM_CLOCKTYPE, kWallClock);
    if (env_.settings.integer(param::kBarrierThreads) == 0) {
      const int left = thread_budget(env_) - static_cast<int>(clones_.size()) + 1;
      clone.own->settings.set_integer(param::kBarrierThreads, std::max(1, left));
    }
    hand_on_limits(env_, *clone.own);
    if (env_.log_file == nullptr) return {};
    const std::string name = "clone" + std::to_string(k) + ".log";
    clone.file.reset(std::fopen(name.c_str(), "w"));
    if (clone.file == nullptr) {
      message(env_.warning_channel, "Could not open file '%s' for writing.\n", name.c_str());
      return {};
    }
    set_log_file(*clone.own, clone.file.get());
    message(clone.own->results_channel, "\nLog for '%s' Clone_%d (V%s) %s\n", problem_.name.c_str(),
            static_cast<int>(k), kVersion, date_and_time().c_str());
    return {};
  }

  void work(int k) noexcept {
    Clone& clone = clones_[static_cast<std::size_t>(k)];
    try {
      const RunContext context{*clone.env, problem_, clone.algorithm, *clone.control,
                               clone.algorithm.dual_form ? nullptr : clone.log.get()};
      if (clone.optimizer == nullptr) {
        clone.optimizer = make_optimizer(question_.lp, context);
        if (question_.start != nullptr) clone.optimizer->set_start(*question_.start);
      }
      clone.outcome = clone.optimizer->optimize(context);
      if (is_conclusion(clone.outcome)) line_.arrive(k, clone.control->time());
    } catch (...) {
      clone.failure = std::current_exception();
      line_.close();
    }
  }

  static const char* name_of(const Clone& clone) {
    if (clone.algorithm.barrier != nullptr) return "Barrier";
    return simplex_name(clone.optimizer->answer().method == Method::primal);
  }

  void finish(Contest& contest) {
    const int winner = std::max(0, line_.winner());
    Clone& first = clones_[static_cast<std::size_t>(winner)];
    env_.work->ticks = begin_ + first.control->work();
    // A limit of the objective ends a run too, but the model is not solved.
    if (line_.winner() >= 0 && first.outcome != Outcome::objective_limit && displays(env_)) {
      for (const Clone& clone : clones_) announce_winner(*clone.env, name_of(first));
    }
    for (const Clone& clone : clones_) {
      const int failure = clone.optimizer == nullptr ? 0 : clone.optimizer->failure().code();
      if (failure != 0)
        message(env_.warning_channel, "Warning: concurrent optimization goes on without barrier: %s.\n",
                error_text(failure));
    }
    contest.outcome = first.outcome;
    contest.barrier = first.barrier;
    contest.optimizer = std::move(first.optimizer);
  }

  Environment& env_;
  Problem& problem_;
  const Method simplex_;
  Question question_;
  FinishLine line_;
  const std::uint64_t begin_;
  std::vector<Clone> clones_;
  std::vector<std::thread> team_;
  bool all_started_ = true;
};

bool bounds_cross(const Environment& env, const model::Model& model) {
  const double tolerance = env.settings.real(TVK_PARAM_EPRHS);
  for (int j = 0; j < model.num_columns(); ++j) {
    if (model.lower()[j] > model.upper()[j] + tolerance) return true;
  }
  return false;
}

}  // namespace

int clones_wanted(const Environment& env) {
  const int most = takes_barrier(env) && !is_deterministic(env) ? 3 : 2;
  return std::min(thread_budget(env), most);
}

void announce_clones(Environment& env) {
  if (!displays(env)) return;
  if (!takes_barrier(env)) {
    message(env.results_channel, "Warning: concurrent optimization will not use barrier because\n");
    message(env.results_channel, "crossover was disabled.\n");
  }
  message(env.results_channel, "Parallel mode: %s, using up to %d threads for concurrent optimization.\n",
          is_deterministic(env) ? "deterministic" : "opportunistic", thread_budget(env));
}

Contest solve_concurrently(Environment& env, Problem& problem, Method simplex, Question question) {
  return ContestRun(env, problem, simplex, std::move(question)).run();
}

namespace {

/* The problem's own engine, which may know a factor and what is left to do from there, goes first. True where its answer
 * stands, or the caller wants no other. */
bool is_solved_at_once(Environment& env, Problem& problem, Method method, const Continuation& continuation,
                       Status& status) {
  constexpr double kUnlimited = 1e75;
  env.limits.push(clock_seconds(env), kUnlimited, env.work->ticks, static_cast<double>(kHeadStart));
  try {
    status = run_simplex(env, problem, {method}, continuation);
  } catch (...) {
    env.limits.pop();
    throw;
  }
  env.limits.pop();
  env.limits.note_thread();
  if (status.ok() && problem.status >= TVK_STATUS_OPTIMAL &&
      problem.status <= TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE && displays(env))
    announce_winner(env, simplex_name(problem.solution->method == method_code::kPrimal));
  if (!status.ok() || problem.status != TVK_STATUS_TICK_LIMIT) return true;
  const LimitFrame* const frame = env.limits.top();
  return frame != nullptr && env.work->ticks >= frame->tick_deadline;
}

}  // namespace

Status run_concurrent_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm,
                                  const Continuation& continuation) {
  if (bounds_cross(env, *problem.model)) return run_simplex(env, problem, {Method::primal}, continuation);
  if (const Status finite = check_finite(env, *problem.model, true); !finite.ok()) return finite;
  if (Status status; is_solved_at_once(env, problem, algorithm.method, continuation, status)) return status;
  OptimizationStatistics before = statistics_of(problem);
  const Basis start = starting_basis(problem);
  const LpData lp = build_lp(*problem.model);
  const Contest contest =
      solve_concurrently(env, problem, algorithm.method,
                         {.lp = lp, .start = &start, .origin = {}, .dual_form = false, .ready = nullptr});
  if (!contest.status.ok()) return contest.status;
  *algorithm.barrier = contest.barrier;
  const Answer& answer = contest.optimizer->answer();
  simplex::Statistics counted = contest.optimizer->statistics();
  counted.counters.iterations += before.simplex.counters.iterations;
  counted.work.add(before.simplex.work);
  before.simplex = std::move(counted);
  if (answer.column_status.empty()) return run_simplex(env, problem, {Method::dual}, {.before = &before});
  problem.norms = Norms{};
  release_engine(problem);
  store_answer(problem, answer, before.simplex.counters);
  // From there it takes no step, but where the conclusion was in doubt.
  if (is_conclusion(contest.outcome)) {
    const Method method = contest.outcome == Outcome::unbounded ? Method::primal : answer.method;
    return run_simplex(env, problem, {method}, {.from_basis = true, .before = &before});
  }
  problem.status = status_code(contest.outcome, false);
  statistics_of(problem) = before;
  return {};
}

Status run_concurrent(Environment& env, Problem& problem, Method simplex) {
  BarrierCounts counts;
  const Algorithm algorithm{.method = simplex, .barrier = &counts, .concurrent = true};
  const Status status = wants_presolve(env, problem)
                            ? run_presolved(env, problem, algorithm)
                            : run_concurrent_unpresolved(env, problem, algorithm, {});
  if (status.ok()) store_counts(counts, problem);
  return status;
}

}  // namespace tovik::lp::run
