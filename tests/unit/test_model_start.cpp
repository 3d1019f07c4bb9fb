/* What a change of the model leaves of solution and starting basis; loading by move; names generated for
 * writers. */
#include <functional>

#include "env/handles.h"
#include "model/store/default_names.h"
#include "model/store/load.h"
#include "model/store/model.h"
#include "support/model_fixture.h"

namespace {

using tovik::Problem;
using Statuses = std::vector<int>;

class Starts : public support::WithModel {
 protected:
  /* A basis of the columns x and z and the slack of c2, with a solution. */
  void SetUp() override {
    WithModel::SetUp();
    problem_ = tovik::from_handle(lp_);
    set_basis();
  }
  void set_basis() {
    problem_->start.column_status = {1, 0, 1};
    problem_->start.row_status = {0, 1, 2};
    problem_->start.row_primal = {1, 2, 3};
    problem_->status = 1;
  }
  void expect_basis(const Statuses& columns, const Statuses& rows) {
    EXPECT_EQ(problem_->start.column_status, columns);
    EXPECT_EQ(problem_->start.row_status, rows);
  }
  Problem* problem_ = nullptr;
};

TEST_F(Starts, GrowWithTheModel) {
  const double lower[] = {-8, -1e20, -1e20, -1}, upper[] = {2, 5, 1e20, 1e20};
  ASSERT_EQ(TVKnewcols(env_, lp_, 4, nullptr, lower, upper, nullptr, nullptr), 0);
  ASSERT_EQ(TVKnewrows(env_, lp_, 2, nullptr, nullptr, nullptr, nullptr), 0);
  expect_basis({1, 0, 1, 2, 2, 3, 0}, {0, 1, 2, 1, 1});
  EXPECT_EQ(problem_->status, 0);
  EXPECT_EQ(problem_->start.change_level, 3);
  EXPECT_TRUE(problem_->start.row_primal.empty());
}

TEST_F(Starts, SurviveDeletionsThatLeaveABasis) {
  ASSERT_EQ(TVKdelcols(env_, lp_, 1, 1), 0);
  expect_basis({1, 1}, {0, 1, 2});
  ASSERT_EQ(TVKdelrows(env_, lp_, 1, 1), 0);
  expect_basis({1, 1}, {0, 2});
  int marks[] = {0, 1};
  ASSERT_EQ(TVKdelsetrows(env_, lp_, marks), 0);
  expect_basis({1, 1}, {0});
  EXPECT_FALSE(problem_->start.has_basis()) << "two basics, one row: for an optimizer to mend";
}

TEST_F(Starts, EachChangeDiscardsItsShare) {
  const int index = 0;
  const double value = 1;
  enum Left { everything, basis, nothing };
  const struct {
    const char* what;
    std::function<int()> change;
    Left left;
  } cases[] = {
      {"name", [&] { return TVKchgname(env_, lp_, 'c', 0, "n"); }, everything},
      {"objective name", [&] { return TVKcopyobjname(env_, lp_, "n"); }, everything},
      {"objective", [&] { return TVKchgobj(env_, lp_, 1, &index, &value); }, basis},
      {"offset", [&] { return TVKchgobjoffset(env_, lp_, 3); }, basis},
      {"objective sense", [&] { return TVKchgobjsen(env_, lp_, -1); }, basis},
      {"bounds", [&] { return TVKchgbds(env_, lp_, 1, &index, "U", &value); }, basis},
      {"tightened bounds", [&] { return TVKtightenbds(env_, lp_, 1, &index, "U", &value); }, basis},
      {"right-hand side", [&] { return TVKchgcoef(env_, lp_, 0, -1, 2); }, basis},
      {"range", [&] { return TVKchgcoef(env_, lp_, 2, -2, 2); }, basis},
      {"coefficient", [&] { return TVKchgcoef(env_, lp_, 0, 0, 2); }, nothing},
      {"sense", [&] { return TVKchgsense(env_, lp_, 1, &index, "E"); }, nothing},
      {"types", [&] { return TVKchgctype(env_, lp_, 1, &index, "I"); }, basis},
      {"copy", [&] { return support::SmallModel().copy(env_, lp_); }, nothing},
      {"failed change", [&] { return TVKchgcoef(env_, lp_, 9, 0, 2) == 1200 ? 0 : 1; }, everything},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    set_basis();
    ASSERT_EQ(c.change(), 0);
    EXPECT_EQ(problem_->status, c.left == everything ? 1 : 0);
    EXPECT_EQ(problem_->start.has_basis(), c.left != nothing);
  }
  problem_->type = 3;
  EXPECT_EQ(TVKchgname(env_, lp_, 'c', 0, "n"), 1023);
  EXPECT_EQ(TVKdelsetcols(env_, lp_, nullptr), 1023);
  EXPECT_EQ(support::SmallModel().copy(env_, lp_), 1023);
  EXPECT_EQ(TVKaddrows(env_, lp_, -1, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            1023);
}

TEST_F(Starts, ArraysOfASolutionFollowSingleChanges) {
  problem_->solution = std::make_unique<tovik::Solution>();
  problem_->solution->dj = {1, 2, 3};
  problem_->solution->slack = {4, 5, 6};
  ASSERT_EQ(TVKchgcoef(env_, lp_, -1, 1, 3), 0);  // from -2
  ASSERT_EQ(TVKchgcoef(env_, lp_, 1, -1, 3), 0);  // from 1
  EXPECT_EQ(problem_->solution->dj, (std::vector<double>{1, 7, 3}));
  EXPECT_EQ(problem_->solution->slack, (std::vector<double>{4, 7, 6}));
}

TEST_F(Starts, LoadingByMoveTakesEverythingOver) {
  tovik::model::ModelData data;
  data.problem_name = "loaded";
  data.objective = {1, 2};
  data.lower = {0, -2e20};
  data.upper = {1, 3e20};
  data.types = {'B', 'C'};
  data.rhs = {5};
  data.sense = {'L'};
  data.start = {0, 3, 4};
  data.index = {0, 0, 0, 0};
  data.value = {1, -1, 0, 7};
  data.column_names.add("a");
  data.column_names.add("b");
  const double* const place = data.value.data();
  ASSERT_TRUE(tovik::model::load(*problem_->env, *problem_, std::move(data)).ok());
  EXPECT_EQ(problem_->type, 1);
  EXPECT_EQ(problem_->name, "loaded");
  EXPECT_EQ(problem_->model->column(1).value, place) << "the matrix is moved, not copied";
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 1) << "entries that cancel are gone";
  EXPECT_EQ(coefficient(0, 1), 7);
  EXPECT_EQ(lower(1), -1e20);
  EXPECT_EQ(column_name(1), "b");
  expect_basis({}, {});
}

TEST_F(Starts, NamesForWriters) {
  using namespace tovik::model;
  DefaultNames names;
  for (const int count : {9, 10, 12, 1000}) {
    ASSERT_TRUE(make_default_names(*problem_->env, kRowFamily, count, names).ok());
    EXPECT_EQ(warnings(), "Default row    names c1, c2 ... being created.\n");
    EXPECT_EQ(names.name(0), std::string("c1"));
    EXPECT_EQ(names.name(count - 1), "c" + std::to_string(count));
    EXPECT_EQ(names.longest(), static_cast<int>(std::to_string(count).size()) + 1);
    EXPECT_EQ(names.name(1) - names.name(0), names.longest() + 1);
  }
  EXPECT_EQ(names.make('x', 2000000000).code(), 1001);
  EXPECT_EQ(names.name(0), std::string("c1"));
}

}  // namespace
