#include "mip/cuts/gub_cover.h"

#include <algorithm>
#include <cmath>

#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr double kMargin = 1e-6;  // of the capacity: by which a cover exceeds it
constexpr double kZero = 1e-6;    // a value counts as 0
constexpr double kLeastViolation = 1e-3;

Literal literal_of(const KnapsackRow::Item& item) {
  return literal(item.column, !item.complemented);
}

}  // namespace

Verdict GubCoverCuts::call(Worker& worker, const Moment& moment) {
  if (worker.global.cliques.size() == 0) return Verdict::nothing;
  const std::span<const double> x = worker.relaxation->primal();
  work_ = 0;
  bool found = false;
  for (int i = 0; i < worker.global.problem.num_rows(); ++i) {
    if (work_ > moment.budget || worker.must_stop()) break;
    const RelaxationRow row = worker.row(i);
    work_ += static_cast<std::int64_t>(row.columns.size());
    for (const double sign : {1.0, -1.0}) {
      if (!KnapsackRow::is_tight(row, sign, x) || !row_.read(worker, row, sign, x)) continue;
      if (!make_groups(worker) || !choose_cover()) continue;
      lift();
      Cut cut;
      cut.kind = CutClass::gub_cover;
      if (!write(&cut) || !finish_cut(worker, x, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  worker.out.work += work_;
  return found ? Verdict::found : Verdict::nothing;
}

/* Each item that adds much goes with the clique whose free items of the row are worth most. False where no group has two items. */
bool GubCoverCuts::make_groups(const Worker& worker) {
  const std::span<const KnapsackRow::Item> items = row_.items();
  const CliqueTable& cliques = worker.global.cliques;
  std::vector<int> order(items.size());
  for (std::size_t k = 0; k < items.size(); ++k) {
    order[k] = static_cast<int>(k);
    item_of_[literal_of(items[k])] = static_cast<int>(k);
  }
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    const double gain_a = items[a].weight * items[a].value, gain_b = items[b].weight * items[b].value;
    return gain_a != gain_b ? gain_a > gain_b : a < b;
  });
  groups_.clear();
  bool any = false;
  for (const int first : order) {
    const Literal l = literal_of(items[first]);
    if (item_of_[l] < 0) continue;
    int best = -1;
    double most = 0;
    for (const int c : cliques.cliques_of(l)) {
      const std::span<const Literal> members = cliques.clique(c);
      work_ += static_cast<std::int64_t>(members.size());
      double worth = 0;
      for (const Literal m : members) {
        if (item_of_[m] >= 0 && m != l) worth += kZero + items[item_of_[m]].value;
      }
      if (worth > most) {
        most = worth;
        best = c;
      }
    }
    Group group;
    group.items.push_back(first);
    item_of_[l] = -1;
    if (best >= 0) {
      for (const Literal m : cliques.clique(best)) {
        if (item_of_[m] < 0) continue;
        group.items.push_back(item_of_[m]);
        item_of_[m] = -1;
      }
    }
    any = any || group.items.size() > 1;
    std::sort(group.items.begin(), group.items.end(), [&](int a, int b) {
      return items[a].weight != items[b].weight ? items[a].weight > items[b].weight : a < b;
    });
    groups_.push_back(std::move(group));
  }
  return any;
}

/* All groups with a value, thresholds as low as values ask; these rise where it costs least value by weight until the
 * capacity is exceeded; then out with groups that are not needed, the least valuable first. */
bool GubCoverCuts::choose_cover() {
  const std::span<const KnapsackRow::Item> items = row_.items();
  margin_ = kMargin * std::max(1.0, row_.capacity());
  cover_.clear();
  double sum = 0;
  for (std::size_t g = 0; g < groups_.size(); ++g) {
    Group& group = groups_[g];
    group.taken = 0;
    group.value = 0;
    for (std::size_t k = 0; k < group.items.size(); ++k) {
      const double value = items[group.items[k]].value;
      if (value <= kZero) continue;
      group.taken = static_cast<int>(k) + 1;
      group.value += value;
    }
    if (group.taken == 0) continue;
    cover_.push_back(static_cast<int>(g));
    sum += threshold(group);
  }
  while (sum <= row_.capacity() + margin_) {
    int best = -1;
    double cheapest = kInf;
    for (const int g : cover_) {
      const Group& group = groups_[g];
      work_ += 1;
      if (group.taken < 2) continue;
      const double more = items[group.items[group.taken - 2]].weight - threshold(group);
      const double less = items[group.items[group.taken - 1]].value;
      const double price = less <= kZero ? 0 : more > 0 ? less / more : kInf;
      if (best >= 0 && price >= cheapest) continue;
      cheapest = price;
      best = g;
    }
    if (best < 0) return false;
    Group& group = groups_[best];
    sum -= threshold(group);
    group.value -= items[group.items[group.taken - 1]].value;
    --group.taken;
    sum += threshold(group);
  }
  std::vector<int> by_value = cover_;
  std::sort(by_value.begin(), by_value.end(), [&](int a, int b) {
    return groups_[a].value != groups_[b].value ? groups_[a].value < groups_[b].value : a < b;
  });
  double missing = 0;
  for (const int g : by_value) {
    if (sum - threshold(groups_[g]) > row_.capacity() + margin_) {
      sum -= threshold(groups_[g]);
      std::erase(cover_, g);
    } else {
      missing += 1 - groups_[g].value;
    }
  }
  return cover_.size() > 1 && missing < 1 - kLeastViolation;
}

/* The least weight with which a value of at least w can be had from the groups so far; what a further item takes from the largest
 * value is its coefficient. Items of one group are lifted side by side, for only one of them is taken. */
void GubCoverCuts::lift() {
  const std::span<const KnapsackRow::Item> items = row_.items();
  lifted_.assign(items.size(), 0);
  std::vector<double> thresholds;
  std::vector<char> in_cover(groups_.size());
  for (const int g : cover_) {
    in_cover[g] = 1;
    thresholds.push_back(threshold(groups_[g]));
    for (int k = 0; k < groups_[g].taken; ++k) lifted_[groups_[g].items[k]] = 1;
  }
  std::sort(thresholds.begin(), thresholds.end());
  std::vector<double> least{0};
  for (const double t : thresholds) least.push_back(least.back() + t);
  const int side = static_cast<int>(cover_.size()) - 1;
  std::vector<double> next;
  for (std::size_t g = 0; g < groups_.size(); ++g) {
    if (in_cover[g] != 0) continue;
    next = least;
    bool any = false;
    for (const int k : groups_[g].items) {
      const double room = row_.capacity() - items[k].weight;
      const auto end = std::upper_bound(least.begin(), least.end(), room + margin_);
      const int most = std::max(0, static_cast<int>(end - least.begin()) - 1);
      // Heavier than the row can take: any coefficient would do, and none is needed.
      lifted_[k] = room < 0 ? 0 : std::max(0, side - most);
      if (lifted_[k] == 0) continue;
      any = true;
      const auto a = static_cast<std::size_t>(lifted_[k]);
      if (next.size() < least.size() + a) next.resize(least.size() + a, kInf);
      for (std::size_t w = 0; w < least.size() + a; ++w) {
        next[w] = std::min(next[w], least[w > a ? w - a : 0] + (w > 0 ? items[k].weight : 0));
      }
      work_ += static_cast<std::int64_t>(least.size());
    }
    if (!any) continue;
    for (std::size_t w = next.size() - 1; w-- > 0;) next[w] = std::min(next[w], next[w + 1]);
    least.swap(next);
  }
}

bool GubCoverCuts::write(Cut* cut) const {
  double side = static_cast<double>(cover_.size()) - 1;
  for (std::size_t k = 0; k < row_.items().size(); ++k) {
    if (lifted_[k] == 0) continue;
    const KnapsackRow::Item& item = row_.items()[k];
    cut->columns.push_back(item.column);
    cut->values.push_back(item.complemented ? -lifted_[k] : lifted_[k]);
    if (item.complemented) side -= lifted_[k];
  }
  cut->side = side;
  return !cut->columns.empty();
}

}  // namespace tovik::mip
