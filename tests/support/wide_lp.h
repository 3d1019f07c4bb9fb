/* Random LPs with entries of 1e-6 to 1e6 and sides and bounds up to 1e12, and checks of answers in quadruple precision:
 * what is found may be wrong by the rounding of the answer to doubles, not by more. */
#pragma once

#include <random>

#include "support/random_lp.h"

namespace support {

#if defined(__SIZEOF_FLOAT128__)
__extension__ typedef __float128 Wide;
#else
using Wide = long double;
#endif

class WideLpMaker {
 public:
  explicit WideLpMaker(unsigned seed) : engine_(seed) {}

  /* feasible: by design, but for the rounding of its sides. */
  Lp draw(int largest, bool& feasible) {
    Lp lp;
    lp.columns = 1 + below(largest);
    lp.rows = 1 + below(largest);
    lp.sense = chance(50) ? TVK_MIN : TVK_MAX;
    spread_ = 6 * below(5) / 4.0;  // 0: whole numbers
    side_ = 12 * real();
    const int density = 10 + below(80);
    std::vector<double> x;
    for (int j = 0; j < lp.columns; ++j) {
      x.push_back(draw_bounds(lp));
      lp.obj.push_back(chance(20) ? 0 : entry());
      lp.beg.push_back(static_cast<int>(lp.ind.size()));
      for (int i = 0; i < lp.rows; ++i) {
        if (!chance(density)) continue;
        lp.ind.push_back(i);
        lp.val.push_back(entry());
      }
      lp.cnt.push_back(static_cast<int>(lp.ind.size()) - lp.beg.back());
    }
    lp.rhs.assign(static_cast<std::size_t>(lp.rows), 0.0);
    const std::vector<double> ax = lp.activity(x);
    feasible = chance(60);
    for (int i = 0; i < lp.rows; ++i) {
      const char sense = "LLGGEER"[below(7)];
      const double range = sense == 'R' ? std::fabs(side()) : 0;
      const double slack = chance(50) ? 0 : std::fabs(side());
      lp.senses += sense;
      lp.range.push_back(range);
      lp.rhs[i] = !feasible      ? side()
                  : sense == 'L' ? ax[i] + slack
                  : sense == 'G' ? ax[i] - slack
                  : sense == 'R' ? ax[i] - std::min(slack, range)
                                 : ax[i];
    }
    return lp;
  }

 private:
  int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  double real() { return std::uniform_real_distribution<double>(0, 1)(engine_); }
  double sign() { return chance(50) ? 1 : -1; }
  double entry() {
    if (spread_ == 0) return sign() * (1 + below(9));
    const double v = std::pow(10, spread_ * (2 * real() - 1));
    return sign() * (chance(30) && v > 1 ? std::round(v) : v);
  }
  double side() {
    if (chance(30)) return 0;
    const double v = std::pow(10, side_ * real() - (chance(30) ? 3 : 0));
    return sign() * (spread_ == 0 ? std::floor(v) : v);
  }
  /* Returns a value between them. */
  double draw_bounds(Lp& lp) {
    double low = 0, high = TVK_INFBOUND;
    switch (below(8)) {
      case 0:
        low = -TVK_INFBOUND;
        break;
      case 1:
        low = high = side();
        break;
      case 2:
        low = -TVK_INFBOUND;
        high = side();
        break;
      case 3:
        low = side();
        high = low + std::fabs(side());
        break;
      case 4:
        low = side();
        break;
      case 5:
        high = std::fabs(side());
        break;
      default:
        break;
    }
    lp.lb.push_back(low);
    lp.ub.push_back(high);
    if (low > -TVK_INFBOUND) return chance(50) ? low : std::min(high, low + std::fabs(side()));
    return high < TVK_INFBOUND ? high : side();
  }

  std::mt19937 engine_;
  double spread_ = 0, side_ = 0;
};

/* The user's sums in quadruple precision, each with the rounding that the doubles in it may carry. */
class WideSums {
 public:
  explicit WideSums(std::size_t size) : sum_(size, 0), terms_(size, 0) {}
  void add(std::size_t k, double a, double b) {
    const Wide term = static_cast<Wide>(a) * static_cast<Wide>(b);
    sum_[k] += term;
    terms_[k] += term < 0 ? -term : term;
  }
  double value(std::size_t k) const { return static_cast<double>(sum_[k]); }
  double rounding(std::size_t k) const { return 0x1p-50 * static_cast<double>(terms_[k]); }

 private:
  std::vector<Wide> sum_, terms_;
};

inline void check_wide_point(const Lp& lp, const std::vector<double>& x, Faults& c) {
  WideSums rows(lp.rhs.size());
  for (int j = 0; j < lp.columns; ++j) {
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k)
      rows.add(static_cast<std::size_t>(lp.ind[k]), lp.val[k], x[j]);
    const double off = std::max(lp.low(j) - x[j], x[j] - lp.high(j));
    c.check(off <= kAllowed + 0x1p-50 * std::fabs(x[j]), "column bound violated", j, off);
  }
  for (std::size_t i = 0; i < lp.rhs.size(); ++i) {
    const double ax = rows.value(i);
    const double off = std::max(lp.row_low(static_cast<int>(i)) - ax, ax - lp.row_high(static_cast<int>(i)));
    c.check(off <= kAllowed + rows.rounding(i), "row violated", static_cast<int>(i), off);
  }
}

