#include "lp/cholesky/numeric.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

#include "lp/cholesky/flush_to_zero.h"

namespace tovik::lp::cholesky {
namespace {

constexpr double kOperationsPerAssembled = 16;
constexpr double kOperationsPerFront = 5000, kOperationsPerColumn = 200;
constexpr int kColumnsAtOnce = 64;  // of a panel that is assembled
constexpr int kRunWorth = 4;        // rows a run must have on average for adding run by run

std::unique_ptr<double[]> numbers(std::int64_t count) {
  return std::unique_ptr<double[]>(new double[static_cast<std::size_t>(count)]);
}

}  // namespace

struct Numeric::Job {
  const double* values;
  const signed char* signs;  // by position
  const Pivoting& pivoting;
  Pulse& pulse;
  std::atomic<State> failure = State::done;

  /* False, and everybody ends, unless it is done. */
  bool went_well(State state) {
    if (state == State::done) return true;
    failure = state;
    pulse.stop();
    return false;
  }
};

Numeric::Numeric(const Symbolic& symbolic, int threads, double work_memory)
    : symbolic_(symbolic),
      threads_(threads),
      plan_(make_plan(symbolic, threads)),
      panels_(symbolic, {.workers = plan_.tasks.empty() ? 1 : threads,
                         .largest_task = plan_.largest_panel,
                         .work_memory = work_memory,
                         .beside = bytes_beside()}) {}

std::int64_t Numeric::bytes_beside() const {
  const int used = plan_.tasks.empty() ? 0 : threads_;
  return 8 * (plan_.top_peak + plan_.held + used * plan_.task_peak +
              static_cast<std::int64_t>(threads_) * kTile * symbolic_.widest) +
         17 * static_cast<std::int64_t>(symbolic_.size);
}

std::int64_t Numeric::bytes() const {
  return static_cast<std::int64_t>(panels_.storage().needed);
}

State Numeric::allocate(const std::string& directory) {
  inverse_.resize(symbolic_.size);
  square_.assign(symbolic_.supernodes(), nullptr);
  workspaces_.resize(threads_);
  for (Workspace& workspace : workspaces_) {
    workspace.scaled.resize(static_cast<std::size_t>(kTile) * symbolic_.widest);
    workspace.run.reserve(static_cast<std::size_t>(symbolic_.largest_front) + 1);
  }
  auto stacks = [](std::int64_t size) {
    Stacks made;
    made.size = size;
    made.memory = numbers(size);
    return made;
  };
  top_stacks_ = stacks(plan_.top_peak);
  task_stacks_.clear();
  for (int worker = 0; worker < threads_ && !plan_.tasks.empty(); ++worker)
    task_stacks_.push_back(stacks(plan_.task_peak));
  held_ = numbers(plan_.held);
  return panels_.allocate(directory);
}

State Numeric::factorize(const double* values, const signed char* signs, const Pivoting& pivoting,
                         Control& control, Report& report) {
  const FlushToZero flush;
  signs_.clear();
  for (int k = 0; signs != nullptr && k < symbolic_.size; ++k) signs_.push_back(signs[symbolic_.order[k]]);
  for (Workspace& workspace : workspaces_)
    workspace.replaced = 0, workspace.smallest_pivot = workspace.largest_pivot = 0;
  Pulse pulse(control);
  Job job{values, signs == nullptr ? nullptr : signs_.data(), pivoting, pulse};
  Team team(plan_.tasks.empty() ? 1 : threads_);
  panels_.restart();
  std::int64_t place = 0;
  for (const int root : plan_.roots) {
    square_[root] = held_.get() + place;
    place += symbolic_.square(root);
  }
  team.run(
      static_cast<int>(plan_.tasks.size()),
      [&](int piece, int worker) { run_task(job, plan_.tasks[piece], worker); }, [&] { pulse.look(); });
  top_stacks_.low = 0;
  top_stacks_.high = top_stacks_.size;
  for (const int s : plan_.top) {
    if (pulse.stopped()) break;
    process(job, s, 0, top_stacks_, &team);
  }
  if (!pulse.stopped()) job.went_well(panels_.flush(0));
  if (job.failure != State::done) return job.failure;
  pulse.look();
  if (pulse.stopped()) return State::stopped;
  report = {};
  for (const Workspace& workspace : workspaces_) {
    report.replaced += workspace.replaced;
    report.largest_pivot = std::max(report.largest_pivot, workspace.largest_pivot);
    if (workspace.smallest_pivot > 0 &&
        (report.smallest_pivot == 0 || workspace.smallest_pivot < report.smallest_pivot))
      report.smallest_pivot = workspace.smallest_pivot;
  }
  return State::done;
}

void Numeric::run_task(Job& job, const Plan::Task& task, int worker) {
  Stacks& stacks = task_stacks_[worker];
  for (int k = task.first; k <= task.last; ++k) {
    stacks.low = 0;
    stacks.high = stacks.size;
    for (int s = symbolic_.first_below[plan_.roots[k]]; s <= plan_.roots[k]; ++s) {
      if (job.pulse.stopped()) return;
      process(job, s, worker, stacks, nullptr);
    }
  }
  job.went_well(panels_.flush(worker));
}

void Numeric::process(Job& job, int s, int worker, Stacks& stacks, Team* team) {
  const int width = symbolic_.width(s), first = symbolic_.start[s];
  double* panel = nullptr;
  if (!job.went_well(panels_.begin(s, worker, &panel))) return;
  double* const square = push(s, stacks);
  double assembled = static_cast<double>(symbolic_.panel[s + 1] - symbolic_.panel[s]);
  for (int c = symbolic_.first_child[s]; c >= 0; c = symbolic_.sibling[c])
    assembled += static_cast<double>(symbolic_.square(c));
  FrontElimination front({panel, symbolic_.front(s), width,
                          job.signs == nullptr ? nullptr : job.signs + first, inverse_.data() + first},
                         job.pivoting, workspaces_, worker, team, job.pulse);
  const int pieces = (width + kColumnsAtOnce - 1) / kColumnsAtOnce;
  front.share(pieces, kOperationsPerAssembled * assembled, [&](int piece, int by) {
    const int begin = piece * kColumnsAtOnce, end = std::min(begin + kColumnsAtOnce, width);
    assemble_entries(job, s, begin, end, panel);
    assemble_children(s, begin, end, panel, 0, workspaces_[by].run);
  });
  front.eliminate_panel();
  front.update_square(square, [&](int begin, int end, int by) {
    assemble_children(s, width + begin, width + end, square, width, workspaces_[by].run);
  });
  panels_.finish(s, panel);
  pop_children(s, stacks);
  job.pulse.add(kOperationsPerAssembled * assembled + kOperationsPerFront + kOperationsPerColumn * width,
                worker);
}

/* Columns begin .. end - 1 of the panel. */
void Numeric::assemble_entries(const Job& job, int s, int begin, int end, double* panel) const {
  const int rows = symbolic_.front(s);
  double* column = panel + static_cast<std::int64_t>(begin) * rows;
  std::memset(column, 0, sizeof(double) * static_cast<std::size_t>(rows) * (end - begin));
  for (int j = symbolic_.start[s] + begin; j < symbolic_.start[s] + end; ++j, column += rows)
    for (std::int64_t e = symbolic_.entry_start[j]; e < symbolic_.entry_start[j + 1]; ++e)
      column[symbolic_.entry_row[e]] += job.values[symbolic_.entry[e]];
}

void Numeric::assemble_children(int parent, int begin, int end, double* target, int offset,
                                std::vector<int>& run) const {
  for (int c = symbolic_.first_child[parent]; c >= 0; c = symbolic_.sibling[c])
    assemble_child(c, parent, begin, end, target, offset, run);
}

/* Adds what the child contributes to columns begin .. end - 1 of the parent's front. The target begins with column and row
 * `offset` of the front. */
void Numeric::assemble_child(int child, int parent, int begin, int end, double* target, int offset,
                             std::vector<int>& run) const {
  const int rows = symbolic_.below(child);
  const int* const place = symbolic_.relative.data() + symbolic_.row_start[child];
  const int from = static_cast<int>(std::lower_bound(place, place + rows, begin) - place);
  int to = from;
  while (to < rows && place[to] < end) ++to;
  if (from == to) return;
  const int stride = symbolic_.front(parent) - offset;
  run.clear();  // begins of runs of consecutive places
  for (int i = from; i < rows; ++i)
    if (i == from || place[i] != place[i - 1] + 1) run.push_back(i);
  const bool by_runs = static_cast<std::size_t>(rows - from) >= kRunWorth * run.size();
  run.push_back(rows);
  std::size_t current = 0;
  for (int j = from; j < to; ++j) {
    const double* const source = square_[child] + static_cast<std::int64_t>(j) * rows;
    double* const column = target + static_cast<std::int64_t>(place[j] - offset) * stride - offset;
    if (!by_runs) {
      for (int i = j; i < rows; ++i) column[place[i]] += source[i];
      continue;
    }
    while (run[current + 1] <= j) ++current;
    for (std::size_t k = current; k + 1 < run.size(); ++k) {
      const int i_begin = std::max(run[k], j), count = run[k + 1] - i_begin;
      double* const sum = column + place[i_begin];
      const double* const term = source + i_begin;
      for (int i = 0; i < count; ++i) sum[i] += term[i];
    }
  }
}

double* Numeric::push(int s, Stacks& stacks) {
  if (!plan_.is_root.empty() && plan_.is_root[s]) return square_[s];
  const std::int64_t size = symbolic_.square(s);
  if (symbolic_.depth[s] % 2 == 0) {
    square_[s] = stacks.memory.get() + stacks.low;
    stacks.low += size;
  } else {
    stacks.high -= size;
    square_[s] = stacks.memory.get() + stacks.high;
  }
  return square_[s];
}

void Numeric::pop_children(int s, Stacks& stacks) {
  for (int c = symbolic_.first_child[s]; c >= 0; c = symbolic_.sibling[c]) {
    if (!plan_.is_root.empty() && plan_.is_root[c]) continue;
    if (symbolic_.depth[c] % 2 == 0)
      stacks.low -= symbolic_.square(c);
    else
      stacks.high += symbolic_.square(c);
  }
}

}  // namespace tovik::lp::cholesky
