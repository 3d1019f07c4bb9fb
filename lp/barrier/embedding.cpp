#include "lp/barrier/embedding.h"

#include <algorithm>
#include <cmath>

#include "lp/barrier/start.h"

namespace tovik::lp::barrier {
namespace {

constexpr double kToBoundary = 0.995;  // share of the longest step
constexpr double kLeastCentring = 1e-4;
constexpr int kPatience = 25;  // iterations without a better point
constexpr int kStill = 2;      // ... that are no accident
constexpr double kSettledMean =
    1e-22;  // share of the first mean product from which on nothing more is to be had

class Embedding {
 public:
  explicit Embedding(Session& session)
      : session_(session),
        form_(session.form),
        at_(form_),
        missing_(form_),
        wanted_(form_),
        step_(form_),
        homogeneous_(form_) {
    sides_ = Blocks(form_);
    sides_.primal = form_.b;
    sides_.upper = form_.u;
    sides_.dual = form_.c;
  }

  void run(bool from_estimate) {
    session_.begin();
    if (!make_first_point(from_estimate)) return;
    while (!is_over()) {
      if (session_.failed(session_.newton.prepare(at_, session_.regularization, session_.control))) return;
      ++session_.result.factorizations;
      session_.newton.solve(sides_, Newton::kFull, homogeneous_, session_.control);
      find_direction(1, 0, false);
      const double predicted = longest_step();
      const double centring =
          std::max(kLeastCentring, (1 - predicted) * (1 - predicted) * std::min(0.5, 1 - predicted));
      find_direction(1 - centring, centring * mean_, true);
      const double length = std::min(1.0, kToBoundary * longest_step());
      move(form_, step_, {length, length}, at_);
      tau_ = std::max(tau_ + length * dtau_, 1e-300);
      kappa_ = std::max(kappa_ + length * dkappa_, 1e-300);
      rescale();
      ++session_.result.iterations;
    }
  }

 private:
  bool make_first_point(bool from_estimate) {
    if (from_estimate) return make_start(session_, session_.options.start, at_);
    for (int j = 0; j < form_.n; ++j) {
      if (form_.has_lower[j]) at_.x[j] = at_.z[j] = 1;
      if (form_.has_upper[j]) at_.w[j] = at_.v[j] = 1;
    }
    return true;
  }

  bool is_over() {
    measure_residuals(form_, at_, tau_, missing_);
    missing_gap_ = kappa_ + primal_value(form_, at_) - dual_value(form_, at_);
    mean_ = (sum_of_products(at_) + tau_ * kappa_) / (form_.pairs + 1);
    if (first_mean_ == 0) first_mean_ = mean_;
    const Quality quality = session_.measure(at_, missing_, tau_);
    session_.log(quality, mean_ / (tau_ * tau_), tau_ / kappa_);
    waited_ = session_.keep_if_better(at_, tau_, quality, mean_) ? 0 : waited_ + 1;
    if (session_.settle(at_, tau_, quality, waited_ >= kStill)) return true;
    if (session_.try_farkas(at_) || session_.try_ray(at_, quality) || session_.must_stop()) return true;
    if (std::isfinite(mean_) && waited_ < kPatience && mean_ > kSettledMean * first_mean_) return false;
    session_.end(Ending::no_progress);
    return true;
  }

  /* step_, dtau_, dkappa_: residuals by the share eta away, products to the target; second order from the step before. */
  void find_direction(double eta, double target, bool second_order) {
    double pair_of_tau = target - tau_ * kappa_;
    if (second_order) pair_of_tau -= dtau_ * dkappa_;
    for (int i = 0; i < form_.m; ++i) wanted_.primal[i] = eta * missing_.primal[i];
    for (int j = 0; j < form_.n; ++j) {
      wanted_.upper[j] = eta * missing_.upper[j];
      wanted_.dual[j] = eta * missing_.dual[j];
      if (form_.has_lower[j])
        wanted_.lower_pairs[j] = target - at_.x[j] * at_.z[j] - (second_order ? step_.x[j] * step_.z[j] : 0);
      if (form_.has_upper[j])
        wanted_.upper_pairs[j] = target - at_.w[j] * at_.v[j] - (second_order ? step_.w[j] * step_.v[j] : 0);
    }
    session_.newton.solve(wanted_, Newton::kFull, step_, session_.control);
    /* dkappa + c'dx - b'dy + u'dv = -eta * missing_gap and kappa dtau + tau dkappa = pair_of_tau. */
    const auto slope = [&](const Point& d) { return primal_value(form_, d) - dual_value(form_, d); };
    const double denominator = kappa_ / tau_ - slope(homogeneous_);
    dtau_ = (eta * missing_gap_ + pair_of_tau / tau_ + slope(step_)) / denominator;
    if (!std::isfinite(dtau_)) dtau_ = 0;
    add(form_, dtau_, homogeneous_, step_);
    dkappa_ = (pair_of_tau - kappa_ * dtau_) / tau_;
  }

  double longest_step() const {
    constexpr double kNoLimit = 1e10;
    const Steps steps = longest_steps(form_, at_, step_, kNoLimit);
    double length = std::min(steps.primal, steps.dual);
    if (dtau_ < 0) length = std::min(length, -tau_ / dtau_);
    if (dkappa_ < 0) length = std::min(length, -kappa_ / dkappa_);
    return std::min(1.0, length);
  }

  /* The equations are homogeneous: the larger of tau and kappa is kept near 1. */
  void rescale() {
    const double largest = std::max(tau_, kappa_);
    if (largest > 1e-4 && largest < 1e4) return;
    const double factor = std::exp2(-std::round(std::log2(largest)));
    for (std::vector<double>* v : {&at_.x, &at_.w, &at_.y, &at_.z, &at_.v}) {
      for (double& entry : *v) entry *= factor;
    }
    tau_ *= factor;
    kappa_ *= factor;
    first_mean_ *= factor * factor;
  }

  Session& session_;
  const Form& form_;
  Point at_;
  Blocks missing_, wanted_, sides_;
  Point step_, homogeneous_;
  double tau_ = 1, kappa_ = 1, dtau_ = 0, dkappa_ = 0;
  double missing_gap_ = 0, mean_ = 0, first_mean_ = 0;
  int waited_ = 0;
};

}  // namespace

void run_embedding(Session& session, bool from_estimate) {
  Embedding(session).run(from_estimate);
}

}  // namespace tovik::lp::barrier
