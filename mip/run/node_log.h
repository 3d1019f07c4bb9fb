/* The node log on the results channel: header, node rows, their spacing, cut rows, elapsed-time lines. */
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "env/environment.h"
#include "env/problem.h"
#include "mip/search/presolved_search.h"
#include "mip/worker/observer.h"

namespace tovik::mip::run {

class NodeLog : public Observer {
 public:
  NodeLog(Environment& env, const tovik::Problem& problem);
  /* Whose progress it writes; before the search runs. */
  void follow(PresolvedSearch& search) { search_ = &search; }
  /* A run begins: seconds count from here. */
  void begin();
  double seconds() const;  // since then
  void set_in_search(bool in_search) { in_search_ = in_search; }
  /* Of a run in which several threads have searched. */
  void team(const TeamTimes& times);

  void node(const NodeEvent& event) override;
  void cuts(const CutCounts& added) override;
  void solution(double objective, std::span<const double> x) override;

 private:
  void header();
  bool is_due(const NodeEvent& event) const;
  void row(const NodeEvent& event, const Progress& progress);
  void branch_line(const NodeEvent& event);
  void elapsed_line(const Progress& progress);
  void node_file_line(const Progress& progress);
  void brief_line(const NodeEvent& event, const Progress& progress);
  std::string objective_field(const NodeEvent& event) const;
  std::string number(double value) const;
  double in_users_sense(double value) const;
  int display() const { return env_.settings.integer(TVK_PARAM_MIPDISPLAY); }

  Environment& env_;
  const tovik::Problem& problem_;
  PresolvedSearch* search_ = nullptr;
  double start_ = 0;
  bool has_header_ = false, in_search_ = false;
  std::int64_t rows_ = 0;
  std::uint64_t last_row_ticks_ = 0;
  double incumbent_ = kInf;
  CutCounts cuts_{};  // since the last row or cut line
};

}  // namespace tovik::mip::run
