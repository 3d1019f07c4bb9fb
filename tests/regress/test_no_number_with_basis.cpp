/* Data that are no numbers reached the simplex engine where a starting basis was there: it called them optimal, or
 * never ended. Every way that asks for the engine refuses them now, once, and goes on when they are mended. */
#include <filesystem>
#include <functional>
#include <limits>

#include "support/solve_fixture.h"

namespace {

using support::assignment;
using support::Lp;

class NoNumberWithBasis : public support::WithSolves {
 protected:
  void SetUp() override {
    WithSolves::SetUp();
    restart_ = std::filesystem::temp_directory_path() / "tovik-test-restart.sav";
  }
  void TearDown() override {
    std::filesystem::remove(restart_);
    WithSolves::TearDown();
  }
  void set_slack_basis(ProbHandle lp) {
    const std::vector<int> columns(static_cast<std::size_t>(model_.columns), TVK_AT_LOWER),
        rows(static_cast<std::size_t>(model_.rows), TVK_BASIC);
    ASSERT_EQ(TVKcopybase(env_, lp, columns.data(), rows.data()), 0);
  }
  /* Every routine that asks for the engine. */
  void check_all_refuse(ProbHandle lp) {
    std::vector<double> x(static_cast<std::size_t>(model_.rows + model_.columns));
    int worst = 0;
    const std::function<int()> calls[] = {
        [&] { return TVKlpopt(env_, lp); },
        [&] { return TVKprimopt(env_, lp); },
        [&] { return TVKdualopt(env_, lp); },
        [&] { return TVKsiftopt(env_, lp); },
        [&] { return TVKbaropt(env_, lp); },
        [&] { return TVKhybbaropt(env_, lp, 'd'); },
        [&] { return TVKgetbasehead(env_, lp, nullptr, x.data()); },
        [&] { return TVKftran(env_, lp, x.data()); },
        [&] { return TVKcheckpfeas(env_, lp, &worst); },
        [&] { return TVKpresolve(env_, lp, 0); },
    };
    for (const auto& call : calls) {
      SCOPED_TRACE(&call - calls);
      errors();
      const int code = call();
      if (code == TVK_ERROR_NO_BASIS)
        continue;  // lost with a change of the matrix: nothing is asked of the engine
      EXPECT_EQ(code, TVK_ERROR_NOT_A_NUMBER);
      const std::string text = errors();
      EXPECT_EQ(text.find("1225"), text.rfind("1225")) << text;
      EXPECT_EQ(TVKgetstat(env_, lp), 0);
    }
  }

  const double nan_ = std::numeric_limits<double>::quiet_NaN();
  const Lp model_ = assignment(3, 1);
  std::string restart_;
};

TEST_F(NoNumberWithBasis, CopiedData) {
  const std::function<void(Lp&)> spoils[] = {
      [&](Lp& m) { m.obj[1] = nan_; }, [&](Lp& m) { m.rhs[1] = nan_; }, [&](Lp& m) { m.lb[1] = nan_; },
      [&](Lp& m) { m.ub[0] = nan_; },  [&](Lp& m) { m.val[1] = nan_; },
  };
  for (const auto& spoil : spoils) {
    for (const int presolve : {0, 1}) {
      SCOPED_TRACE(std::to_string(&spoil - spoils) + ' ' + std::to_string(presolve));
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
      Lp model = model_;
      spoil(model);
      ProbHandle lp = load(model);
      set_slack_basis(lp);
      check_all_refuse(lp);
      if (TVKwriterestart(env_, lp, restart_.c_str()) == 0) {
        ProbHandle read = load(model_);
        if (TVKreadcopyrestart(env_, read, restart_.c_str()) == 0) check_all_refuse(read);
      }
    }
  }
}

TEST_F(NoNumberWithBasis, ChangedDataAfterASolveThatGoOnWhenMended) {
  const int row = 1, column = 1;
  const char both = 'B';
  const double one = 1, zero = 0;
  const int begin = 0;
  const std::pair<std::function<int(ProbHandle)>, std::function<int(ProbHandle)>> changes[] = {
      {[&](ProbHandle lp) { return TVKchgobj(env_, lp, 1, &column, &nan_); },
       [&](ProbHandle lp) { return TVKchgobj(env_, lp, 1, &column, &model_.obj[1]); }},
      {[&](ProbHandle lp) { return TVKchgrhs(env_, lp, 1, &row, &nan_); },
       [&](ProbHandle lp) { return TVKchgrhs(env_, lp, 1, &row, &one); }},
      {[&](ProbHandle lp) { return TVKchgbds(env_, lp, 1, &column, &both, &nan_); },
       [&](ProbHandle lp) {
         const int twice[] = {1, 1};
         const double bounds[] = {0, TVK_INFBOUND};
         return TVKchgbds(env_, lp, 2, twice, "LU", bounds);
       }},
      {[&](ProbHandle lp) { return TVKchgcoef(env_, lp, 1, 4, nan_); },
       [&](ProbHandle lp) { return TVKchgcoef(env_, lp, 1, 4, 1); }},
      {[&](ProbHandle lp) {
         return TVKaddrows(env_, lp, 0, 1, 1, &one, "L", &begin, &column, &nan_, nullptr, nullptr);
       },
       [&](ProbHandle lp) { return TVKdelrows(env_, lp, model_.rows, model_.rows); }},
      {[&](ProbHandle lp) {
         return TVKaddcols(env_, lp, 1, 1, &zero, &begin, &row, &nan_, nullptr, nullptr, nullptr);
       },
       [&](ProbHandle lp) { return TVKdelcols(env_, lp, model_.columns, model_.columns); }},
  };
  for (const auto& [spoil, mend] : changes) {
    for (const int presolve : {0, 1}) {
      SCOPED_TRACE(std::to_string(presolve));
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
      ProbHandle lp = load(model_);
      ASSERT_EQ(TVKlpopt(env_, lp), 0);
      const double best = objective(lp);
      ASSERT_EQ(spoil(lp), 0);
      check_all_refuse(lp);
      ASSERT_EQ(mend(lp), 0);
      ASSERT_EQ(TVKlpopt(env_, lp), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      EXPECT_NEAR(objective(lp), best, 1e-9);
    }
  }
}

}  // namespace
