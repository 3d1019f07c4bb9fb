/* The cuts of a search: separators, pool, and the rows of the relaxation that are cuts.
 *
 * One round: every separator that is due looks at the relaxation's optimum, the pool gets what they find, the best violated
 * cuts become rows, as far as the limits allow; rows that have stood slack for some solves, or at the end of the root, leave.
 * Every cut holds everywhere: separators reckon with global bounds, in the tree too. The caller solves before and after. */
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "mip/pool/cut_pool.h"
#include "mip/search/statistics.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class Separation {
 public:
  explicit Separation(const Global& global);

  /* Cuts that became rows. x: the relaxation's optimum. */
  int round(Worker& worker, std::span<const double> x, const Moment& moment);
  /* For the next round: a cut that another search has found. */
  void offer(Cut cut) { pool_.add(std::move(cut)); }
  /* Rows that were slack at the last kPatience optima (all that are slack: at_once) leave; the next solve has nothing to do
   * for them. True when some did. */
  bool drop_slack_rows(Worker& worker, bool at_once);
  /* The relaxation has to be solved anew. */
  void add_rows(Worker& worker, std::vector<Cut>& cuts);
  template <class Which>
  void remove_rows(Worker& worker, Which which);  // which: bool(const Cut&)
  /* Rows of the caller that left for being slack, since the last call. */
  std::vector<Cut> take_left() { return std::exchange(left_, {}); }
  /* Cuts that became rows, by class, since the last call:
   * what the node log tells of a round. */
  CutCounts take_counts();
  /* Of all rounds: by separator, and the cuts that became rows. */
  std::vector<PluginCounts> plugin_counts() const;
  const CutCounts& all_counts() const { return all_counts_; }
  /* Of the cut rows, in their order, numbers that none had before; one object while the rows stay. */
  std::shared_ptr<const std::vector<std::int64_t>> row_numbers();
  /* Entries touched so far. */
  std::int64_t work() const { return work_told_; }
  /* Of the families that take part. */
  Effort most_effort() const;
  int rows() const { return static_cast<int>(slack_for_.size()); }

 private:
  /* A separator that finds nothing again and again is called ever more seldom, unless more effort is wanted. */
  struct Separator {
    Effort effort;
    std::unique_ptr<Plugin> plugin;
    int failures = 0, waits = 0;  // rounds
    PluginCounts counts{};
  };

  bool stalls(double objective, const Moment& moment);
  static Verdict call(Separator& separator, Worker& worker, const Moment& moment);
  void call_separators(Worker& worker, const Moment& moment);
  double most_rows() const;
  void limit_classes(std::vector<Cut>& cuts);
  void delete_rows(Worker& worker, const std::vector<int>& rows);

  const Global& global_;
  std::vector<Separator> separators_;
  CutPool pool_;
  std::vector<int> slack_for_;         // by cut row: solves since it was tight
  std::vector<std::int64_t> numbers_;  // by cut row, ascending
  std::int64_t next_number_ = 0;
  std::shared_ptr<const std::vector<std::int64_t>> told_numbers_;  // null: not of the present rows
  std::vector<double> objectives_;  // of the relaxation before each round at this node
  CutCounts counts_{};              // since they were last asked for
  CutCounts all_counts_{};
  std::int64_t work_told_ = 0;
  std::vector<Cut> left_;
};

template <class Which>
void Separation::remove_rows(Worker& worker, Which which) {
  std::vector<int> leaving;
  for (std::size_t k = 0; k < worker.cut_rows.size(); ++k) {
    if (which(worker.cut_rows[k])) leaving.push_back(global_.problem.num_rows() + static_cast<int>(k));
  }
  if (!leaving.empty()) delete_rows(worker, leaving);
}

}  // namespace tovik::mip
