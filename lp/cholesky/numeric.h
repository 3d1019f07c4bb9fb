/* The numbers of L and D, and how they are computed: front after front along the tree, contributions of children added to the
 * parent in a fixed order. Large subtrees are independent tasks; above them the threads share the work of each front.
 * Contributions stand on two stacks that grow towards each other in one piece of memory, by the parity of the depth: those of
 * the children lie on top of the one stack while the parent's is put on the other, so nothing is ever moved.
 * Panels stand where `panels.h` says; contributions are in memory always.
 * Paper   "The multifrontal method for sparse matrix solution: theory and practice", SIAM Review 34 (1992). */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lp/cholesky/front.h"
#include "lp/cholesky/panels.h"
#include "lp/cholesky/symbolic.h"

namespace tovik::lp::cholesky {

/* Subtrees that threads take as a whole; none if one thread works. */
struct Plan {
  struct Task {
    int first = 0, last = 0;  // of `roots`
    double cost = 0;
  };
  std::vector<int> roots;     // of subtrees, ascending
  std::vector<Task> tasks;    // the longest first
  std::vector<int> top;       // supernodes above, ascending
  std::vector<bool> is_root;  // by supernode; empty if there are no tasks
  std::int64_t task_peak = 0, top_peak = 0,
               held = 0;           // numbers: stacks of a task, of the top, contributions between
  std::int64_t largest_panel = 0;  // of tasks, numbers
};

Plan make_plan(const Symbolic& symbolic, int threads);

class Numeric {
 public:
  Numeric(const Symbolic& symbolic, int threads, double work_memory);

  std::int64_t bytes() const;  // that allocate() takes
  const Storage& storage() const { return panels_.storage(); }
  [[nodiscard]] State allocate(const std::string& directory);
  State factorize(const double* values, const signed char* signs, const Pivoting& pivoting, Control& control,
                  Report& report);
  const Panels& panels() const { return panels_; }
  const double* inverse() const { return inverse_.data(); }  // of the pivots, by position

 private:
  struct Stacks {
    std::unique_ptr<double[]> memory;
    std::int64_t low = 0, high = 0, size = 0;  // free between low and high
  };
  struct Job;

  std::int64_t bytes_beside() const;  // the panels
  void run_task(Job& job, const Plan::Task& task, int worker);
  void process(Job& job, int s, int worker, Stacks& stacks, Team* team);
  void assemble_entries(const Job& job, int s, int begin, int end, double* panel) const;
  void assemble_children(int parent, int begin, int end, double* target, int offset,
                         std::vector<int>& run) const;
  void assemble_child(int child, int parent, int begin, int end, double* target, int offset,
                      std::vector<int>& run) const;
  double* push(int s, Stacks& stacks);
  void pop_children(int s, Stacks& stacks);

  const Symbolic& symbolic_;
  int threads_;
  Plan plan_;
  Panels panels_;
  std::vector<double> inverse_;
  std::vector<signed char> signs_;  // by position
  std::vector<double*> square_;     // contribution by supernode, while it lives
  std::vector<Stacks> task_stacks_;
  Stacks top_stacks_;
  std::unique_ptr<double[]> held_;
  std::vector<Workspace> workspaces_;
};

}  // namespace tovik::lp::cholesky
