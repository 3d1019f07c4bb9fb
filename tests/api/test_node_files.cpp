/* Node files of the mixed-integer search: the same nodes and answers wherever open nodes are kept, nothing left behind, errors
 * that keep the incumbent and the tree where TVK_PARAM_WORKDIR cannot hold them. */
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "support/knapsack_models.h"
#include "support/scratch_files.h"

namespace {

namespace fs = std::filesystem;

class NodeFiles : public support::KnapsackModels {
 protected:
  void SetUp() override {
    KnapsackModels::SetUp();
    std::string name = (fs::temp_directory_path() / "nodes-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    directory_ = name;
    work_in(name);
  }
  void TearDown() override {
    fs::remove_all(directory_);
    KnapsackModels::TearDown();
  }
  /* A search of some thousand nodes, of which some hundred are open at a time. */
  ProbHandle model() { return knapsacks(80, 15, 11); }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  void set_memory(double megabytes) { ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_WORKMEM, megabytes), 0); }
  void work_in(const std::string& directory) {
    ASSERT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, directory.c_str()), 0);
  }
  struct Result {
    int status, nodes, left, iterations;
    double objective, bound;
    std::vector<double> x;
    bool operator==(const Result&) const = default;
  };
  Result result(ProbHandle lp) {
    double bound = NAN;
    EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
    return {TVKgetstat(env_, lp),
            TVKgetnodecnt(env_, lp),
            TVKgetnodeleftcnt(env_, lp),
            TVKgetitcnt(env_, lp),
            objective(lp),
            bound,
            x(lp)};
  }
  static int look(ConstEnvHandle, void*, int, void* self) {
    auto& fixture = *static_cast<NodeFiles*>(self);
    fixture.always_empty_ = fixture.always_empty_ && fs::is_empty(fixture.directory_);
    return 0;
  }

  fs::path directory_;
  bool always_empty_ = true;
};

TEST_F(NodeFiles, ChangeNeitherNodesNorAnswers) {
  set(TVK_PARAM_MIPDISPLAY, 2);
  set(TVK_PARAM_MIPINTERVAL, 20);
  set(TVK_PARAM_NODELIM, 700);
  ASSERT_EQ(TVKsetinfocallbackfunc(env_, look, this), 0);
  for (const int rule : {0, 1, 2, 3}) {
    set(TVK_PARAM_NODESEL, rule);
    std::vector<Result> results;
    for (const int kind : {0, 1, 2, 3}) {
      SCOPED_TRACE(testing::Message() << "rule " << rule << ", kind " << kind);
      ProbHandle lp = model();
      set(TVK_PARAM_NODEFILEIND, kind);
      set_memory(kind == 3 ? 0 : 0.01);
      log_text_.clear();
      solve(lp);
      results.push_back(result(lp));
      EXPECT_GT(results.back().nodes, 500);
      EXPECT_EQ(results.back(), results.front());
      const std::regex packed("Nodefile size = +[0-9.]+ MB \\([0-9.]+ MB after compression\\)\n"),
          plain("Nodefile size = +[0-9.]+ MB\n");
      const bool is_deep = rule == 0;  // depth first leaves few nodes open
      EXPECT_TRUE(is_deep || std::regex_search(log_text_, packed) == (kind == 1 || kind == 3)) << log_text_;
      EXPECT_TRUE(is_deep || std::regex_search(log_text_, plain) == (kind == 2));
      EXPECT_TRUE(fs::is_empty(directory_));
      TVKfreeprob(env_, &lp);
    }
  }
  EXPECT_TRUE(always_empty_);  // while files were open, too

  // Memory enough: none.
  set_memory(128);
  log_text_.clear();
  solve(model());
  EXPECT_EQ(log_text_.find("Nodefile"), std::string::npos);
}

