#include "lp/barrier/predictor_corrector.h"

#include <algorithm>
#include <cmath>

#include "lp/barrier/start.h"

namespace tovik::lp::barrier {
namespace {

constexpr double kCentral = 0.1;  // products between this share of the target and its inverse are left alone
constexpr double kLonger = 0.3;   // by which a correction tries to lengthen the steps
constexpr double kGain = 0.01;    // by which it must
constexpr double kLongEnough = 0.95;  // steps that are not corrected
constexpr double kShort = 0.1;        // steps that call for centring
constexpr double kCentring = 0.5;     // its target, share of the mean product
constexpr int kPatience = 15;         // iterations without a better point until the next rung of the ladder
constexpr int kLittlePatience = 4;    // ... where the best point would do
constexpr int kStill = 2;             // iterations without a better point that are no accident
constexpr int kRungs = 2;
constexpr double kMoreRegularization = 100;
constexpr int kMoreRefinements = 6;
constexpr double kUsable = 1e-3;  // what a direction may miss, relative
constexpr double kGood = 1e-9;
constexpr int kAttempts = 2;  // to find a better one at the same point
constexpr int kRaises = 4;    // of the regularization, altogether
constexpr int kReturns = 4;   // to the best point, from steps that lost it

class PredictorCorrector {
 public:
  explicit PredictorCorrector(Session& session)
      : session_(session), form_(session.form), missing_(form_), step_(form_), extra_(form_) {}

  void run() {
    session_.begin();
    if (!make_start(session_, session_.options.start, at_)) return;
    while (!is_over()) {
      if (!find_usable_direction()) return;
      const Steps steps = interior_steps(form_, at_, step_);
      too_short_ = std::min(steps.primal, steps.dual) < kShort;
      move(form_, step_, steps, at_);
      ++session_.result.iterations;
    }
  }

 private:
  /* Looks at the point, logs it, and tells whether the call ends here. */
  bool is_over() {
    Quality quality = measure();
    if (session_.is_lost(quality) && ++lost_ <= kReturns) {
      at_ = session_.best();
      raise_regularization();
      too_short_ = true;
      quality = measure();
    }
    session_.log(quality, mean_, {});
    least_mean_ = least_useful_mean(quality);
    waited_ = session_.keep_if_better(at_, 1, quality, mean_) ? 0 : waited_ + 1;
    if (session_.settle(at_, 1, quality, waited_ >= kStill)) return true;
    if (session_.try_farkas(at_) || session_.try_ray(at_, quality) || session_.beyond_range(quality))
      return true;
    if (detects_unbounded_face(quality) || session_.must_stop()) return true;
    const int patience = session_.is_near_enough() ? kLittlePatience : kPatience;
    if (std::isfinite(quality.worst()) && std::isfinite(mean_) && waited_ < patience) return false;
    return !climb();
  }

  Quality measure() {
    measure_residuals(form_, at_, 1, missing_);
    mean_ = form_.pairs > 0 ? sum_of_products(at_) / form_.pairs : 0;
    return session_.measure(at_, missing_, 1);
  }

  /* Products smaller than that gain nothing, and cost the digits of the next systems. */
  double least_useful_mean(const Quality& quality) const {
    constexpr double kShare = 1e-6;  // of the gap that is allowed
    return kShare * session_.options.tolerance * quality.objective_size /
           (form_.objective_unit * std::max(1, form_.pairs));
  }

  /* Nearly optimal, and still the point grows. */
  bool detects_unbounded_face(const Quality& quality) {
    constexpr double kNearlyOptimal = 100;  // times the tolerance
    if (largest_magnitude(at_.x) < session_.options.growth ||
        quality.worst() > kNearlyOptimal * session_.options.tolerance)
      return false;
    session_.end(Ending::unbounded_face);
    return true;
  }

  /* The next measure against standing still; false when there is none left. */
  bool climb() {
    waited_ = 0;
    if (++rung_ > kRungs || !std::isfinite(mean_)) {
      session_.end(Ending::no_progress);
      return false;
    }
    raise_regularization();
    session_.newton.set_refinements(kMoreRefinements);
    too_short_ = true;
    return true;
  }

  void raise_regularization() {
    if (raised_ == kRaises) return;
    session_.regularization.multiply(kMoreRegularization);
    ++raised_;
  }

  /* A direction that misses much is found anew with more regularization; false when the call is over. */
  bool find_usable_direction() {
    for (int attempt = 0;; ++attempt) {
      if (session_.failed(session_.newton.prepare(at_, session_.regularization, session_.control)))
        return false;
      ++session_.result.factorizations;
      find_direction();
      const double trust = session_.newton.trust();
      if (trust < kGood && raised_ > 0) {
        session_.regularization.multiply(1 / kMoreRegularization);
        --raised_;
      }
      if (trust < kUsable || attempt == kAttempts || raised_ == kRaises) return true;
      raise_regularization();
      measure_residuals(form_, at_, 1, missing_);
    }
  }