/* An optimum: feasible, reduced costs that are what they say, of the right sign where the point stands. */
inline void check_wide_optimum(const Lp& lp, const Outcome& o, Faults& c) {
  check_wide_point(lp, o.x, c);
  WideSums columns(lp.obj.size());
  for (std::size_t j = 0; j < lp.obj.size(); ++j) {
    columns.add(j, lp.obj[j], 1);
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k)
      columns.add(j, -lp.val[k], o.pi[static_cast<std::size_t>(lp.ind[k])]);
    const double off = std::fabs(columns.value(j) - o.dj[j]);
    c.check(off <= kAllowed + columns.rounding(j), "dj is not obj-A'pi", static_cast<int>(j), off);
    const double d = lp.sense * o.dj[j];
    const int k = static_cast<int>(j);
    c.check(d <= kAllowed || lp.low(k) > -kInfinite, "reduced cost asks for less", k, d);
    c.check(d >= -kAllowed || lp.high(k) < kInfinite, "reduced cost asks for more", k, d);
  }
}

inline void check_wide_ray(const Lp& lp, const std::vector<double>& ray, Faults& c) {
  WideSums rows(lp.rhs.size()), slope(1);
  for (int j = 0; j < lp.columns; ++j) {
    slope.add(0, lp.sense * lp.obj[j], ray[j]);
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k)
      rows.add(static_cast<std::size_t>(lp.ind[k]), lp.val[k], ray[j]);
    c.check(ray[j] <= 0 || std::isinf(lp.high(j)), "ray leaves upper bound", j, ray[j]);
    c.check(ray[j] >= 0 || std::isinf(lp.low(j)), "ray leaves lower bound", j, ray[j]);
  }
  c.check(slope.value(0) < slope.rounding(0), "ray does not improve", 0, slope.value(0));
  constexpr double kShare = 1e6;  // of rounding, what a ray may leave of a row
  for (std::size_t i = 0; i < lp.rhs.size(); ++i) {
    const double off = kShare * rows.rounding(i) + 1e-15;
    const int k = static_cast<int>(i);
    c.check(rows.value(i) <= off || std::isinf(lp.row_high(k)), "ray leaves row upward", k, rows.value(i));
    c.check(rows.value(i) >= -off || std::isinf(lp.row_low(k)), "ray leaves row downward", k, rows.value(i));
  }
}

/* The multipliers, but for their rounding, contradict the box. */
inline void check_wide_proof(const Lp& lp, const std::vector<double>& y, Faults& c) {
  WideSums gap(1), columns(lp.obj.size());
  for (std::size_t i = 0; i < lp.rhs.size(); ++i) {
    if (y[i] == 0) continue;
    const double bound = y[i] > 0 ? lp.row_low(static_cast<int>(i)) : lp.row_high(static_cast<int>(i));
    c.check(!std::isinf(bound), "multiplier of wrong sign", static_cast<int>(i), y[i]);
    if (!std::isinf(bound)) gap.add(0, y[i], bound);
  }
  for (std::size_t j = 0; j < lp.obj.size(); ++j) {
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k)
      columns.add(j, lp.val[k], y[static_cast<std::size_t>(lp.ind[k])]);
    const double z = columns.value(j);
    const double bound = z > 0 ? lp.high(static_cast<int>(j)) : lp.low(static_cast<int>(j));
    constexpr double kShare = 1e7;    // of rounding
    constexpr double kDigit = 1e-17;  // of multipliers of size 1
    double size = 0;
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k) size += std::fabs(lp.val[k]);
    if (!std::isinf(bound)) {
      gap.add(0, -z, bound);
      gap.add(0, columns.rounding(j), bound);
      gap.add(0, -columns.rounding(j), bound);
    } else {
      c.check(std::fabs(z) <= kShare * columns.rounding(j) + kDigit * size, "combination not bounded",
              static_cast<int>(j), z);
    }
  }
  c.check(gap.value(0) > -gap.rounding(0), "no contradiction", 0, gap.value(0));
}

/* The status with its proof; empty when all is well. */
inline std::string check_wide_answer(ConstEnvHandle env, ConstProbHandle prob, const Lp& lp,
                                     const Outcome& o) {
  if (o.code != 0) return "code " + std::to_string(o.code) + '\n';
  Faults c;
  if (o.status == TVK_STATUS_OPTIMAL) {
    check_wide_optimum(lp, o, c);
  } else if (o.status == TVK_STATUS_UNBOUNDED) {
    std::vector<double> ray(lp.obj.size());
    if (TVKgetray(env, prob, ray.data()) != 0) return "no ray\n";
    check_wide_point(lp, o.x, c);
    check_wide_ray(lp, ray, c);
  } else if (o.status == TVK_STATUS_INFEASIBLE) {
    std::vector<double> y(lp.rhs.size());
    if (TVKgetfarkas(env, prob, y.data(), nullptr) != 0) return "no proof\n";
    check_wide_proof(lp, y, c);
  } else {
    return "status " + std::to_string(o.status) + '\n';
  }
  return c.text();
}

}  // namespace support
