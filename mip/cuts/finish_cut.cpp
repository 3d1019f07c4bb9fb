// What every cut passes before it is handed out.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "lp/base/sum.h"
#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr double kSmallShare = 1e-5;  // coefficients below this share of the largest are dropped
constexpr double kWidest = 1e5;       // largest by smallest coefficient of what is left
constexpr double kLargestSide = 1e9;  // by the largest coefficient
constexpr double kLeastEfficacy = 1e-4;
constexpr double kLeastViolation = 1e-5;
constexpr double kRounding = 1e-11;  // of the terms of a side
constexpr double kWhole = 1e-9;      // from a whole number, relative
constexpr double kSideSlack = 1e-6;  // by which a whole side may have come out too small
constexpr std::int64_t kLargestDenominator = 1000, kLargestWhole = 100000;

/* The cut in the making: terms, side, and the magnitudes that went into the side. */
class Finisher {
 public:
  Finisher(const Worker& worker, Cut& cut) : worker_(worker), cut_(cut) {}

  bool drop_small_terms();
  bool make_whole();
  void tighten();
  void set_side();

 private:
  bool is_integer(std::size_t k) const { return worker_.global.problem.is_integer[cut_.columns[k]] != 0; }
  double lower(std::size_t k) const { return worker_.domain.global_lower(cut_.columns[k]); }
  double upper(std::size_t k) const { return worker_.domain.global_upper(cut_.columns[k]); }
  void move_side(double a, double b) {
    side_.add_product(a, b);
    terms_ = std::max(terms_, std::fabs(a * b));
  }
  double common_scale() const;
  void divide_by_common_divisor();

  const Worker& worker_;
  Cut& cut_;
  lp::CompensatedSum side_;
  double terms_ = 0;
};

/* Scales by a power of two, which is exact. A column with a small coefficient takes the bound at which it weighs least. */
bool Finisher::drop_small_terms() {
  double largest = 0;
  for (const double v : cut_.values) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0) || std::isinf(largest)) return false;
  const double scale = std::exp2(-std::floor(std::log2(largest)));
  move_side(cut_.side, scale);
  std::size_t kept = 0;
  for (std::size_t k = 0; k < cut_.columns.size(); ++k) {
    const double a = cut_.values[k] * scale;
    if (std::fabs(a) < kSmallShare) {
      const double at = a > 0 ? lower(k) : upper(k);
      if (std::isinf(at)) return false;
      move_side(-a, at);
      continue;
    }
    cut_.columns[kept] = cut_.columns[k];
    cut_.values[kept++] = a;
  }
  cut_.columns.resize(kept);
  cut_.values.resize(kept);
  return kept > 0;
}

/* The least denominator that makes v whole, by its continued fraction; 0: none is small enough. */
std::int64_t denominator_of(double v) {
  double rest = std::fabs(v);
  const double tolerance = kWhole * std::max(1.0, rest);
  std::int64_t before = 0, now = 1;
  for (int step = 0; step < 20; ++step) {
    const double product = std::fabs(v) * static_cast<double>(now);
    if (std::fabs(product - std::round(product)) <= tolerance * static_cast<double>(now)) return now;
    const double part = rest - std::floor(rest);
    if (part < 1e-12) return 0;
    rest = 1 / part;
    const double next = std::floor(rest) * static_cast<double>(now) + static_cast<double>(before);
    if (next > static_cast<double>(kLargestDenominator)) return 0;
    before = now;
    now = static_cast<std::int64_t>(next);
  }
  return 0;
}

/* A factor that makes all coefficients whole but for rounding; 0: none. */
double Finisher::common_scale() const {
  const double base =
      std::fabs(*std::min_element(cut_.values.begin(), cut_.values.end(),
                                  [](double a, double b) { return std::fabs(a) < std::fabs(b); }));
  std::int64_t scale = 1;
  for (const double v : cut_.values) {
    const std::int64_t d = denominator_of(v / base * static_cast<double>(scale));
    if (d == 0 || d * scale > kLargestDenominator) return 0;
    scale *= d;
    if (std::fabs(v) / base * static_cast<double>(scale) > static_cast<double>(kLargestWhole)) return 0;
  }
  return static_cast<double>(scale) / base;
}

