/* Re-solves of a problem that stays presolved: changes that the presolve record takes over, and some that end it,
 * one after another, with bases copied, questions asked and parameters changed in between. Each answer is that of
 * a fresh solve and carries its proof; its basis is final. */
#include "env/handles.h"
#include "lp/presolve_record/presolved.h"
#include "support/fresh_solves.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kProblems = 40;
#else
constexpr unsigned kProblems = 400;
#endif
constexpr int kSteps = 40;
constexpr double kSmall = 1.0 / 64;

class PresolvedSequences : public support::WithFreshSolves {
 protected:
  int integer(int parameter, int value) { return TVKsetintparam(env_, parameter, value); }
  /* Presolve takes its tolerances in the user's units: no numbers of all sizes. */
  support::Lp plain(support::LpMaker& maker) {
    support::Lp model = maker.draw(16);
    while (model.badly_scaled) model = maker.draw(16);
    return model;
  }
  bool is_presolved(ProbHandle lp) {
    int fate = 0;
    EXPECT_EQ(TVKgetprestat(env_, lp, &fate, nullptr, nullptr, nullptr, nullptr), 0);
    return fate == 1;
  }
  /* A column or row that presolve kept, mostly. */
  int kept(support::LpMaker& maker, ProbHandle lp, bool columns) {
    const int count = columns ? TVKgetnumcols(env_, lp) : TVKgetnumrows(env_, lp);
    const int k = count > 0 ? maker.below(count) : 0;
    if (maker.chance(10) || !is_presolved(lp)) return k;
    std::vector<int> fates(static_cast<std::size_t>(count) + 1, -1);
    EXPECT_EQ(TVKgetprestat(env_, lp, nullptr, columns ? fates.data() : nullptr,
                            columns ? nullptr : fates.data(), nullptr, nullptr),
              0);
    for (int step = 0; step < count; ++step) {
      if (fates[static_cast<std::size_t>((k + step) % count)] >= 0) return (k + step) % count;
    }
    return k;
  }

  int change(support::LpMaker& maker, ProbHandle lp) {
    const int j = kept(maker, lp, true), i = kept(maker, lp, false);
    switch (maker.below(12)) {
      case 0:
      case 1:
      case 2:
        return nudge_cost(maker, lp, j);
      case 3:
      case 4:
        return TVKgetnumrows(env_, lp) == 0 ? 0 : nudge_rhs(maker, lp, i);
      case 5:
      case 6:
      case 7:
        return tighten(maker, lp, j);
      case 8:
      case 9:
        return add_row(maker, lp, maker.chance(60) ? 1.0 : -kSmall);
      case 10:
        trace_ += " offset";
        return TVKchgobjoffset(env_, lp, maker.whole(9));
      default:
        return disturb(maker, lp);
    }
  }
  int nudge_cost(support::LpMaker& maker, ProbHandle lp, int j) {
    trace_ += " cost";
    double cost = 0;
    EXPECT_EQ(TVKgetobj(env_, lp, &cost, j, j), 0);
    cost += maker.chance(70) ? maker.whole(2) * kSmall : maker.whole(3);
    return TVKchgobj(env_, lp, 1, &j, &cost);
  }
  int nudge_rhs(support::LpMaker& maker, ProbHandle lp, int i) {
    trace_ += " rhs";
    double rhs = 0;
    EXPECT_EQ(TVKgetrhs(env_, lp, &rhs, i, i), 0);
    rhs += maker.chance(70) ? maker.whole(2) * kSmall : maker.whole(2);
    return TVKchgrhs(env_, lp, 1, &i, &rhs);
  }
  /* Also beyond the present point; seldom looser. */
  int tighten(support::LpMaker& maker, ProbHandle lp, int j) {
    double x = 0, low = 0, high = 0;
    if (TVKgetx(env_, lp, &x, j, j) != 0) return 0;
    EXPECT_EQ(TVKgetlb(env_, lp, &low, j, j), 0);
    EXPECT_EQ(TVKgetub(env_, lp, &high, j, j), 0);
    const bool lower = maker.chance(50);
    const double room = maker.chance(60) ? 1 : maker.chance(80) ? -kSmall : 50;
    const double bound = lower ? x - room : x + room;
    if (bound >= high || bound <= low) return 0;
    trace_ += lower ? " lower" : " upper";
    return TVKchgbds(env_, lp, 1, &j, lower ? "L" : "U", &bound);
  }
  int add_row(support::LpMaker& maker, ProbHandle lp, double room) {
    trace_ += room > 0 ? " slack-row" : " cut";
    double x = 0, activity = 0;
    std::vector<int> index;
    std::vector<double> values;
    for (int count = 1 + maker.below(3); count > 0; --count) {
      const int j = kept(maker, lp, true);
      if (std::find(index.begin(), index.end(), j) != index.end() || TVKgetx(env_, lp, &x, j, j) != 0)
        continue;
      index.push_back(j);
      values.push_back(1 + maker.below(3));
      activity += values.back() * x;
    }
    const int begin = 0, entries = static_cast<int>(index.size());
    const bool less = maker.chance(50);
    const double rhs = less ? activity + room : activity - room;
    return TVKaddrows(env_, lp, 0, 1, entries, &rhs, less ? "L" : "G", &begin, index.data(), values.data(),
                      nullptr, nullptr);
  }
  /* What the optimizer that is kept with the record knows nothing of. */
  int disturb(support::LpMaker& maker, ProbHandle lp) {
    std::vector<int> columns(static_cast<std::size_t>(TVKgetnumcols(env_, lp)) + 1, 0);
    std::vector<int> rows(static_cast<std::size_t>(TVKgetnumrows(env_, lp)) + 1, 1);
    std::vector<double> values(rows.size());
    switch (maker.below(6)) {
      case 0:
        trace_ += " same-basis";
        return TVKgetbase(env_, lp, columns.data(), rows.data()) != 0
                   ? 0
                   : TVKcopybase(env_, lp, columns.data(), rows.data());
      case 1:
        trace_ += " slack-basis";
        return TVKcopybase(env_, lp, columns.data(), rows.data());
      case 2:
        trace_ += " query";
        TVKgetbasehead(env_, lp, rows.data(), values.data());
        return 0;
      case 3:
        trace_ += " scaling";
        return integer(TVK_PARAM_SCAIND, maker.below(3) - 1);
      case 4:
        trace_ += " start";
        return integer(TVK_PARAM_ADVIND, maker.below(3));
      default:
        trace_ += " memory";
        return integer(TVK_PARAM_MEMORYEMPHASIS, maker.below(2));
    }
  }