TEST_F(NodeFiles, StayBetweenCallsAndMayChangeTheirKind) {
  ProbHandle whole = model(), parts = model();
  set(TVK_PARAM_NODEFILEIND, 0);
  ASSERT_EQ(solve(whole), TVK_STATUS_MIP_OPTIMAL);
  set_memory(0);
  int status = 0;
  for (int call = 0; call < 200; ++call) {
    set(TVK_PARAM_NODEFILEIND, call % 4);
    set(TVK_PARAM_NODELIM, 100 * (call + 1));
    status = solve(parts);
    if (status != TVK_STATUS_MIP_NODE_LIMIT) break;
  }
  EXPECT_EQ(status, TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(objective(parts), objective(whole));
  EXPECT_GT(TVKgetnodecnt(env_, parts), 200);
}

TEST_F(NodeFiles, PopulateUsesThem) {
  set(TVK_PARAM_SOLNPOOLINTENSITY, 4);
  set(TVK_PARAM_POPULATELIM, 2000);
  set_memory(0);
  set(TVK_PARAM_MIPDISPLAY, 2);
  set(TVK_PARAM_MIPINTERVAL, 20);
  std::vector<double> means;
  for (const int kind : {0, 2}) {
    set(TVK_PARAM_NODEFILEIND, kind);
    ProbHandle lp = knapsacks(20, 2, 5);
    ASSERT_EQ(TVKpopulate(env_, lp), 0) << errors();
    double mean = NAN;
    EXPECT_EQ(TVKgetsolnpoolmeanobjval(env_, lp, &mean), 0);
    means.push_back(mean);
    EXPECT_EQ(log_text_.find("Nodefile") != std::string::npos, kind != 0);
  }
  EXPECT_EQ(means[0], means[1]);
}

TEST_F(NodeFiles, FailuresKeepTheIncumbentAndTheTree) {
  set(TVK_PARAM_NODEFILEIND, 0);
  ProbHandle right = model();
  ASSERT_EQ(solve(right), TVK_STATUS_MIP_OPTIMAL);
  set_memory(0);
  for (const int kind : {2, 3}) {
    for (const bool without_room : {false, true}) {
      SCOPED_TRACE(testing::Message() << kind << (without_room ? ", no room" : ", no directory"));
      set(TVK_PARAM_NODEFILEIND, kind);
      ProbHandle lp = model();
      work_in(without_room ? directory_.string() : (directory_ / "missing").string());
      rlimit before{};
      ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
      if (without_room) {  // the signal that comes with a write beyond it would end the program
        const rlimit little{100, before.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
      }
      const int code = TVKmipopt(env_, lp);
      ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
      EXPECT_EQ(code, without_room ? TVK_ERROR_TEMPORARY_FILE_WRITE : TVK_ERROR_TEMPORARY_FILE_OPEN);
      EXPECT_TRUE(fs::is_empty(directory_));
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_MIP_ERROR);
      EXPECT_LE(objective(lp), objective(right));
      EXPECT_GT(TVKgetnodeleftcnt(env_, lp), 0);
      const int nodes = TVKgetnodecnt(env_, lp);
      double bound = NAN;
      EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
      EXPECT_GE(bound, objective(right) - 1e-6);

      work_in(directory_.string());
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);  // goes on
      EXPECT_EQ(objective(lp), objective(right));
      EXPECT_GT(TVKgetnodecnt(env_, lp), nodes);
      TVKfreeprob(env_, &lp);
    }
  }
}

TEST_F(NodeFiles, WhatCannotBeReadIsSearchedAnew) {
  set_memory(0);
  set(TVK_PARAM_NODEFILEIND, 2);
  set(TVK_PARAM_NODELIM, 700);
  ProbHandle lp = model();
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT);
  const double before = objective(lp);
  support::truncate_scratch_files();
  set(TVK_PARAM_NODELIM, 2100000000);
  EXPECT_EQ(TVKmipopt(env_, lp), TVK_ERROR_TEMPORARY_FILE_READ);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_MIP_ERROR);
  EXPECT_GE(objective(lp), before);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_GE(objective(lp), before);
}

}  // namespace
