/* Choice of the entering column in the primal simplex.
 *
 * - weight[j]: squared edge norm of nonbasic j: exact (1 + ||B^-1 a_j||^2), devex in a reference framework,
 *   or 1.
 * - score[j]: square of the improving part of d[j], 0 when j may not enter; score / weight decides.
 * - Candidates: a list with a cut-off: everything outside the list is worth less, so that a hyper-sparse
 *   iteration touches only the list and the columns whose d or weight has changed.
 * - Order: start() once a solve; refresh() after d was recomputed; choose(); then, for one basis change,
 *   update_weights() before and touch() after d, move and nonbasic have changed.
 * - Trust: update_weights() compares the devex weight with the exact reference weight; too many bad ones
 *   reset the framework.
 * - Errors: bad_alloc passes through.
 * - Papers: Harris, Math. Programming 5 (1973); Forrest, Goldfarb, Math. Programming 57 (1992); Hall,
 *   McKinnon, Computational Optimization and Applications 32 (2005). */
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class PrimalPricing {
 public:
  enum class Kind { devex, steepest_edge, dantzig };

  /* Chooses the kind by the options and sets the starting weights. Automatic: steepest edge where exact norms
   * are free (a basis of logicals) and all columns are priced, devex otherwise. Elsewhere exact norms cost a
   * solve for every column.
   */
  void start(Core& core, bool partial);
  Kind kind() const { return kind_; }
  const char* name() const { return kind_ == Kind::steepest_edge ? "steepest-edge" : "devex"; }  // in the log
  /* Automatic pricing: whether steepest edge has cost more work than its fewer iterations can save, given all
   * work since start(). */
  bool too_costly(std::int64_t all_work) const {
    return automatic_ && kind_ == Kind::steepest_edge &&
           static_cast<double>(edge_work_) > kCostly * static_cast<double>(all_work);
  }
  void switch_to_devex(Core& core) {
    kind_ = Kind::devex;
    reset(core);
  }
  /* Adds work done for steepest edge only. */
  void charge_edges(std::int64_t ticks) { edge_work_ += ticks; }
  /* Unit weights; for devex with the present nonbasics as reference framework. */
  void reset(Core& core);

  /* Takes the score anew from d. The tolerance is that of dual_infeasibility. */
  void refresh(const Core& core, double tolerance);
  /* The most improving nonbasic, or -1. */
  int choose(Core& core);
  /* Re-evaluates j after a change of d[j], its weight or its place. */
  void touch(const Core& core, int j) {
    const double score = banned_[j] ? 0.0 : dual_infeasibility(core, j);
    score_[j] = score;
    if (listed_ && score > cutoff_ * weight_[j] && !in_list_[j]) {
      in_list_[j] = 1;
      list_.push_back(j);
    }
  }
  /* Columns outside `universe` are never chosen; empty: all columns may be. Takes effect at the next
   * refresh(). */
  void limit_to(std::vector<int> universe) { universe_ = std::move(universe); }

  /* Puts j aside until clear_banned(). */
  void ban(int j);
  void clear_banned();
  int banned_count() const { return static_cast<int>(banned_list_.size()); }

  /* New weights of the columns in the pivot row (variables `index`, entries `alpha`), of the leaving and of
   * the entering variable. column: B^-1 a_q; mu: B^-T column, read for steepest edge only. Before the
   * exchange. */
  struct Pivot {
    int entering;
    int leaving;
    double alpha;
  };
  void update_weights(Core& core, const Pivot& pivot, const SparseVector& column, const SparseVector& mu,
                      std::span<const int> index, std::span<const double> alpha);
  std::span<const double> weights() const { return weight_; }

 private:
  double dual_infeasibility(const Core& core, int j) const {
    if (!core.basis.nonbasic(j)) return 0;
    const double d = core.values.d(j);
    const double v = core.basis.move(j) > 0   ? -d
                     : core.basis.move(j) < 0 ? d
                     : core.is_fixed(j)       ? 0.0
                     : d < 0                  ? -d
                                              : d;
    return v > tolerance_ ? v * v : 0.0;
  }
  int scan_all(Core& core);
  int scan_list(Core& core);
  void make_list(Core& core);
  void compute_norms(Core& core);

  static constexpr double kCostly = 0.4;  // share of all work
  Kind kind_ = Kind::devex;
  bool automatic_ = false;
  std::int64_t edge_work_ = 0;
  double tolerance_ = 0;
  std::vector<double> weight_, score_;
  std::vector<char> reference_, banned_, in_list_;
  std::vector<int> list_, banned_list_, universe_;
  std::vector<double> ratio_;  // work space of make_list
  double cutoff_ = 0;
  bool listed_ = false;
  int bad_weights_ = 0;
};

}  // namespace tovik::lp::simplex
