#include "lp/crossover/complementary_start.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::crossover {
namespace {

constexpr double kLeast = 1e-4;    // of the units: all values of a kind may be noise
constexpr double kAtBound = 1e-9;  // relative: such a value is dropped whatever its multiplier

/* Mean of what is handed in: of the values, or of their logarithms. */
class Average {
 public:
  void add(double v) {
    sum_ += v;
    ++count_;
  }
  bool has_any() const { return count_ > 0; }
  double value() const { return count_ > 0 ? sum_ / count_ : 0; }

 private:
  double sum_ = 0;
  int count_ = 0;
};

double distance_to_bound(double x, double lower, double upper) {
  return std::max(0.0, std::min(x - lower, upper - x));
}

/* What counts as 1 of a distance, of a multiplier. */
struct Units {
  double value, multiplier;
};

/* The usual size of distances from bounds where they are large, of multipliers where those are: first by means of all,
 * then by geometric means of the two kinds that these tell apart. Where there is only noise of one kind it is not taken
 * for more. */
Units choose_units(const simplex::Core& core, const ComplementaryStart& start) {
  const auto for_bounded = [&](auto f) {
    for (int j = 0; j < core.total(); ++j) {
      const double lower = core.model.lower(j), upper = core.model.upper(j);
      if (lower != upper && !core.model.is_free(j))
        f(distance_to_bound(start.x[j], lower, upper), std::fabs(start.z[j]));
    }
  };
  Average distances, multipliers;
  for_bounded([&](double distance, double z) {
    distances.add(distance);
    multipliers.add(z);
  });
  const Units rough{std::max(kLeast, distances.value()), std::max(kLeast, multipliers.value())};
  Average large_distances, large_multipliers;
  for_bounded([&](double distance, double z) {
    if (z * rough.value < distance * rough.multiplier) {
      large_distances.add(std::log(distance));
    } else if (z > 0) {
      large_multipliers.add(std::log(z));
    }
  });
  const auto unit = [](const Average& logarithms, double otherwise) {
    return logarithms.has_any() ? std::max(kLeast, std::exp(logarithms.value())) : otherwise;
  };
  return {unit(large_distances, rough.value), unit(large_multipliers, rough.multiplier)};
}

}  // namespace

ComplementaryStart make_complementary(const simplex::Core& core, const Point& point) {
  const int n = core.n(), total = core.total();
  ComplementaryStart start;
  start.standing.resize(static_cast<std::size_t>(total), Standing::between);
  start.distance.resize(static_cast<std::size_t>(total), 0.0);
  start.x.assign(static_cast<std::size_t>(total), 0.0);
  start.z.resize(static_cast<std::size_t>(total));
  const Matrix& a = core.matrix();
  for (int j = 0; j < n; ++j) {
    start.x[j] = point.x[j];
    start.z[j] = core.model.cost(j) - core.model.column_dot(j, point.y);
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) start.x[n + a.index[k]] -= a.value[k] * point.x[j];
  }
  for (int i = 0; i < core.m(); ++i) start.z[n + i] = -point.y[i];
  const Units units = choose_units(core, start);
  for (int j = 0; j < total; ++j) {
    const double lower = core.model.lower(j), upper = core.model.upper(j);
    double& x = start.x[j];
    double& z = start.z[j];
    if (lower == upper) {
      x = lower;
      start.standing[j] = Standing::fixed;
      continue;
    }
    if (core.model.is_free(j)) {
      z = 0;
      start.distance[j] = kInf;
      continue;
    }
    x = std::clamp(x, lower, upper);
    const double distance = distance_to_bound(x, lower, upper);
    const bool at_lower = x - lower <= upper - x;
    const double pressing = at_lower ? z : -z;  // towards the nearer bound
    if (distance > kAtBound * (1 + std::fabs(x)) && pressing * units.value < distance * units.multiplier) {
      z = 0;
      start.distance[j] = distance / units.value;
      continue;
    }
    if (distance <= kAtBound * (1 + std::fabs(x))) x = at_lower ? lower : upper;
    z = at_lower ? std::max(0.0, z) : std::min(0.0, z);
    start.standing[j] = at_lower ? Standing::lower : Standing::upper;
  }
  return start;
}

}  // namespace tovik::lp::crossover
