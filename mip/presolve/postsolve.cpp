#include "mip/presolve/postsolve.h"

#include <algorithm>
#include <cmath>

#include "lp/base/sum.h"

namespace tovik::mip {
namespace {

constexpr double kNearWhole =
    1e-4;  // a computed value of an integer column that is no farther off is rounded

}  // namespace

void Postsolve::substituted(int column, double constant, std::span<const Term> terms) {
  const std::size_t begin = terms_.size();
  keep_terms(terms);
  records_.push_back(Substituted{column, constant, begin, terms_.size()});
}

void Postsolve::merged(int kept, Box kept_box, int gone, Box gone_box, double ratio) {
  records_.push_back(Merged{kept, gone, kept_box, gone_box, ratio});
}

void Postsolve::became_slack(int column, Box box, double coefficient, Box sides,
                             std::span<const Term> terms) {
  const std::size_t begin = terms_.size();
  keep_terms(terms);
  records_.push_back(Slack{column, box, coefficient, sides, begin, terms_.size()});
}

void Postsolve::finish(std::vector<int> column_map, std::vector<int> row_map) {
  column_map_ = std::move(column_map);
  row_map_ = std::move(row_map);
}

double Postsolve::sum(std::size_t begin, std::size_t end, double constant, std::span<const double> x) const {
  lp::CompensatedSum total;
  total.add(constant);
  for (std::size_t k = begin; k < end; ++k) total.add_product(terms_[k].value, x[terms_[k].column]);
  return total.value();
}

double Postsolve::whole(int column, double value) const {
  if (is_integer_[column] == 0) return value;
  const double near = std::round(value);
  return std::fabs(value - near) <= kNearWhole ? near : value;
}

void Postsolve::undo(const Fixed& r, std::vector<double>& x) const {
  x[r.column] = r.value;
}

void Postsolve::undo(const Substituted& r, std::vector<double>& x) const {
  x[r.column] = whole(r.column, sum(r.begin, r.end, r.constant, x));
}

/* The column that left takes the value nearest to 0 that leaves the other one within its bounds. */
void Postsolve::undo(const Merged& r, std::vector<double>& x) const {
  const double z = x[r.kept];
  const auto other = [&](double gone) { return z - r.ratio * gone; };
  // The range of the one that leaves the kept one within its bounds.
  double low = (z - r.kept_box.upper) / r.ratio, high = (z - r.kept_box.lower) / r.ratio;
  if (low > high) std::swap(low, high);
  if (is_integer_[r.gone] != 0) {
    low = std::ceil(low - kNearWhole);
    high = std::floor(high + kNearWhole);
  }
  low = std::max(low, r.gone_box.lower);
  high = std::min(high, r.gone_box.upper);
  double gone = std::clamp(0.0, std::min(low, high), std::max(low, high));
  gone = std::clamp(gone, r.gone_box.lower, r.gone_box.upper);
  x[r.gone] = whole(r.gone, gone);
  x[r.kept] = whole(r.kept, other(x[r.gone]));
}

void Postsolve::undo(const Slack& r, std::vector<double>& x) const {
  const double rest = sum(r.begin, r.end, 0, x);
  double low = (r.sides.lower - rest) / r.coefficient, high = (r.sides.upper - rest) / r.coefficient;
  if (low > high) std::swap(low, high);
  low = whole(r.column, low);
  high = whole(r.column, high);
  const double nearest = std::clamp(0.0, r.box.lower, r.box.upper);
  x[r.column] = std::clamp(std::clamp(nearest, low, high), r.box.lower, r.box.upper);
}

std::vector<double> Postsolve::expand(std::span<const double> reduced) const {
  std::vector<double> x(is_integer_.size(), 0.0);
  for (std::size_t j = 0; j < column_map_.size(); ++j) x[column_map_[j]] = reduced[j];
  for (std::size_t k = records_.size(); k-- > 0;) {
    std::visit([&](const auto& record) { undo(record, x); }, records_[k]);
  }
  return x;
}

Postsolve::Box Postsolve::range(const Substituted& r, std::span<const Box> boxes) const {
  Box sum{r.constant, r.constant};
  for (std::size_t k = r.begin; k < r.end; ++k) {
    const Box& box = boxes[terms_[k].column];
    const double v = terms_[k].value;
    sum.lower += v * (v > 0 ? box.lower : box.upper);
    sum.upper += v * (v > 0 ? box.upper : box.lower);
  }
  return sum;
}

std::vector<Postsolve::Box> Postsolve::expand_bounds(std::span<const Box> reduced) const {
  std::vector<Box> boxes(is_integer_.size());
  for (std::size_t j = 0; j < column_map_.size(); ++j) boxes[column_map_[j]] = reduced[j];
  for (std::size_t k = records_.size(); k-- > 0;) {
    if (const auto* fixed = std::get_if<Fixed>(&records_[k])) {
      boxes[fixed->column] = {fixed->value, fixed->value};
    } else if (const auto* r = std::get_if<Substituted>(&records_[k])) {
      boxes[r->column] = range(*r, boxes);
    } else if (const auto* merged = std::get_if<Merged>(&records_[k])) {
      boxes[merged->kept] = merged->kept_box;
      boxes[merged->gone] = merged->gone_box;
    } else if (const auto* slack = std::get_if<Slack>(&records_[k])) {
      boxes[slack->column] = slack->box;
    }
  }
  return boxes;
}

std::vector<double> Postsolve::crush(std::span<const double> original) const {
  std::vector<double> x(original.begin(), original.end());
  for (const Record& record : records_) {
    if (const auto* r = std::get_if<Merged>(&record)) x[r->kept] += r->ratio * x[r->gone];
  }
  std::vector<double> reduced;
  reduced.reserve(column_map_.size());
  for (const int j : column_map_) reduced.push_back(x[j]);
  return reduced;
}

std::optional<LinearForm> Postsolve::crush(const LinearForm& original) const {
  constexpr double kSame = 1e-12;  // relative difference of coefficients
  std::vector<double> f(is_integer_.size(), 0.0);
  for (std::size_t k = 0; k < original.columns.size(); ++k) f[original.columns[k]] += original.values[k];
  lp::CompensatedSum constant;
  constant.add(original.constant);
  for (const Record& record : records_) {
    if (const auto* fixed = std::get_if<Fixed>(&record)) {
      constant.add_product(f[fixed->column], fixed->value);
    } else if (const auto* r = std::get_if<Substituted>(&record)) {
      const double factor = f[r->column];
      if (factor == 0) continue;
      constant.add_product(factor, r->constant);
      for (std::size_t k = r->begin; k < r->end; ++k) f[terms_[k].column] += factor * terms_[k].value;
    } else if (const auto* merged = std::get_if<Merged>(&record)) {
      const double wanted = merged->ratio * f[merged->kept];
      if (std::fabs(f[merged->gone] - wanted) > kSame * std::fabs(wanted)) return std::nullopt;
    } else if (const auto* slack = std::get_if<Slack>(&record)) {
      if (f[slack->column] != 0) return std::nullopt;
    }
  }
  LinearForm reduced;
  reduced.constant = constant.value();
  for (std::size_t j = 0; j < column_map_.size(); ++j) {
    const double v = f[column_map_[j]];
    if (v == 0) continue;
    reduced.columns.push_back(static_cast<int>(j));
    reduced.values.push_back(v);
  }
  return reduced;
}

}  // namespace tovik::mip
