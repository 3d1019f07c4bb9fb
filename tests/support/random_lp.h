/* Small random LPs of every shape, and the proofs that an answer must carry: arithmetic on the model
 * alone. */
#pragma once

#include <tovik.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace support {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct Lp {
  int columns = 0, rows = 0, sense = TVK_MIN;
  double offset = 0;
  bool badly_scaled = false;
  std::vector<double> obj, rhs, range, lb, ub, val;
  std::string senses;
  std::vector<int> beg, cnt, ind;

  double low(int j) const { return lb[j] <= -TVK_INFBOUND ? -kInfinite : lb[j]; }
  double high(int j) const { return ub[j] >= TVK_INFBOUND ? kInfinite : ub[j]; }
  double row_low(int i) const {
    return senses[i] == 'L' ? -kInfinite : senses[i] == 'R' ? std::min(rhs[i], rhs[i] + range[i]) : rhs[i];
  }
  double row_high(int i) const {
    return senses[i] == 'G' ? kInfinite : senses[i] == 'R' ? std::max(rhs[i], rhs[i] + range[i]) : rhs[i];
  }
  /* A x, and the sum of the absolute values of its terms: the size of its rounding error. */
  std::vector<double> activity(const std::vector<double>& x, std::vector<double>* size = nullptr) const {
    std::vector<double> sum(rhs.size(), 0.0);
    if (size != nullptr) size->assign(rhs.size(), 0.0);
    for (int j = 0; j < columns; ++j) {
      for (int k = beg[j]; k < beg[j] + cnt[j]; ++k) {
        sum[ind[k]] += val[k] * x[j];
        if (size != nullptr) (*size)[ind[k]] += std::fabs(val[k] * x[j]);
      }
    }
    return sum;
  }
  std::vector<double> transposed(const std::vector<double>& y, std::vector<double>* size = nullptr) const {
    std::vector<double> sum(obj.size(), 0.0);
    if (size != nullptr) size->assign(obj.size(), 0.0);
    for (int j = 0; j < columns; ++j) {
      for (int k = beg[j]; k < beg[j] + cnt[j]; ++k) {
        sum[j] += val[k] * y[ind[k]];
        if (size != nullptr) (*size)[j] += std::fabs(val[k] * y[ind[k]]);
      }
    }
    return sum;
  }
  int copy(ConstEnvHandle env, ProbHandle lp) const {
    static const double none = 0;
    static const int nothing = 0;
    const auto real = [](const std::vector<double>& v) { return v.empty() ? &none : v.data(); };
    const auto whole = [](const std::vector<int>& v) { return v.empty() ? &nothing : v.data(); };
    const int code =
        TVKcopylp(env, lp, columns, rows, sense, real(obj), real(rhs), senses.c_str(), whole(beg), whole(cnt),
                  whole(ind), real(val), real(lb), real(ub), real(range));
    return code != 0 ? code : TVKchgobjoffset(env, lp, offset);
  }
};

/* The model as the problem holds it. */
inline Lp read_back(ConstEnvHandle env, ConstProbHandle prob) {
  Lp lp;
  lp.columns = TVKgetnumcols(env, prob);
  lp.rows = TVKgetnumrows(env, prob);
  lp.sense = TVKgetobjsen(env, prob);
  TVKgetobjoffset(env, prob, &lp.offset);
  for (auto* v : {&lp.obj, &lp.lb, &lp.ub}) v->resize(static_cast<std::size_t>(lp.columns));
  for (auto* v : {&lp.rhs, &lp.range}) v->resize(static_cast<std::size_t>(lp.rows));
  lp.senses.resize(static_cast<std::size_t>(lp.rows));
  TVKgetobj(env, prob, lp.obj.data(), 0, lp.columns - 1);
  TVKgetlb(env, prob, lp.lb.data(), 0, lp.columns - 1);
  TVKgetub(env, prob, lp.ub.data(), 0, lp.columns - 1);
  TVKgetrhs(env, prob, lp.rhs.data(), 0, lp.rows - 1);
  TVKgetrngval(env, prob, lp.range.data(), 0, lp.rows - 1);
  TVKgetsense(env, prob, lp.senses.data(), 0, lp.rows - 1);
  const int entries = TVKgetnumnz(env, prob);
  lp.ind.resize(static_cast<std::size_t>(entries));
  lp.val.resize(lp.ind.size());
  lp.beg.resize(lp.obj.size());
  int count = 0, surplus = 0;
  if (lp.columns > 0 && entries > 0)
    TVKgetcols(env, prob, &count, lp.beg.data(), lp.ind.data(), lp.val.data(), entries, &surplus, 0,
               lp.columns - 1);
  for (int j = 0; j < lp.columns; ++j)
    lp.cnt.push_back((j + 1 < lp.columns ? lp.beg[j + 1] : entries) - lp.beg[j]);
  return lp;
}

