/* Many re-solves of one problem after small changes, so that most find their optimum unmoved: each answer is
 * that of a fresh solve and carries its proof. Now and then a change that makes the problem infeasible or
 * unbounded, taken back at once; rows and columns come and go. */
#include <functional>

#include "support/fresh_solves.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kProblems = 30;
#else
constexpr unsigned kProblems = 300;
#endif
constexpr int kSteps = 60;
constexpr double kSmall = 1.0 / 64;

class ResolveSequences : public support::WithFreshSolves {
 protected:
  /* One edit of the current problem; what takes it back goes to undo_ when it must not stay. */
  int edit(support::LpMaker& maker, ProbHandle lp) {
    const int n = TVKgetnumcols(env_, lp), m = TVKgetnumrows(env_, lp);
    const int j = n > 0 ? maker.below(n) : -1, i = m > 0 ? maker.below(m) : -1;
    switch (maker.below(20)) {
      case 0:
      case 1:
      case 2:
      case 3:
        return j < 0 ? 0 : nudge_bound(maker, lp, j);
      case 4:
      case 5:
      case 6:
        return j < 0 ? 0 : nudge_cost(maker, lp, j);
      case 7:
      case 8:
      case 9:
        return i < 0 ? 0 : nudge_row(maker, lp, i);
      case 10:
      case 11:
        return add_row(maker, lp, maker.chance(70) ? 1.0 : -kSmall);
      case 12:
        return add_column(maker, lp);
      case 13:
        trace_ += " delete-last-row";
        return m == 0 ? 0 : TVKdelrows(env_, lp, m - 1, m - 1);
      case 14:
        trace_ += " delete-rows";
        return delete_some(maker, lp, m, TVKdelsetrows);
      case 15:
        trace_ += " delete-columns";
        return delete_some(maker, lp, n, TVKdelsetcols);
      case 16:
        return j < 0 ? 0 : make_infeasible(lp, j);
      case 17:
        return j < 0 ? 0 : make_unbounded(lp, j);
      case 18:
        trace_ += " offset";
        return TVKchgobjoffset(env_, lp, maker.whole(9));
      default:
        return turn_round(lp, n);
    }
  }

  int nudge_bound(support::LpMaker& maker, ProbHandle lp, int j) {
    trace_ += " bound";
    double low, high;
    if (TVKgetlb(env_, lp, &low, j, j) != 0 || TVKgetub(env_, lp, &high, j, j) != 0) return -1;
    const bool lower = maker.chance(50);
    double& bound = lower ? low : high;
    if (std::fabs(bound) >= TVK_INFBOUND) {
      bound = maker.chance(50) || low >= high ? bound
              : lower                         ? std::min(high, 0.0) - 9
                                              : std::max(low, 0.0) + 9;
    } else {
      bound += maker.whole(2) * kSmall;
    }
    if (low > high) return 0;
    return TVKchgbds(env_, lp, 1, &j, lower ? "L" : "U", &bound);
  }

  int nudge_cost(support::LpMaker& maker, ProbHandle lp, int j) {
    trace_ += " cost";
    double cost;
    if (TVKgetobj(env_, lp, &cost, j, j) != 0) return -1;
    cost += maker.whole(2) * kSmall;
    return maker.chance(50) ? TVKchgobj(env_, lp, 1, &j, &cost) : TVKchgcoef(env_, lp, -1, j, cost);
  }

  int nudge_row(support::LpMaker& maker, ProbHandle lp, int i) {
    trace_ += " rhs";
    double rhs, range;
    char sense;
    if (TVKgetrhs(env_, lp, &rhs, i, i) != 0 || TVKgetsense(env_, lp, &sense, i, i) != 0) return -1;
    const double step = maker.whole(2) * kSmall;
    rhs += step;
    if (sense != 'R' || maker.chance(50)) {
      return maker.chance(50) ? TVKchgrhs(env_, lp, 1, &i, &rhs) : TVKchgcoef(env_, lp, i, -1, rhs);
    }
    if (TVKgetrngval(env_, lp, &range, i, i) != 0) return -1;
    if (maker.chance(50)) {  // the same sides, counted from the other end
      rhs += range - step;
      range = -range;
      if (const int code = TVKchgrhs(env_, lp, 1, &i, &rhs); code != 0) return code;
    } else {
      range += step;
    }
    return TVKchgrngval(env_, lp, 1, &i, &range);
  }

  /* A row that the present point meets with `room` to spare, or misses when that is negative. */
  int add_row(support::LpMaker& maker, ProbHandle lp, double room) {
    trace_ += room > 0 ? " slack-row" : " cut";
    const int n = TVKgetnumcols(env_, lp);
    std::vector<double> x(static_cast<std::size_t>(n) + 1), values;
    if (TVKgetx(env_, lp, x.data(), 0, n - 1) != 0) return 0;
    std::vector<int> index;
    double activity = 0;
    for (int k = 0; k < n; ++k) {
      if (!maker.chance(30)) continue;
      index.push_back(k);
      values.push_back(1 + maker.below(3));
      activity += values.back() * x[k];
    }
    const int begin = 0, entries = static_cast<int>(index.size());
    const bool less = maker.chance(50);
    const double rhs = less ? activity + room : activity - room;
    return TVKaddrows(env_, lp, 0, 1, entries, &rhs, less ? "L" : "G", &begin, index.data(), values.data(),
                      nullptr, nullptr);
  }

