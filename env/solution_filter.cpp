#include "env/solution_filter.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "include/tovik.h"

namespace tovik {

double SolutionFilter::value(std::span<const double> x) const {
  double sum = 0;
  for (std::size_t k = 0; k < column.size(); ++k) {
    const double v = x[static_cast<std::size_t>(column[k])];
    sum += coefficient[k] * (kind == Kind::diversity ? std::fabs(v - reference[k]) : v);
  }
  return sum;
}

bool SolutionFilter::passes(std::span<const double> x) const {
  const double v = value(x);
  const auto room = [](double side) { return kTolerance * (1 + std::fabs(side)); };
  return (lower <= -TVK_INFBOUND || v >= lower - room(lower)) &&
         (upper >= TVK_INFBOUND || v <= upper + room(upper));
}

bool SolutionFilters::passes(std::span<const double> x) const {
  return std::all_of(filters_.begin(), filters_.end(),
                     [&](const SolutionFilter& filter) { return filter.passes(x); });
}

int SolutionFilters::find(std::string_view name) const {
  const auto at = std::find_if(filters_.begin(), filters_.end(),
                               [&](const SolutionFilter& filter) { return filter.name == name; });
  return at == filters_.end() ? -1 : static_cast<int>(at - filters_.begin());
}

void SolutionFilters::add(std::vector<SolutionFilter> filters) {
  std::int64_t number = last_number_;
  const auto is_taken = [&](const std::string& name) {
    return find(name) >= 0 || std::any_of(filters.begin(), filters.end(),
                                          [&](const SolutionFilter& other) { return other.name == name; });
  };
  for (SolutionFilter& filter : filters) {
    ++number;
    if (!filter.name.empty()) continue;
    std::string name = "f" + std::to_string(number);
    while (is_taken(name)) name = "f" + std::to_string(++number);
    filter.name = std::move(name);
  }
  filters_.reserve(filters_.size() + filters.size());
  std::move(filters.begin(), filters.end(), std::back_inserter(filters_));
  last_number_ = number;
  ++revision_;
}

void SolutionFilters::remove(int begin, int end) noexcept {
  if (begin > end) return;
  filters_.erase(filters_.begin() + begin, filters_.begin() + end + 1);
  ++revision_;
}

}  // namespace tovik
