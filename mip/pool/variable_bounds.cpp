#include "mip/pool/variable_bounds.h"

#include <algorithm>
#include <cmath>

#include "lp/base/sum.h"

namespace tovik::mip {
namespace {

constexpr std::size_t kPerSide = 6;
constexpr std::size_t kPairs = 400;    // of a row
constexpr double kLargestSlope = 1e6;  // beyond, a bound says nothing that rounding leaves
constexpr double kLeastGain = 1e-4;    // of the range that a bound takes away, relative to the values

struct Entry {
  int column;
  double value;
};

std::vector<std::vector<Entry>> rows_of(const Problem& problem) {
  const lp::Matrix& m = problem.lp.matrix;
  std::vector<std::vector<Entry>> rows(static_cast<std::size_t>(m.rows));
  for (int j = 0; j < m.columns; ++j) {
    for (int k = m.start[j]; k < m.start[j + 1]; ++k) rows[m.index[k]].push_back({j, m.value[k]});
  }
  return rows;
}

bool is_free_binary(const Problem& problem, int j) {
  return problem.is_integer[j] != 0 && problem.lp.lower[j] == 0 && problem.lp.upper[j] == 1;
}

/* Of sign * (a x) <= side. */
class RowReader {
 public:
  RowReader(const Problem& problem, const std::vector<Entry>& row, double sign, double side)
      : problem_(problem), row_(row), sign_(sign), side_(side) {
    for (const Entry& e : row) {
      const double v = least(e);
      if (std::isinf(v)) {
        ++infinite_;
      } else {
        least_.add(v);
      }
    }
  }
  double coefficient(const Entry& e) const { return sign_ * e.value; }
  /* What x and z may take together, the others at their least; false where that is not finite. */
  bool room(const Entry& x, double* room) const {
    const double own = least(x);
    if (infinite_ != (std::isinf(own) ? 1 : 0)) return false;
    *room = side_ - (std::isinf(own) ? least_.value() : least_.value() - own);
    return true;
  }
  /* The least activity of one entry. */
  double least(const Entry& e) const {
    const double a = sign_ * e.value;
    return a * (a > 0 ? problem_.lp.lower[e.column] : problem_.lp.upper[e.column]);
  }
  const std::vector<Entry>& entries() const { return row_; }

 private:
  const Problem& problem_;
  const std::vector<Entry>& row_;
  double sign_, side_;
  lp::CompensatedSum least_;
  int infinite_ = 0;
};

}  // namespace

VariableBounds::VariableBounds(const Problem& problem)
    : lower_(static_cast<std::size_t>(problem.num_columns())), upper_(lower_.size()) {
  const auto read = [&](const RowReader& row, std::size_t& pairs) {
    for (const Entry& x : row.entries()) {
      double room = 0;
      if (is_free_binary(problem, x.column) || !row.room(x, &room)) continue;
      const double a = row.coefficient(x);
      const double lower = problem.lp.lower[x.column], upper = problem.lp.upper[x.column];
      std::vector<VariableBound>& kept = a > 0 ? upper_[x.column] : lower_[x.column];
      for (const Entry& z : row.entries()) {
        if (z.column == x.column || !is_free_binary(problem, z.column)) continue;
        if (kept.size() >= kPerSide || pairs++ >= kPairs) break;
        const double with_z = room + row.least(z);
        const VariableBound bound{z.column, -row.coefficient(z) / a, with_z / a};
        if (std::fabs(bound.slope) > kLargestSlope) continue;
        const double gain =
            a > 0 ? upper - std::min(bound.at(0), bound.at(1)) : std::max(bound.at(0), bound.at(1)) - lower;
        const double size = std::max({1.0, std::fabs(bound.constant), std::fabs(bound.slope)});
        if (gain > kLeastGain * size) kept.push_back(bound);
      }
    }
  };
  const std::vector<std::vector<Entry>> rows = rows_of(problem);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::size_t pairs = 0;
    if (problem.lp.row_upper[i] < kInf) read(RowReader(problem, rows[i], 1, problem.lp.row_upper[i]), pairs);
    if (problem.lp.row_lower[i] > -kInf)
      read(RowReader(problem, rows[i], -1, -problem.lp.row_lower[i]), pairs);
  }
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (!lower_[j].empty() || !upper_[j].empty()) columns_.push_back(j);
  }
}

}  // namespace tovik::mip
