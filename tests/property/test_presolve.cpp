/* Presolve and postsolve on random LPs: tiny ones in exact arithmetic with every optimal basis of the
 * reduced problem, larger ones against the simplex method without presolve. */
#include <gtest/gtest.h>

#include <string>

#include "support/planted_lps.h"
#include "support/presolve_pipeline.h"
#include "support/presolve_proof.h"
#include "support/random.h"
#include "support/structured_lps.h"

namespace support {
namespace {

using tovik::lp::presolve::kAllRules;
using tovik::lp::presolve::kDefaultRules;
using tovik::lp::presolve::kRules;
using tovik::lp::presolve::rule_bit;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kShare = 10;  // one in so many
#else
constexpr int kShare = 1;
#endif

/* Rules that need no other, and are needed by others to be of use. */
constexpr std::uint32_t kCheapRules = rule_bit(Rule::empty_row) | rule_bit(Rule::redundant_row) |
                                      rule_bit(Rule::singleton_row) | rule_bit(Rule::forcing_row) |
                                      rule_bit(Rule::empty_column) | rule_bit(Rule::fixed_column);

template <class Lps>
void vary(Lps& lps, Settings& settings, std::int64_t& polls) {
  if (lps.chance(0.2)) settings.limit = lps.pick(1, 8);
  if (lps.chance(0.1)) settings.dual = false;
  if (lps.chance(0.1)) settings.primal = false;
  if (lps.chance(0.1)) settings.linear_only = true;
  if (lps.chance(0.1)) settings.aggregator = lps.pick(0, 2);
  if (lps.chance(0.1)) settings.dependency = lps.pick(0, 3);
  if (lps.chance(0.1)) settings.fill = lps.pick(0, 3);
  if (lps.chance(0.1)) polls = lps.pick(0, 12);
}

std::string told(const LpData& lp, const Settings& settings, const std::string& fault) {
  return fault + "\nseed " + std::to_string(fresh_seed()) + ", rules " + std::to_string(settings.rules) +
         ", limit " + std::to_string(settings.limit) + "\n" + describe(lp);
}

class PresolveRule : public testing::TestWithParam<int> {};

TEST_P(PresolveRule, EveryOptimalBasisComesBack) {
  const auto rule = static_cast<Rule>(GetParam());
  PlantedLps lps(fresh_seed() + static_cast<unsigned>(GetParam()));
  PresolveProof proof;
  for (int k = 0; k < 4000 / kShare; ++k) {
    std::vector<Rule> planted{rule};
    if (lps.chance(0.4)) planted.push_back(static_cast<Rule>(lps.pick(0, kRules - 1)));
    const LpData lp = lps.make(lps.pick(2, 4), lps.pick(2, 4), planted).data();
    const std::uint32_t some =
        kDefaultRules & static_cast<std::uint32_t>(lps.pick(0, static_cast<int>(kAllRules)));
    const std::uint32_t others[] = {0, kCheapRules, some, kDefaultRules};
    Settings settings;
    std::int64_t polls = INT64_MAX;
    settings.rules = rule_bit(rule) | others[lps.pick(0, 3)];
    vary(lps, settings, polls);
    const std::string fault = proof.fault(lp, settings, polls);
    ASSERT_EQ(fault, "") << told(lp, settings, fault);
  }
  EXPECT_GT(proof.tally.hits[static_cast<size_t>(rule)], 200 / kShare) << "the rule was hardly tested";
  EXPECT_LT(proof.tally.unchecked, proof.tally.lps / 100);
}

INSTANTIATE_TEST_SUITE_P(All, PresolveRule, testing::Range(0, kRules), [](const auto& rule) {
  return tovik::lp::presolve::kRuleTable[static_cast<size_t>(rule.param)].name;
});

TEST(Presolve, RulesThatMeetEachOtherGiveBackEveryOptimalBasis) {
  PlantedLps lps(fresh_seed());
  PresolveProof proof;
  for (int k = 0; k < 20000 / kShare; ++k) {
    std::vector<Rule> planted;
    for (int count = lps.pick(0, 4); count > 0; --count)
      planted.push_back(static_cast<Rule>(lps.pick(0, kRules - 1)));
    const LpData lp = lps.make(lps.pick(2, 4), lps.pick(2, 5), planted).data();
    Settings settings;
    std::int64_t polls = INT64_MAX;
    vary(lps, settings, polls);
    std::vector<char> kept(lp.cost.size());
    if (lps.chance(0.2)) kept[lps.pick(0, lp.num_columns() - 1)] = 1;
    const std::string fault = proof.fault(lp, settings, polls, kept);
    ASSERT_EQ(fault, "") << told(lp, settings, fault);
  }
  EXPECT_GT(proof.tally.bases, proof.tally.lps / 2);
}

/* Everything on, one rule alone or without it, and settings at random; each problem also in disguise. */
void run_structured(bool wide, int count, int& runs, int& doubts) {
  StructuredLps lps(fresh_seed() + (wide ? 1 : 0));
  for (int k = 0; k < count; ++k) {
    const DenseLp plain_form = lps.make(wide);
    const Reference plain = solve_plain(plain_form.data());
    if (plain.outcome == Outcome::numerical_failure) continue;  // nothing to compare with
    for (int variant = 0; variant < 3; ++variant) {
      const LpData lp = (lps.chance(0.5) ? lps.disguised(plain_form) : plain_form).data();
      Settings settings;
      std::int64_t polls = INT64_MAX;
      if (variant == 1) {
        const std::uint32_t one = rule_bit(static_cast<Rule>(lps.pick(0, kRules - 1)));
        settings.rules = kDefaultRules & (lps.chance(0.5) ? one : ~one);
      } else if (variant == 2) {
        settings.limit = lps.pick(1, 60);
        vary(lps, settings, polls);
      }
      const Pipeline pipeline(lp, plain, settings, lps.chance(0.5) ? Method::dual : Method::primal, polls);
      const PipelineResult& result = pipeline.result();
      ASSERT_EQ(result.fault, "") << told(lp, settings, result.fault);
      ++runs;
      doubts += !result.doubt.empty();
      if (!wide) {
        ASSERT_EQ(result.doubt, "") << told(lp, settings, result.doubt);
      }
    }
  }
}

TEST(Presolve, SolutionsOfStructuredProblemsComeBackOptimal) {
  int runs = 0, doubts = 0;
  run_structured(false, 3000 / kShare, runs, doubts);
}

/* Rounding may cost iterations or a second solve without presolve, but no answer may be wrong. */
TEST(Presolve, WideCoefficientsGiveNoWrongAnswer) {
  int runs = 0, doubts = 0;
  run_structured(true, 2000 / kShare, runs, doubts);
  EXPECT_LE(doubts, 3 + runs / 100);
}

}  // namespace
}  // namespace support