/* Draws models: any mixture of row senses and bound types, small whole numbers (so that ties and degenerate
 * vertices abound), empty rows and columns, feasible by design or not. */
class LpMaker {
 public:
  explicit LpMaker(unsigned seed) : engine_(seed) {}
  int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  double whole(int size) { return below(2 * size + 1) - size; }

  void bounds(double* low, double* high) {
    const double a = whole(6), width = 1 + below(6);
    switch (below(8)) {
      case 0:
        *low = -TVK_INFBOUND, *high = TVK_INFBOUND;
        break;
      case 1:
        *low = *high = a;
        break;
      case 2:
        *low = -TVK_INFBOUND, *high = a;
        break;
      case 3:
        *low = -TVK_INFBOUND, *high = -1 - below(6);
        break;
      case 4:
        *low = a, *high = a + width;
        break;
      case 5:
        *low = a, *high = TVK_INFBOUND;
        break;
      default:
        *low = 0, *high = chance(30) ? width : TVK_INFBOUND;
    }
  }
  char row_sense() { return "LLGGERR"[below(7)]; }
  double range_value() { return chance(15) ? 0 : whole(6); }

  Lp draw(int largest) {
    Lp lp;
    lp.columns = below(largest + 1);
    lp.rows = below(largest + 1);
    lp.sense = chance(50) ? TVK_MIN : TVK_MAX;
    lp.offset = chance(30) ? whole(20) : 0;
    const int density = 15 + below(85);
    const int cost_size = chance(15) ? 0 : 1 + below(9);
    std::vector<double> x;
    for (int j = 0; j < lp.columns; ++j) {
      double low, high;
      bounds(&low, &high);
      lp.lb.push_back(low);
      lp.ub.push_back(high);
      lp.obj.push_back(whole(cost_size));
      x.push_back(low > -1e19 ? low + (high > low && chance(40) ? 1 : 0) : high < 1e19 ? high : whole(3));
      lp.beg.push_back(static_cast<int>(lp.ind.size()));
      for (int i = 0; i < lp.rows; ++i) {
        const double v = chance(density) ? whole(chance(80) ? 2 : 9) : 0;
        if (v == 0) continue;
        lp.ind.push_back(i);
        lp.val.push_back(v);
      }
      lp.cnt.push_back(static_cast<int>(lp.ind.size()) - lp.beg.back());
    }
    lp.rhs.assign(static_cast<std::size_t>(lp.rows), 0.0);
    const std::vector<double> ax = lp.activity(x);
    const bool feasible = chance(60);
    for (int i = 0; i < lp.rows; ++i) {
      const char sense = row_sense();
      const double range = sense == 'R' ? range_value() : 0;
      const double slack = chance(50) ? 0 : below(4);
      lp.senses += sense;
      lp.range.push_back(range);
      lp.rhs[i] = feasible ? ax[i] + (sense == 'L'   ? slack
                                      : sense == 'G' ? -slack
                                      : sense == 'R'
                                          ? (range >= 0 ? -std::min(slack, range) : std::min(slack, -range))
                                          : 0)
                           : whole(8);
    }
    if (chance(15)) scale(lp);
    if (lp.columns > 0 && chance(2)) {
      const int j = below(lp.columns);
      lp.lb[j] = std::fabs(lp.ub[j]) < 1e19 ? lp.ub[j] + 1 : 5;
      lp.ub[j] = lp.lb[j] - 1;
    }
    return lp;
  }

 private:
  /* Rows and columns by powers of two from 2^-20 to 2^20. */
  void scale(Lp& lp) {
    lp.badly_scaled = true;
    std::vector<double> r(lp.rhs.size());
    for (std::size_t i = 0; i < r.size(); ++i) {
      r[i] = std::ldexp(1.0, chance(50) ? 0 : below(41) - 20);
      lp.rhs[i] *= r[i];
      lp.range[i] *= r[i];
    }
    for (int j = 0; j < lp.columns; ++j) {
      const double c = std::ldexp(1.0, chance(50) ? 0 : below(41) - 20);
      for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k) lp.val[k] *= c * r[lp.ind[k]];
      lp.obj[j] *= c;
      if (std::fabs(lp.lb[j]) < 1e19) lp.lb[j] /= c;
      if (std::fabs(lp.ub[j]) < 1e19) lp.ub[j] /= c;
    }
  }
  std::mt19937 engine_;
};

