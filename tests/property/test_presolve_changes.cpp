/* Changes after presolve, rule by rule: a reduction that takes one over gives back every optimal basis of the
 * problem after it, in exact arithmetic; one that does not is left as it was. */
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "lp/presolve/model_change.h"
#include "support/planted_lps.h"
#include "support/presolve_proof.h"

namespace support {
namespace {

namespace presolve = tovik::lp::presolve;
using presolve::ModelChange;
using tovik::lp::Matrix;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kShare = 10;  // one in so many
#else
constexpr int kShare = 1;
#endif

bool same(const LpData& a, const LpData& b) {
  return a.matrix.start == b.matrix.start && a.matrix.index == b.matrix.index &&
         a.matrix.value == b.matrix.value && a.cost == b.cost && a.lower == b.lower && a.upper == b.upper &&
         a.row_lower == b.row_lower && a.row_upper == b.row_upper && a.offset == b.offset;
}

/* Makes changes of one kind, in a table of the original and in the reduction. */
class Changer {
 public:
  Changer(PlantedLps& lps, DenseLp& table, Reduction& reduction, LpData& original)
      : lps_(lps), table_(table), reduction_(reduction), original_(original) {}

  /* Whether the reduction took it over; table is the problem after the change. */
  bool make(ModelChange change) {
    switch (change) {
      case ModelChange::cost:
        return cost();
      case ModelChange::bound:
        return bound();
      case ModelChange::side:
        return side();
      case ModelChange::row:
        return row();
    }
    return false;
  }

 private:
  /* Mostly one that was kept. */
  int choose(const std::vector<int>& map, int count) {
    if (map.empty() || lps_.chance(0.1)) return lps_.pick(0, count - 1);
    return map[lps_.pick(0, static_cast<int>(map.size()) - 1)];
  }
  bool cost() {
    const int j = choose(reduction_.column_map, table_.columns());
    table_.cost[j] += lps_.pick(-3, 3);
    if (lps_.chance(0.3)) table_.offset += lps_.pick(-2, 2);
    const presolve::NewCost change[] = {{j, table_.cost[j]}};
    return presolve::change_costs(reduction_, original_, change, table_.offset);
  }
  bool bound() {
    const int j = choose(reduction_.column_map, table_.columns());
    const double step = lps_.chance(0.9) ? lps_.pick(1, 2) / 2.0 : -1;
    if (lps_.chance(0.5)) {
      table_.lower[j] = table_.lower[j] == -kInf ? lps_.pick(-2, 1) : table_.lower[j] + step;
    } else {
      table_.upper[j] = table_.upper[j] == kInf ? lps_.pick(-1, 2) : table_.upper[j] - step;
    }
    const presolve::NewRange change[] = {{j, table_.lower[j], table_.upper[j]}};
    return presolve::change_bounds(reduction_, original_, change);
  }
  bool side() {
    const int i = choose(reduction_.row_map, table_.rows());
    const int shift = lps_.pick(-2, 2);
    table_.row_lower[i] += shift;
    table_.row_upper[i] += shift;
    const presolve::NewRange change[] = {{i, table_.row_lower[i], table_.row_upper[i]}};
    return presolve::change_sides(reduction_, original_, change);
  }
  bool row() {
    std::vector<double> entries(table_.cost.size(), 0.0);
    for (int count = lps_.pick(1, 3); count > 0; --count)
      entries[choose(reduction_.column_map, table_.columns())] =
          lps_.pick(1, 2) * (lps_.chance(0.5) ? 1 : -1);
    const int rhs = lps_.pick(-3, 3), type = lps_.pick(0, 2);
    table_.a.push_back(entries);
    table_.row_lower.push_back(type == 0 ? -kInf : rhs);
    table_.row_upper.push_back(type == 1 ? kInf : rhs);
    presolve::NewRows added;
    added.rows.rows = table_.columns();
    added.rows.columns = 1;
    for (int j = 0; j < table_.columns(); ++j) {
      if (entries[j] == 0) continue;
      added.rows.index.push_back(j);
      added.rows.value.push_back(entries[j]);
    }
    added.rows.start.push_back(static_cast<int>(added.rows.index.size()));
    added.lower.push_back(table_.row_lower.back());
    added.upper.push_back(table_.row_upper.back());
    return presolve::add_rows(reduction_, original_, added);
  }

