/* Random sequences of edits: a solve that goes on from the last basis tells what a fresh solve of the same
 * model tells, its answer carries a proof, and the basis it leaves is found final at once. */
#include "support/fresh_solves.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kSequences = 200;
#else
constexpr unsigned kSequences = 12000;
#endif
constexpr int kSteps = 6;

class EditSequences : public support::WithFreshSolves {
 protected:
  /* One edit; its name goes to the trace. */
  int edit(support::LpMaker& maker, ProbHandle lp, std::string& trace) {
    const int n = TVKgetnumcols(env_, lp), m = TVKgetnumrows(env_, lp);
    const int j = n > 0 ? maker.below(n) : -1, i = m > 0 ? maker.below(m) : -1;
    const double value = maker.whole(6);
    const auto named = [&](const char* name) { trace += std::string(" ") + name; };
    switch (maker.below(13)) {
      case 0:
      case 1: {
        if (n == 0) return 0;
        named("bounds");
        double bound[2];
        maker.bounds(&bound[0], &bound[1]);
        const int both[] = {j, j};
        return TVKchgbds(env_, lp, 2, both, "LU", bound);
      }
      case 2:
        if (n == 0) return 0;
        named("cost");
        return TVKchgobj(env_, lp, 1, &j, &value);
      case 3:
        if (m == 0) return 0;
        named("rhs");
        return TVKchgrhs(env_, lp, 1, &i, &value);
      case 4: {
        if (m == 0) return 0;
        named("range");
        const char ranged = 'R';
        if (const int code = TVKchgsense(env_, lp, 1, &i, &ranged); code != 0) return code;
        return TVKchgrngval(env_, lp, 1, &i, &value);
      }
      case 5:
        if (n == 0 || m == 0) return 0;
        named("coefficient");
        return TVKchgcoef(env_, lp, i, j, value);
      case 6: {
        if (m == 0) return 0;
        named("sense");
        const char sense = maker.row_sense();
        return TVKchgsense(env_, lp, 1, &i, &sense);
      }
      case 7: {
        named("add row");
        std::vector<int> index;
        std::vector<double> values;
        for (int k = 0; k < n; ++k) {
          if (!maker.chance(50)) continue;
          index.push_back(k);
          values.push_back(maker.whole(3));
        }
        const int begin = 0, entries = static_cast<int>(index.size());
        const char sense = maker.row_sense();
        return TVKaddrows(env_, lp, 0, 1, entries, &value, &sense, &begin, index.data(), values.data(),
                          nullptr, nullptr);
      }
      case 8: {
        named("add column");
        std::vector<int> index;
        std::vector<double> values;
        for (int k = 0; k < m; ++k) {
          if (!maker.chance(60)) continue;
          index.push_back(k);
          values.push_back(maker.whole(3));
        }
        const int begin = 0, entries = static_cast<int>(index.size());
        double low, high;
        maker.bounds(&low, &high);
        return TVKaddcols(env_, lp, 1, entries, &value, &begin, index.data(), values.data(), &low, &high,
                          nullptr);
      }
      case 9:
        if (m == 0) return 0;
        named("delete row");
        return TVKdelrows(env_, lp, i, i);
      case 10:
        if (n == 0) return 0;
        named("delete column");
        return TVKdelcols(env_, lp, j, j);
      case 11: {
        if (n == 0 || m == 0) return 0;  // any statuses are accepted, whatever they amount to
        named("basis");
        std::vector<int> columns(static_cast<std::size_t>(n)), rows(static_cast<std::size_t>(m));
        for (int& status : columns) status = maker.below(4);
        for (int& status : rows) status = maker.below(3);
        return TVKcopybase(env_, lp, columns.data(), rows.data());
      }
      default:
        named("direction");
        return TVKchgobjsen(env_, lp, -TVKgetobjsen(env_, lp));
    }
  }
};

TEST_F(EditSequences, WarmAnswersAreThoseOfFreshSolves) {
  int failures = 0, answers = 0;
  for (unsigned seed = 1; seed <= kSequences && failures < 10; ++seed) {
    support::LpMaker maker(seed);
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "edited");
    support::Lp first = maker.draw(seed % 5 == 0 ? 12 : 6);
    while (first.badly_scaled) first = maker.draw(6);
    ASSERT_EQ(first.copy(env_, lp), 0);
    std::string trace;
    for (int step = 0; step < kSteps; ++step) {
      const int method = maker.below(3);
      code = optimize(lp, method);
      const support::Lp model = support::read_back(env_, lp);
      const support::Outcome warm = support::outcome_of(env_, lp, model, code);
      const std::string wrong = judge(lp, warm, model, method);
      ++answers;
      if (!wrong.empty()) {
        ++failures;
        ADD_FAILURE() << "seed " << seed << " step " << step << " method " << method << " status "
                      << warm.status << " objective " << warm.objective << " after" << trace << '\n'
                      << wrong << support::describe(model);
        break;
      }
      for (int edits = 1 + maker.below(3); edits > 0; --edits) ASSERT_EQ(edit(maker, lp, trace), 0) << trace;
    }
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  EXPECT_GT(answers, static_cast<int>(kSequences));
}

}  // namespace
