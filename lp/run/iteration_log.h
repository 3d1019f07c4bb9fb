/* The iteration log in both details, the pricing lines and the elapsed-time lines, on the results channel. */
#pragma once

#include <vector>

#include "env/environment.h"
#include "env/problem.h"
#include "lp/simplex/observer.h"

namespace tovik::lp::run {

class IterationLog : public simplex::Observer {
 public:
  IterationLog(Environment& env, const Problem& problem, int display);
  /* The engine works on a presolved problem, whose rows and columns have these indices in the problem: both
   * vectors must live as long as the log. */
  void set_origin(const std::vector<int>& rows, const std::vector<int>& columns);
  void iteration(const simplex::Core& core, const simplex::IterationEvent& event) override;
  void pricing(const char* rule, bool changed) override;
  void text(const char* line) override;
  void removed_by_singularity(const simplex::Core& core, int variable) override;

 private:
  void brief(const simplex::Core& core, const simplex::IterationEvent& event, std::int64_t count);
  void detailed(const simplex::Core& core, const simplex::IterationEvent& event, std::int64_t count);
  void elapsed(std::int64_t count);
  std::string variable(const simplex::Core& core, int j, bool entering) const;
  int row(int i) const { return rows_ == nullptr ? i : (*rows_)[i]; }
  int column(int j) const { return columns_ == nullptr ? j : (*columns_)[j]; }

  Environment& env_;
  const Problem& problem_;
  int display_;
  const std::vector<int>* rows_ = nullptr;
  const std::vector<int>* columns_ = nullptr;
  bool scaled_ = false;
  std::int64_t next_line_ = 0;
  int last_phase_ = 0;
  std::int64_t elapsed_mark_ = 0;
  double start_;
  double last_elapsed_;
};

}  // namespace tovik::lp::run
