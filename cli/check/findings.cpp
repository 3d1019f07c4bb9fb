#include "cli/check/findings.h"

#include <algorithm>

namespace tovik::cli {

const char* severity_name(Severity severity) {
  if (severity == Severity::error) return "error";
  return severity == Severity::warning ? "warning" : "note";
}

void Findings::add(const Kind& kind, double weight, const std::function<std::string()>& text) {
  auto group = std::ranges::find(groups_, &kind, &Group::kind);
  if (group == groups_.end()) group = groups_.insert(groups_.end(), Group{&kind, 0, {}});
  ++group->count;
  auto& worst = group->worst;
  if (worst.size() == most_ && !(weight > worst.back().weight)) return;
  const auto place = std::ranges::upper_bound(
      worst, weight, [](double a, double b) { return a > b; }, &Finding::weight);
  worst.insert(place, {weight, text()});
  if (worst.size() > most_) worst.pop_back();
}

std::vector<Group> Findings::groups() const {
  std::vector<Group> sorted = groups_;
  std::ranges::stable_sort(sorted, {}, [](const Group& group) { return group.kind->severity; });
  return sorted;
}

long Findings::count(Severity severity) const {
  long total = 0;
  for (const Group& group : groups_) total += group.kind->severity == severity ? group.count : 0;
  return total;
}

}  // namespace tovik::cli