/* What a call left in the problem. */
struct Outcome {
  int code = -1, status = 0, iterations = 0;
  double objective = 0;
  std::vector<double> x, pi, slack, dj;
};

inline Outcome outcome_of(ConstEnvHandle env, ConstProbHandle prob, const Lp& lp, int code) {
  Outcome o;
  o.code = code;
  o.status = TVKgetstat(env, prob);
  o.iterations = TVKgetitcnt(env, prob);
  for (auto* v : {&o.x, &o.dj}) v->resize(static_cast<std::size_t>(lp.columns));
  for (auto* v : {&o.pi, &o.slack}) v->resize(static_cast<std::size_t>(lp.rows));
  if (code == 0)
    o.code =
        TVKsolution(env, prob, nullptr, &o.objective, o.x.data(), o.pi.data(), o.slack.data(), o.dj.data());
  return o;
}

/* Collects what is wrong. */
class Faults {
 public:
  void check(bool holds, const char* what, int index, double value) {
    if (!holds) text_ << what << " [" << index << "] " << value << '\n';
  }
  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
};

constexpr double kAllowed = 1.001e-6;  // the tolerances on bounds and reduced costs
constexpr double kRounding = 1e-11;    // relative to the size of a sum's terms

inline void check_primal(const Lp& lp, const std::vector<double>& x, Faults& c) {
  std::vector<double> size;
  const std::vector<double> ax = lp.activity(x, &size);
  for (int j = 0; j < lp.columns; ++j) {
    const double off = std::max(lp.low(j) - x[j], x[j] - lp.high(j));
    c.check(off <= kAllowed, "column bound violated", j, off);
  }
  for (int i = 0; i < lp.rows; ++i) {
    const double off = std::max(lp.row_low(i) - ax[i], ax[i] - lp.row_high(i));
    c.check(off <= kAllowed + kRounding * size[i], "row violated", i, off);
  }
}

/* Identities, feasibility of both kinds, and equal objectives: together they prove the optimum. */
inline std::string check_optimal(const Lp& lp, const Outcome& o) {
  Faults c;
  check_primal(lp, o.x, c);
  std::vector<double> size, dual_size;
  const std::vector<double> ax = lp.activity(o.x, &size), ay = lp.transposed(o.pi, &dual_size);
  double value = lp.offset, dual_value = lp.offset, error = 1, value_size = 1;
  const auto bound_part = [&](const char* what, int k, double d, double at, double low, double high) {
    const double nearest = d > 0 ? low : high;
    error += kAllowed * std::fabs(at) + std::fabs(d);
    if (std::isinf(nearest)) {
      c.check(std::fabs(d) <= kAllowed, what, k, lp.sense * d);
      dual_value += lp.sense * d * at;
    } else {
      dual_value += lp.sense * d * nearest;
      value_size += std::fabs(d * nearest);
    }
  };
  for (int j = 0; j < lp.columns; ++j) {
    value += lp.obj[j] * o.x[j];
    value_size += std::fabs(lp.obj[j] * o.x[j]);
    const double residual = lp.obj[j] - ay[j] - o.dj[j];
    c.check(std::fabs(residual) <= kRounding * (1 + std::fabs(lp.obj[j]) + dual_size[j]),
            "dj is not obj-A'pi", j, residual);
    bound_part("reduced cost of wrong sign", j, lp.sense * o.dj[j], o.x[j], lp.low(j), lp.high(j));
  }
  for (int i = 0; i < lp.rows; ++i) {
    const double residual = lp.rhs[i] - ax[i] - o.slack[i];
    c.check(std::fabs(residual) <= kRounding * (1 + std::fabs(lp.rhs[i]) + size[i]), "slack is not rhs-ax", i,
            residual);
    bound_part("dual of wrong sign", i, lp.sense * o.pi[i], ax[i], lp.row_low(i), lp.row_high(i));
  }
  const double rounding = 1e-9 * value_size;
  c.check(std::fabs(value - o.objective) <= rounding, "objective is not obj'x", 0, value - o.objective);
  c.check(std::fabs(value - dual_value) <= rounding + 2e-6 * error, "duality gap", 0, value - dual_value);
  return c.text();
}