  std::string trace_;
};

TEST_F(PresolvedSequences, AnswersAreThoseOfFreshSolves) {
  int failures = 0, carried = 0, unfactored = 0;
  for (unsigned seed = 1; seed <= kProblems && failures < 5; ++seed) {
    support::LpMaker maker(seed);
    ASSERT_EQ(TVKsetdefaults(env_), 0);
    ASSERT_EQ(integer(TVK_PARAM_THREADS, 1), 0);
    ASSERT_EQ(integer(TVK_PARAM_REDUCE, maker.chance(60) ? 1 : 3), 0);
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "presolved");
    for (int status = 0; status != TVK_STATUS_OPTIMAL;) {
      ASSERT_EQ(plain(maker).copy(env_, lp), 0);
      if (TVKgetnumcols(env_, lp) > 0 && TVKpresolve(env_, lp, 0) == 0 && is_presolved(lp) &&
          TVKdualopt(env_, lp) == 0)
        status = TVKgetstat(env_, lp);
    }
    trace_.clear();
    for (int step = 0; step < kSteps; ++step) {
      for (int changes = 1 + maker.below(2); changes > 0; --changes)
        ASSERT_EQ(change(maker, lp), 0) << trace_;
      const bool still = is_presolved(lp);
      carried += still;
      const int method = maker.chance(70) ? 2 : maker.below(3);
      const support::Lp model = support::read_back(env_, lp);
      code = optimize(lp, method);
      const support::Outcome warm = support::outcome_of(env_, lp, model, code);
      const tovik::Problem& problem = *tovik::from_handle(lp);
      const auto* record = tovik::lp::run::kept_record(problem);
      unfactored +=
          still && record != nullptr && record->optimizer != nullptr && problem.solution->factorizations == 0;
      int advanced = 1;
      ASSERT_EQ(TVKgetintparam(env_, TVK_PARAM_ADVIND, &advanced), 0);
      ASSERT_EQ(integer(TVK_PARAM_ADVIND, 1), 0);
      const std::string wrong = judge(lp, warm, model, method);
      ASSERT_EQ(integer(TVK_PARAM_ADVIND, advanced), 0);
      if (!wrong.empty()) {
        ++failures;
        ADD_FAILURE() << "seed " << seed << ", after" << trace_ << '\n' << wrong << support::describe(model);
        break;
      }
      if (warm.status != TVK_STATUS_OPTIMAL) break;
      if (!still && TVKpresolve(env_, lp, 0) != 0) break;
      trace_ += ';';
    }
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  EXPECT_GT(carried, static_cast<int>(kProblems) * 4);
  // A run that knows too little of the changes ends with the problem's own engine, and keeps no other.
  EXPECT_GT(unfactored, carried * 2 / 5) << "of " << carried;
}

}  // namespace
