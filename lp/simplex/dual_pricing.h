/* Choice of the leaving row in the dual simplex: the largest infeasibility^2 / weight.
 *
 * - Holds: infeasibility[p] = squared violation of basic p (0 when within tolerance), size m.
 * - Modes: dense: every choice scans all rows. Listed: only rows whose score passes a cut-off are kept in a
 *   list; rows are added as their score grows, and the list is rebuilt when its best falls below the cut-off,
 *   so that in a hyper-sparse run no choice looks at all rows.
 * - Order: rebuild() after the values were recomputed; set() for every value that an update changed. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class DualPricing {
 public:
  void resize(int rows);
  /* Recomputes all infeasibilities from the core's values, forgets banned rows when asked, chooses the mode.
   */
  void rebuild(Core& core, const std::vector<double>& weight, bool keep_banned);
  /* The same with a list of all infeasible rows: for a start near the optimum, where few rows ever are. */
  void rebuild_listed(const Core& core);
  /* Whether a listed row is infeasible; after rebuild_listed(), whether any is. */
  bool any_listed() const {
    return std::any_of(list_.begin(), list_.end(), [this](int p) { return infeasibility_[p] > 0; });
  }
  /* set() of one row from the core's value. */
  void update(const Core& core, const std::vector<double>& weight, int p) {
    set(p,
        violation2(core.values.x(p), core.values.x_lower(p), core.values.x_upper(p), core.primal_tolerance()),
        weight[p]);
  }
  /* Best row or -1. */
  int choose(Core& core, const std::vector<double>& weight);
  void set(int p, double squared, double weight) {
    infeasibility_[p] = squared;
    if (listed_ && !in_list_[p] && squared > cutoff_ * weight) {
      in_list_[p] = 1;
      list_.push_back(p);
    }
  }
  /* Takes a row out of consideration until the next rebuild that forgets banned rows. */
  void ban(int p) {
    banned_[p] = 1;
    ++banned_count_;
  }
  int banned_count() const { return banned_count_; }
  /* set() for all rows from the core's values. */
  void set_all(const Core& core, const std::vector<double>& weight);
  static double violation2(double x, double low, double high, double tolerance) {
    const double v = std::max(low - x, x - high);
    return v > tolerance ? v * v : 0.0;
  }

 private:
  void measure(const Core& core);
  void make_list(Core& core, const std::vector<double>& weight);
  int scan(Core& core, const std::vector<double>& weight) const;
  std::vector<double> infeasibility_;
  std::vector<char> in_list_, banned_;
  std::vector<int> list_;
  std::vector<double> score_;  // work space of make_list
  double cutoff_ = 0;
  bool listed_ = false;
  int banned_count_ = 0;
};

}  // namespace tovik::lp::simplex