/* y'(ax) over the box must stay below what the rows ask of it; y = 0 when a column's bounds cross. */
inline std::string check_farkas(const Lp& lp, const std::vector<double>& y, double proof) {
  Faults c;
  c.check(proof > 0, "no gap told", 0, proof);
  const bool zero = std::all_of(y.begin(), y.end(), [](double v) { return v == 0; });
  if (zero) {
    bool crossed = false;
    for (int j = 0; j < lp.columns; ++j) crossed = crossed || lp.lb[j] > lp.ub[j];
    c.check(crossed, "zero multipliers and no crossed bounds", 0, 0);
    return c.text();
  }
  std::vector<double> size;
  const std::vector<double> z = lp.transposed(y, &size);
  double demand = 0, reach = 0, magnitude = 1, largest = 0;
  for (int i = 0; i < lp.rows; ++i) {
    largest = std::max(largest, std::fabs(y[i]));
    if (y[i] == 0) continue;
    const double bound = y[i] > 0 ? lp.row_low(i) : lp.row_high(i);
    c.check(!std::isinf(bound), "multiplier of wrong sign", i, y[i]);
    demand += y[i] * bound;
    magnitude = std::max(magnitude, std::fabs(y[i] * bound));
  }
  for (int j = 0; j < lp.columns; ++j) {
    if (z[j] == 0) continue;
    const double bound = z[j] > 0 ? lp.high(j) : lp.low(j);
    if (std::isinf(bound)) {
      c.check(std::fabs(z[j]) <= 1e-9 * std::max(1.0, size[j]), "combination not bounded", j, z[j]);
    } else {
      reach += z[j] * bound;
      magnitude = std::max(magnitude, std::fabs(z[j] * bound));
    }
  }
  c.check(std::fabs(largest - 1) < 1e-12, "largest multiplier is not 1", 0, largest);
  c.check(demand - reach > 0, "no contradiction", 0, demand - reach);
  c.check(std::fabs(demand - reach - proof) <= 1e-9 * magnitude, "gap told wrongly", 0,
          demand - reach - proof);
  return c.text();
}

inline std::string check_ray(const Lp& lp, const std::vector<double>& ray) {
  Faults c;
  double slope = 0, largest = 0;
  std::vector<double> size;
  const std::vector<double> ar = lp.activity(ray, &size);
  for (int j = 0; j < lp.columns; ++j) {
    largest = std::max(largest, std::fabs(ray[j]));
    slope += lp.sense * lp.obj[j] * ray[j];
    c.check(ray[j] <= 0 || std::isinf(lp.high(j)), "ray leaves upper bound", j, ray[j]);
    c.check(ray[j] >= 0 || std::isinf(lp.low(j)), "ray leaves lower bound", j, ray[j]);
  }
  for (int i = 0; i < lp.rows; ++i) {
    c.check(ar[i] <= 1.1e-9 * size[i] || std::isinf(lp.row_high(i)), "ray leaves row upward", i, ar[i]);
    c.check(ar[i] >= -1.1e-9 * size[i] || std::isinf(lp.row_low(i)), "ray leaves row downward", i, ar[i]);
  }
  c.check(std::fabs(largest - 1) < 1e-12, "largest entry is not 1", 0, largest);
  c.check(slope < 0, "ray does not improve", 0, slope);
  return c.text();
}

/* The status with its proof; empty when all is well. */
inline std::string check_answer(ConstEnvHandle env, ConstProbHandle prob, const Lp& lp, const Outcome& o) {
  if (o.code != 0) return "code " + std::to_string(o.code) + '\n';
  switch (o.status) {
    case TVK_STATUS_OPTIMAL:
      return check_optimal(lp, o);
    case TVK_STATUS_UNBOUNDED: {
      Faults c;
      check_primal(lp, o.x, c);
      std::vector<double> ray(lp.obj.size());
      if (const int code = TVKgetray(env, prob, ray.data()); code != 0) return "no ray\n";
      return c.text() + check_ray(lp, ray);
    }
    case TVK_STATUS_INFEASIBLE: {
      std::vector<double> y(lp.rhs.size() + 1);
      double proof = 0;
      if (const int code = TVKgetfarkas(env, prob, y.data(), &proof); code != 0) return "no proof\n";
      y.pop_back();
      return check_farkas(lp, y, proof);
    }
    default:
      return "status " + std::to_string(o.status) + '\n';
  }
}

inline std::string describe(const Lp& lp) {
  std::ostringstream s;
  s.precision(17);
  s << (lp.sense == TVK_MIN ? "min " : "max ") << lp.offset << '\n';
  for (int j = 0; j < lp.columns; ++j) {
    s << "  " << lp.obj[j] << " [" << lp.lb[j] << ',' << lp.ub[j] << ']';
    for (int k = lp.beg[j]; k < lp.beg[j] + lp.cnt[j]; ++k) s << ' ' << lp.ind[k] << ':' << lp.val[k];
    s << '\n';
  }
  for (int i = 0; i < lp.rows; ++i)
    s << "  " << lp.senses[i] << ' ' << lp.rhs[i] << ' ' << lp.range[i] << '\n';
  return s.str();
}

}  // namespace support