  int add_column(support::LpMaker& maker, ProbHandle lp) {
    trace_ += " column";
    const int m = TVKgetnumrows(env_, lp);
    std::vector<int> index;
    std::vector<double> values;
    for (int k = 0; k < m; ++k) {
      if (!maker.chance(30)) continue;
      index.push_back(k);
      values.push_back(maker.chance(50) ? 1 : -1);
    }
    const int begin = 0, entries = static_cast<int>(index.size());
    const double cost = TVKgetobjsen(env_, lp) * (maker.chance(70) ? 50 : maker.whole(3));
    const double low = maker.chance(70) ? 0 : maker.whole(2), high = low + 3;
    return TVKaddcols(env_, lp, 1, entries, &cost, &begin, index.data(), values.data(), &low, &high, nullptr);
  }

  int delete_some(support::LpMaker& maker, ProbHandle lp, int count,
                  int (*routine)(ConstEnvHandle, ProbHandle, int*)) {
    std::vector<int> marks(static_cast<std::size_t>(count) + 1, 0);
    for (int k = 0; k < count; ++k) marks[k] = maker.chance(8);
    return routine(env_, lp, marks.data());
  }

  int make_infeasible(ProbHandle lp, int j) {
    trace_ += " infeasible";
    double bound[2];
    if (TVKgetlb(env_, lp, bound, j, j) != 0 || TVKgetub(env_, lp, bound + 1, j, j) != 0) return -1;
    undo_ = [=, this] {
      const int both[] = {j, j};
      return TVKchgbds(env_, lp, 2, both, "LU", bound);
    };
    const double crossed[] = {7, 5};
    const int both[] = {j, j};
    return TVKchgbds(env_, lp, 2, both, "LU", crossed);
  }

  int make_unbounded(ProbHandle lp, int j) {
    trace_ += " unbounded";
    double bound, cost;
    if (TVKgetub(env_, lp, &bound, j, j) != 0 || TVKgetobj(env_, lp, &cost, j, j) != 0) return -1;
    undo_ = [=, this] {
      const int code = TVKchgobj(env_, lp, 1, &j, &cost);
      return code != 0 ? code : TVKchgbds(env_, lp, 1, &j, "U", &bound);
    };
    const double tempting = -1000 * TVKgetobjsen(env_, lp), open = TVK_INFBOUND;
    const int code = TVKchgobj(env_, lp, 1, &j, &tempting);
    return code != 0 ? code : TVKchgbds(env_, lp, 1, &j, "U", &open);
  }

  /* The other direction with the other signs: the same points are optimal, all duals change their signs. */
  int turn_round(ProbHandle lp, int n) {
    trace_ += " turn";
    std::vector<double> cost(static_cast<std::size_t>(n) + 1);
    std::vector<int> all;
    if (n > 0 && TVKgetobj(env_, lp, cost.data(), 0, n - 1) != 0) return -1;
    for (int k = 0; k < n; ++k) {
      all.push_back(k);
      cost[k] = -cost[k];
    }
    const int code = TVKchgobjsen(env_, lp, -TVKgetobjsen(env_, lp));
    return code != 0 || n == 0 ? code : TVKchgobj(env_, lp, n, all.data(), cost.data());
  }

  std::function<int()> undo_;
  std::string trace_;
};

TEST_F(ResolveSequences, AnswersAreThoseOfFreshSolves) {
  int failures = 0, optimal = 0, unmoved = 0;
  for (unsigned seed = 1; seed <= kProblems && failures < 5; ++seed) {
    support::LpMaker maker(seed);
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "edited");
    for (int status = 0; status != TVK_STATUS_OPTIMAL;) {
      const support::Lp first = maker.draw(5 + static_cast<int>(seed % 25));
      if (first.badly_scaled) continue;
      ASSERT_EQ(first.copy(env_, lp), 0);
      ASSERT_EQ(TVKdualopt(env_, lp), 0);
      status = TVKgetstat(env_, lp);
    }
    trace_.clear();
    for (int step = 0; step < kSteps; ++step) {
      undo_ = nullptr;
      for (int edits = 1 + maker.below(2); edits > 0 && !undo_; --edits)
        ASSERT_EQ(edit(maker, lp), 0) << trace_;
      for (bool back = false;; back = true) {
        const int method = maker.below(4);
        code = optimize(lp, method);
        const support::Lp model = support::read_back(env_, lp);
        const support::Outcome warm = support::outcome_of(env_, lp, model, code);
        const std::string wrong = judge(lp, warm, model, method);
        optimal += warm.status == TVK_STATUS_OPTIMAL;
        unmoved += warm.status == TVK_STATUS_OPTIMAL && warm.iterations == 0;
        if (!wrong.empty()) {
          ++failures;
          ADD_FAILURE() << "seed " << seed << " step " << step << " method " << method << " status "
                        << warm.status << " objective " << warm.objective << " after" << trace_ << '\n'
                        << wrong << support::describe(model);
          step = kSteps;
        }
        if (back || !undo_) break;
        trace_ += " back";
        ASSERT_EQ(undo_(), 0);
      }
    }
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
  }
  EXPECT_GT(optimal, static_cast<int>(kProblems) * kSteps / 3);
  EXPECT_GT(unmoved, optimal / 2);
}

}  // namespace
