/* What both methods share during one call: form, linear algebra, limits, how good a point is, the best one so far, and
 * claims of infeasibility and unboundedness, which are made only with a proof that holds on the LP's own data. */
#pragma once

#include <algorithm>
#include <optional>

#include "lp/barrier/newton.h"
#include "lp/barrier/options.h"
#include "lp/barrier/point.h"
#include "lp/base/control.h"

namespace tovik::lp::barrier {

/* Of a point, in the LP's own units. */
struct Quality {
  double primal = 0, upper = 0, dual = 0;  // largest residuals
  double primal_objective = 0, dual_objective = 0;
  double relative_primal = 0, relative_dual = 0, gap = 0;  // what is compared with the tolerance
  double gap_without_offset = 0;                           // relative to what of the objective can vary
  double objective_size = 1;  // of the point: what its gap is compared with when that is small
  double worst() const { return std::max({relative_primal, relative_dual, gap}); }
};

class Session : private ProgressSource {
 public:
  Session(const LpData& lp, const Options& options, Control& control, Observer* observer);

  /* Analysis of the linear system; false when the call is over. */
  bool prepare();

  /* At the start of a method: nothing of the one before it counts but its best point. */
  void begin();

  /* Of the point / tau. */
  Quality measure(const Point& at, const Blocks& missing, double tau) const;
  /* Optimal within the tolerance, relative. */
  bool is_optimal(const Quality& quality) const;
  /* As is_optimal, and within the absolute tolerances where some more iterations reach them. Where points `stand still`
   * because rounding has the size of the relative residuals (huge multipliers), the absolute tolerances alone count.
   * True: the call is over. */
  bool settle(const Point& at, double tau, const Quality& quality, bool stands_still);

  /* No answer is wanted but a point to cross over from, and the best one is near enough for that. */
  bool is_near_enough() const;

  /* Remembers the point where it is clearly better than all before. True when it is. */
  bool keep_if_better(const Point& at, double tau, const Quality& quality, double mean_product);

  /* Whether a step has thrown away what an earlier point, nearly optimal, had: then best() is where to go on. */
  bool is_lost(const Quality& quality) const;
  const Point& best() const { return best_; }

  /* Whether y proves infeasibility, x unboundedness; looked at only where the directions are nearly such. True: the call
   * is over. */
  bool try_farkas(const Point& at);
  bool try_ray(const Point& at, const Quality& quality);

  /* Limits and ranges; true: the call is over. */
  bool must_stop();
  bool beyond_range(const Quality& quality);
  bool failed(cholesky::State state);  // of the linear algebra

  void end(Ending ending);
  void log(const Quality& quality, double mean_product, std::optional<double> ratio);
  Result release();

  /* Number of centrality corrections that an iteration may do. */
  int corrections() const { return corrections_; }

  const LpData& lp;
  const Options& options;
  Control& control;
  Observer* const observer;
  const Form form;
  Kkt kkt;
  Newton newton;
  Result result;
  Regularization regularization;

 private:
  bool is_within_tolerances(const Quality& quality) const;
  bool proves_infeasible(const std::vector<double>& y);
  bool proves_unbounded(const std::vector<double>& x, Ending ending);

  CallOrigin origin() const override { return CallOrigin::barrier; }
  Progress progress() const override;

  Quality now_;           // of the point at hand
  bool is_news_ = false;  // the callback does not know it yet
  Point best_;
  double best_tau_ = 1;
  bool has_best_ = false;
  double best_violation_ = kInf;  // absolute, of points that are optimal within the relative tolerance
  int settling_ = 0;              // iterations since the first of them
  int unsettled_ = 0;             // since the best of them
  double last_farkas_ = kInf, last_ray_ = kInf;  // how near a proof was when it was last looked at
  int corrections_ = 0;
};

}  // namespace tovik::lp::barrier
