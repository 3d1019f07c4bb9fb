#include <algorithm>

#include "lp/cholesky/numeric.h"

namespace tovik::lp::cholesky {
namespace {

constexpr double kWorthThreads = 2e7;  // cost, as front_cost() counts it
constexpr int kTasksPerThread = 4;     // a subtree is at most this part of a thread's share
constexpr int kGroupsPerThread = 16;   // small subtrees are taken together up to this part

/* The largest subtrees of at most `largest`. */
void choose_roots(const Symbolic& symbolic, const std::vector<double>& subtree, double largest, Plan& plan) {
  const int n = symbolic.supernodes();
  plan.is_root.assign(n, false);
  for (int s = 0; s < n; ++s) {
    const int up = symbolic.parent[s];
    if (subtree[s] > largest || (up >= 0 && subtree[up] <= largest)) continue;
    plan.is_root[s] = true;
    plan.roots.push_back(s);
    plan.held += symbolic.square(s);
  }
}

void group_roots(const std::vector<double>& subtree, double size, Plan& plan) {
  Plan::Task task;
  for (int k = 0; k < static_cast<int>(plan.roots.size()); ++k) {
    task.cost += subtree[plan.roots[k]];
    task.last = k;
    if (task.cost < size && k + 1 < static_cast<int>(plan.roots.size())) continue;
    plan.tasks.push_back(task);
    task = {k + 1, k + 1, 0};
  }
  std::sort(plan.tasks.begin(), plan.tasks.end(), [](const Plan::Task& a, const Plan::Task& b) {
    return a.cost > b.cost || (a.cost == b.cost && a.first < b.first);
  });
}

/* Largest need of the stacks while `list` is eliminated; contributions of task roots are kept elsewhere. */
template <class List>
std::int64_t peak_of(const Symbolic& symbolic, const Plan& plan, const List& list) {
  auto held = [&](int s) { return !plan.is_root.empty() && plan.is_root[s]; };
  std::int64_t now = 0, peak = 0;
  for (const int s : list) {
    if (!held(s)) now += symbolic.square(s);
    peak = std::max(peak, now);
    for (int c = symbolic.first_child[s]; c >= 0; c = symbolic.sibling[c])
      if (!held(c)) now -= symbolic.square(c);
  }
  return peak;
}

}  // namespace

Plan make_plan(const Symbolic& symbolic, int threads) {
  Plan plan;
  const int n = symbolic.supernodes();
  std::vector<double> subtree(n);
  double total = 0;
  for (int s = 0; s < n; ++s) {
    subtree[s] += front_cost(symbolic.width(s), symbolic.below(s));
    (symbolic.parent[s] < 0 ? total : subtree[symbolic.parent[s]]) += subtree[s];
  }
  if (threads > 1 && total > kWorthThreads) {
    choose_roots(symbolic, subtree, total / (threads * kTasksPerThread), plan);
    group_roots(subtree, total / (threads * kGroupsPerThread), plan);
  }
  std::vector<int> inside;
  for (const int root : plan.roots) {
    inside.clear();
    for (int s = symbolic.first_below[root]; s <= root; ++s) {
      inside.push_back(s);
      plan.largest_panel = std::max(plan.largest_panel, symbolic.panel[s + 1] - symbolic.panel[s]);
    }
    plan.task_peak = std::max(plan.task_peak, peak_of(symbolic, plan, inside));
  }
  for (int s = 0, k = 0; s < n; ++s) {
    if (k < static_cast<int>(plan.roots.size()) && s == symbolic.first_below[plan.roots[k]])
      s = plan.roots[k++];
    else
      plan.top.push_back(s);
  }
  plan.top_peak = peak_of(symbolic, plan, plan.top);
  return plan;
}

}  // namespace tovik::lp::cholesky
