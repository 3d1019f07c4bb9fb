#include "mip/run/caller_rows.h"

#include <algorithm>
#include <utility>

namespace tovik::mip::run {
namespace {

/* In ascending order, each column once, without zeros. */
void tidy(LinearForm& form) {
  std::vector<std::pair<int, double>> terms;
  for (std::size_t k = 0; k < form.columns.size(); ++k) terms.emplace_back(form.columns[k], form.values[k]);
  std::stable_sort(terms.begin(), terms.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  form.columns.clear();
  form.values.clear();
  for (std::size_t k = 0; k < terms.size();) {
    double sum = 0;
    const int column = terms[k].first;
    for (; k < terms.size() && terms[k].first == column; ++k) sum += terms[k].second;
    if (sum == 0) continue;
    form.columns.push_back(column);
    form.values.push_back(sum);
  }
}

}  // namespace

Cut cut_of(const CallbackScene& scene, const CallerRow& row) {
  LinearForm form{{row.columns, row.columns + row.count}, {row.values, row.values + row.count}, 0};
  if (scene.in_user_space) form = scene.spaces.crush(std::move(form));
  tidy(form);
  Cut cut;
  cut.columns = std::move(form.columns);
  cut.values = std::move(form.values);
  cut.side = row.rhs - form.constant;
  if (row.sense == 'G') {
    for (double& v : cut.values) v = -v;
    cut.side = -cut.side;
  }
  if (row.sense == 'E') cut.lower = cut.side;
  return cut;
}

void add_bound(const CallbackScene& scene, const CallerBound& bound, NewChild& child) {
  const double one = 1;
  LinearForm form{{bound.column}, {one}, 0};
  if (scene.in_user_space) form = scene.spaces.crush(std::move(form));
  if (form.columns.size() == 1) {
    const double value = (bound.value - form.constant) / form.values[0];
    const bool falls = form.values[0] < 0;
    const int column = form.columns[0];
    if (bound.side != 'U') child.changes.push_back({column, falls ? Side::upper : Side::lower, value});
    if (bound.side != 'L') child.changes.push_back({column, falls ? Side::lower : Side::upper, value});
    return;
  }
  const int sense = bound.side == 'U' ? 'L' : bound.side == 'L' ? 'G' : 'E';
  child.rows.push_back(cut_of(scene, {1, &bound.column, &one, bound.value, sense}));
}

}  // namespace tovik::mip::run