  PlantedLps& lps_;
  DenseLp& table_;
  Reduction& reduction_;
  LpData& original_;
};

constexpr std::array kChanges{ModelChange::cost, ModelChange::bound, ModelChange::side, ModelChange::row};

class PresolveChange : public testing::TestWithParam<int> {
 protected:
  /* Presolves, changes, and proves what the reduction is worth after that. */
  void run(PlantedLps& lps, Rule rule) {
    std::vector<Rule> planted{rule};
    if (lps.chance(0.3)) planted.push_back(static_cast<Rule>(lps.pick(0, tovik::lp::presolve::kRules - 1)));
    DenseLp table = lps.make(lps.pick(2, 4), lps.pick(2, 4), planted);
    LpData original = table.data();
    Settings settings;
    settings.rules = presolve::rule_bit(rule) |
                     (lps.chance(0.5) ? static_cast<std::uint32_t>(lps.pick(0, (1 << presolve::kRules) - 1)) &
                                            presolve::kDefaultRules
                                      : 0);
    QuietControl control;
    Reduction reduction = presolve::presolve(original, settings, control, {}, false);
    const bool hit = reduction.counts.hits[static_cast<size_t>(rule)] > 0;
    if (reduction.status.code != StatusCode::reduced || !hit) return;
    for (int count = lps.pick(1, 2); count > 0; --count) {
      const ModelChange change = kChanges[lps.pick(0, 3)];
      const LpData reduced_before = reduction.lp, original_before = original;
      if (!Changer(lps, table, reduction, original).make(change)) {
        EXPECT_TRUE(same(original, original_before) && same(reduction.lp, reduced_before));
        return;
      }
      ++taken_[static_cast<size_t>(index_of(change))];
      ASSERT_TRUE(same(original, table.data())) << describe(original) << "instead of\n"
                                                << describe(table.data());
      const std::string fault = proof_.fault_after_change(original, reduction);
      ASSERT_EQ(fault, "") << "seed " << fresh_seed() << ", rules " << settings.rules << ", change "
                           << static_cast<int>(change) << "\nbefore:\n"
                           << describe(original_before) << "reduced before:\n"
                           << describe(reduced_before) << "after:\n"
                           << describe(original);
    }
  }
  static int index_of(ModelChange change) {
    return static_cast<int>(std::find(kChanges.begin(), kChanges.end(), change) - kChanges.begin());
  }

  std::array<long, kChanges.size()> taken_{};
  PresolveProof proof_;
};

TEST_P(PresolveChange, IsTakenOverOnlyWhenConclusionsHold) {
  const auto rule = static_cast<Rule>(GetParam());
  PlantedLps lps(fresh_seed() + static_cast<unsigned>(GetParam()));
  for (int k = 0; k < 4000 / kShare && !HasFatalFailure(); ++k) run(lps, rule);
  const presolve::ChangeSet& holds = presolve::kRuleTable[static_cast<size_t>(rule)].holds_after;
  for (size_t k = 0; k < kChanges.size(); ++k) {
    if (holds.has(kChanges[k])) {
      EXPECT_GT(taken_[k], 20 / kShare) << "hardly tested: change " << k;
    } else {
      EXPECT_EQ(taken_[k], 0) << "change " << k;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, PresolveChange, testing::Range(0, presolve::kRules), [](const auto& rule) {
  return presolve::kRuleTable[static_cast<size_t>(rule.param)].name;
});

}  // namespace
}  // namespace support