  void find_direction() {
    set_targets(0);
    session_.newton.solve(missing_, form_.pairs > 0 ? Newton::kAim : Newton::kStep, step_, session_.control);
    const Steps longest = longest_steps(form_, at_, step_);
    if (form_.pairs == 0) return;
    const double reached = sum_of_products(form_, at_, step_, longest.primal, longest.dual) / form_.pairs;
    const double share = std::clamp(reached / mean_, 0.0, 1.0);
    double centring = share * share * share;
    if (too_short_) centring = std::max(centring, kCentring);
    const double target = std::max(centring * mean_, least_mean_);
    set_second_order_targets(target);
    session_.newton.solve(missing_, Newton::kStep, step_, session_.control);
    correct(target);
  }

  void set_targets(double target) {
    for (int j = 0; j < form_.n; ++j) {
      if (form_.has_lower[j]) missing_.lower_pairs[j] = target - at_.x[j] * at_.z[j];
      if (form_.has_upper[j]) missing_.upper_pairs[j] = target - at_.w[j] * at_.v[j];
    }
  }

  void set_second_order_targets(double target) {
    set_targets(target);
    for (int j = 0; j < form_.n; ++j) {
      if (form_.has_lower[j]) missing_.lower_pairs[j] -= step_.x[j] * step_.z[j];
      if (form_.has_upper[j]) missing_.upper_pairs[j] -= step_.w[j] * step_.v[j];
    }
  }

  /* Centrality corrections of step_. */
  void correct(double target) {
    Blocks wanted(form_);
    int done = 0;
    std::int64_t outliers = 0;
    for (; done < session_.corrections(); ++done) {
      const Steps now = longest_steps(form_, at_, step_);
      if (now.primal > kLongEnough && now.dual > kLongEnough) break;
      const Steps goal{std::min(1.0, now.primal + kLonger), std::min(1.0, now.dual + kLonger)};
      outliers += set_outliers(target, goal, wanted);
      session_.newton.solve(wanted, Newton::kCorrection, extra_, session_.control);
      if (!take_best_weight(now)) break;
    }
    if (done > 0 && session_.observer != nullptr)
      session_.observer->corrections(session_.result.iterations + 1, done, outliers);
  }

  /* What brings products that would lie far from the target nearer to it; how many there are. */
  std::int64_t set_outliers(double target, const Steps& goal, Blocks& wanted) const {
    std::int64_t found = 0;
    const auto outlier = [&](double value, double multiplier) {
      const double product = value * multiplier;
      const double low = kCentral * target;
      const double high = target / kCentral;
      const double change = product < low    ? low - product
                            : product > high ? std::max(high - product, -high)
                                             : 0;
      found += change != 0;
      return change;
    };
    for (int j = 0; j < form_.n; ++j) {
      if (form_.has_lower[j])
        wanted.lower_pairs[j] =
            outlier(at_.x[j] + goal.primal * step_.x[j], at_.z[j] + goal.dual * step_.z[j]);
      if (form_.has_upper[j])
        wanted.upper_pairs[j] =
            outlier(at_.w[j] + goal.primal * step_.w[j], at_.v[j] + goal.dual * step_.v[j]);
    }
    return found;
  }

  /* Adds as much of the correction to either side as lengthens its step most; false where none does. */
  bool take_best_weight(const Steps& now) {
    const double least = now.primal * now.dual;
    Weights weights;
    for (int k = 0; k < kWeights; ++k) weights[k] = least + (1 - least) * k / (kWeights - 1);
    const std::array<Steps, kWeights> steps = longest_steps(form_, at_, step_, extra_, weights);
    Steps best = now;
    double primal_weight = 0, dual_weight = 0;
    for (int k = 0; k < kWeights; ++k) {
      if (steps[k].primal > best.primal) {
        best.primal = steps[k].primal;
        primal_weight = weights[k];
      }
      if (steps[k].dual > best.dual) {
        best.dual = steps[k].dual;
        dual_weight = weights[k];
      }
    }
    if (best.primal < now.primal + kGain && best.dual < now.dual + kGain) return false;
    for (int i = 0; i < form_.m; ++i) step_.y[i] += dual_weight * extra_.y[i];
    for (int j = 0; j < form_.n; ++j) {
      step_.x[j] += primal_weight * extra_.x[j];
      step_.w[j] += primal_weight * extra_.w[j];
      step_.z[j] += dual_weight * extra_.z[j];
      step_.v[j] += dual_weight * extra_.v[j];
    }
    return true;
  }

  Session& session_;
  const Form& form_;
  Point at_;
  Blocks missing_;
  Point step_, extra_;
  double mean_ = 0;        // of the products
  double least_mean_ = 0;  // no target is smaller
  bool too_short_ = false;
  int waited_ = 0, rung_ = 0, raised_ = 0, lost_ = 0;
};

}  // namespace

void run_predictor_corrector(Session& session) {
  PredictorCorrector(session).run();
}

}  // namespace tovik::lp::barrier
