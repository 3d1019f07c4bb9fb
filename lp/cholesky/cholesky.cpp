#include "lp/cholesky/cholesky.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <new>
#include <optional>

#include "lp/cholesky/elimination.h"
#include "lp/cholesky/numeric.h"
#include "lp/cholesky/ordering.h"
#include "lp/cholesky/solve.h"
#include "lp/cholesky/supernodes.h"

namespace tovik::lp::cholesky {
namespace {

using Clock = std::chrono::steady_clock;

/* Nested dissection takes some microseconds an edge, a factorization is repeated some forty times: it is tried when a third
 * of the operations saved would pay for it, and where L is much fuller than K. */
constexpr double kOperationsWorthAnEdge = 2000;
constexpr double kOperationsWorthTrying = 2e7;
constexpr double kLeastFill = 2;

std::int64_t machine_memory() {
  return static_cast<std::int64_t>(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
}

bool dissection_may_pay(const Graph& graph, const Elimination& by_degree) {
  const double edges = static_cast<double>(graph.start.back());
  return by_degree.flops > kOperationsWorthTrying + kOperationsWorthAnEdge * edges &&
         static_cast<double>(by_degree.entries) > kLeastFill * (edges / 2 + graph.size);
}

}  // namespace

struct Cholesky::Inner {
  Counts counts;
  Options options;
  Symbolic symbolic;
  std::optional<Numeric> numeric;
  bool allocated = false;

  std::optional<Elimination> elimination;  // the best so far, until it is analyzed

  State preview(const Graph& graph, const Options& wishes, Control& control);
  State analyze(const Pattern& pattern, const Options& wishes, Control& control);
  State allocate();
  bool order(const Graph& graph, Ordering ordering, Control& control);
};

State Cholesky::Inner::allocate() {
  if (allocated) return State::done;
  const State state = numeric->allocate(options.work_directory);
  allocated = state == State::done;
  return state;
}

/* Keeps the order if it needs less work than the one before; false if it was stopped. */
bool Cholesky::Inner::order(const Graph& graph, Ordering ordering, Control& control) {
  const std::vector<int> permutation =
      ordering == Ordering::nested_dissection ? nested_dissection_order(graph, control)
      : ordering == Ordering::minimum_fill    ? minimum_fill_order(graph, control)
                                              : minimum_degree_order(graph, control);
  if (permutation.size() != static_cast<std::size_t>(graph.size)) return false;
  Elimination made = eliminate(graph, permutation);
  control.add_work(static_cast<std::uint64_t>(graph.start.back() + graph.size));
  if (elimination && elimination->flops <= made.flops) return true;
  elimination = std::move(made);
  counts.used = ordering;
  counts.entries = elimination->entries;
  counts.flops = elimination->flops;
  return true;
}

State Cholesky::Inner::preview(const Graph& graph, const Options& wishes, Control& control) {
  const auto begin = Clock::now();
  options = wishes;
  options.threads = std::max(1, options.threads);
  counts.rows = graph.size;
  const Ordering first =
      options.ordering == Ordering::automatic ? Ordering::minimum_degree : options.ordering;
  if (!order(graph, first, control)) return State::stopped;
  counts.ordering_seconds += std::chrono::duration<double>(Clock::now() - begin).count();
  return State::done;
}

State Cholesky::Inner::analyze(const Pattern& pattern, const Options& wishes, Control& control) {
  {
    const Graph graph = graph_of(pattern);
    if (!elimination && preview(graph, wishes, control) != State::done) return State::stopped;
    const auto begin = Clock::now();
    if (options.ordering == Ordering::automatic && dissection_may_pay(graph, *elimination) &&
        !order(graph, Ordering::nested_dissection, control))
      return State::stopped;
    counts.ordering_seconds += std::chrono::duration<double>(Clock::now() - begin).count();
  }
  symbolic = make_symbolic(pattern, find_supernodes(*elimination, true));
  elimination.reset();
  numeric.emplace(symbolic, options.threads, options.work_memory);
  counts.supernodes = symbolic.supernodes();
  counts.largest_front = symbolic.largest_front;
  counts.integers = static_cast<std::int64_t>(symbolic.rows.size());
  counts.stored = symbolic.panel.back();
  counts.bytes = numeric->bytes();
  control.add_work(static_cast<std::uint64_t>(symbolic.rows.size() + pattern.index.size()));
  if (counts.bytes > machine_memory()) return State::out_of_memory;
  return control.poll_clock() == Stop::none ? State::done : State::stopped;
}

Cholesky::Cholesky() = default;
Cholesky::~Cholesky() = default;
Cholesky::Cholesky(Cholesky&&) noexcept = default;
Cholesky& Cholesky::operator=(Cholesky&&) noexcept = default;

State Cholesky::preview(const Pattern& pattern, const Options& options, Control& control) {
  try {
    inner_ = std::make_unique<Inner>();
    return inner_->preview(graph_of(pattern), options, control);
  } catch (const std::bad_alloc&) {
    return State::out_of_memory;
  }
}

State Cholesky::analyze(const Pattern& pattern, const Options& options, Control& control) {
  try {
    if (!inner_ || !inner_->elimination) inner_ = std::make_unique<Inner>();
    return inner_->analyze(pattern, options, control);
  } catch (const std::bad_alloc&) {
    return State::out_of_memory;
  }
}

const Counts& Cholesky::counts() const {
  return inner_->counts;
}

const Storage& Cholesky::storage() const {
  return inner_->numeric->storage();
}

State Cholesky::allocate() {
  try {
    return inner_->allocate();
  } catch (const std::bad_alloc&) {
    return State::out_of_memory;
  }
}

State Cholesky::factorize(const double* values, const signed char* signs, const Pivoting& pivoting,
                          Control& control, Report* report) {
  Report own;
  try {
    if (const State state = inner_->allocate(); state != State::done) return state;
    return inner_->numeric->factorize(values, signs, pivoting, control, report == nullptr ? own : *report);
  } catch (const std::bad_alloc&) {
    return State::out_of_memory;
  }
}

void Cholesky::solve(double* x, int columns) const {
  cholesky::solve(inner_->symbolic, *inner_->numeric, x, columns);
}

}  // namespace tovik::lp::cholesky