/* Coefficients on integer columns become whole numbers without common divisor, and the side with them. What a rounded
 * coefficient adds at most goes to the side. False, and nothing has happened, where there is no such scale. */
bool Finisher::make_whole() {
  for (std::size_t k = 0; k < cut_.columns.size(); ++k) {
    if (!is_integer(k)) return false;
  }
  const double scale = common_scale();
  if (scale == 0) return false;
  lp::CompensatedSum side;
  side.add_product(side_.value(), scale);
  std::vector<double> whole(cut_.values.size());
  for (std::size_t k = 0; k < whole.size(); ++k) {
    const double exact = cut_.values[k] * scale;
    whole[k] = std::round(exact);
    const double more = whole[k] - exact;
    if (more == 0) continue;
    const double at = more > 0 ? upper(k) : lower(k);
    if (std::isinf(at)) return false;
    side.add_product(more, at);
  }
  cut_.values = whole;
  side_ = side;
  divide_by_common_divisor();
  return true;
}

void Finisher::divide_by_common_divisor() {
  std::int64_t divisor = 0;
  for (const double v : cut_.values) divisor = std::gcd(divisor, static_cast<std::int64_t>(v));
  const auto d = static_cast<double>(divisor);
  for (double& v : cut_.values) v /= d;
  const double side = std::floor(side_.value() / d + kSideSlack);
  side_ = {};
  side_.add(side);
}

/* Where the cut can be missed by d at most, a coefficient beyond d is worth d only: the same integer points, less in between. */
void Finisher::tighten() {
  lp::CompensatedSum most;
  for (std::size_t k = 0; k < cut_.columns.size(); ++k) {
    const double at = cut_.values[k] > 0 ? upper(k) : lower(k);
    if (std::isinf(at)) return;
    most.add_product(cut_.values[k], at);
  }
  const double room = most.value() - side_.value();
  if (!(room > kSideSlack)) return;
  bool changed = false;
  for (std::size_t k = 0; k < cut_.columns.size(); ++k) {
    const double a = cut_.values[k];
    if (!is_integer(k) || std::fabs(a) <= room * (1 + kWhole)) continue;
    const double to = a > 0 ? room : -room;
    move_side(to - a, a > 0 ? upper(k) : lower(k));
    cut_.values[k] = to;
    changed = true;
  }
  if (changed && cut_.is_integral) divide_by_common_divisor();
}

void Finisher::set_side() {
  cut_.side = side_.value();
  if (!cut_.is_integral) cut_.side += kRounding * std::max(1.0, terms_);
}

}  // namespace

bool finish_cut(const Worker& worker, std::span<const double> x, Cut* cut) {
  Finisher finisher(worker, *cut);
  if (!finisher.drop_small_terms()) return false;
  const auto longest = static_cast<std::size_t>(1000 + worker.global.problem.num_columns() / 10);
  if (cut->columns.size() > longest) return false;
  cut->is_integral = finisher.make_whole();
  finisher.tighten();
  finisher.set_side();
  double largest = 0, smallest = kInf, activity = 0, norm = 0;
  for (std::size_t k = 0; k < cut->columns.size(); ++k) {
    const double a = cut->values[k];
    largest = std::max(largest, std::fabs(a));
    smallest = std::min(smallest, std::fabs(a));
    activity += a * x[cut->columns[k]];
    norm += a * a;
  }
  if (largest > kWidest * smallest || std::fabs(cut->side) > kLargestSide * largest) return false;
  const double violation = activity - cut->side;
  return violation > kLeastViolation && violation > kLeastEfficacy * std::sqrt(norm);
}

}  // namespace tovik::mip
