/* Factors of the barrier optimizer that do not fit into TVK_PARAM_WORKMEM: the same answers, nothing left behind, errors where
 * TVK_PARAM_WORKDIR cannot hold them. */
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/solve_fixture.h"

namespace {

namespace fs = std::filesystem;
using support::assignment;
using support::Lp;

class BarrierStorage : public support::WithSolves {
 protected:
  void SetUp() override {
    WithSolves::SetUp();
    std::string name = (fs::temp_directory_path() / "barrier-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    directory_ = name;
    work_in(name);
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &results_text_, support::keep_text), 0);
  }
  void TearDown() override {
    fs::remove_all(directory_);
    WithSolves::TearDown();
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  void set_memory(double megabytes) { ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_WORKMEM, megabytes), 0); }
  void work_in(const std::string& directory) {
    ASSERT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, directory.c_str()), 0);
  }
  std::vector<double> values(ProbHandle lp, int columns) {
    std::vector<double> x(static_cast<std::size_t>(columns));
    EXPECT_EQ(TVKgetx(env_, lp, x.data(), 0, columns - 1), 0);
    return x;
  }

  fs::path directory_;
  std::string results_text_;
};

constexpr int kArguments[] = {-1, 'p', 'd'};  // of TVKhybbaropt

TEST_F(BarrierStorage, AnswersAreTheSameToTheLastDigit) {
  const Lp model = assignment(30, TVK_MIN);
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    for (const int threads : {1, 2}) {
      set(TVK_PARAM_THREADS, threads);
      for (const int argument : kArguments) {
        SCOPED_TRACE(testing::Message() << presolve << ' ' << threads << ' ' << argument);
        ProbHandle lp = load(model), other = load(model);
        set_memory(128);
        ASSERT_EQ(TVKhybbaropt(env_, lp, argument), 0);
        EXPECT_EQ(results_text_.find("ut-of-core"), std::string::npos);
        set_memory(0);
        ASSERT_EQ(TVKhybbaropt(env_, other, argument), 0);
        const std::string log = std::exchange(results_text_, {});
        std::size_t at = 0;
        for (const std::string& line :
             {std::string("  Total FP ops to factor    = "),
              "Creating directory " + directory_.string() + "/",
              std::string(
                  " for Barrier out-of-core files\nOut-of-core factorization with 0MB of working storage\n"
                  "WARNING: not enough working storage allocated,"),
              std::string("increasing to "),
              std::string("MB\nWriting 0MB factor matrix and 0MB update matrix\n"),
              std::string("Prim Inf")}) {
          const std::size_t found = log.find(line, at);
          ASSERT_NE(found, std::string::npos) << line << "in\n" << log;
          at = found;
        }
        EXPECT_EQ(TVKgetstat(env_, other), TVK_STATUS_OPTIMAL);
        EXPECT_EQ(values(lp, model.columns), values(other, model.columns));
        EXPECT_EQ(TVKgetbaritcnt(env_, lp), TVKgetbaritcnt(env_, other));
        EXPECT_TRUE(fs::is_empty(directory_));
        EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
        EXPECT_EQ(TVKfreeprob(env_, &other), 0);
      }
    }
  }
}

TEST_F(BarrierStorage, FailuresAreErrorsAfterWhichAllGoesOn) {
  const Lp model = assignment(30, TVK_MIN);
  ProbHandle right = load(model);
  ASSERT_EQ(TVKdualopt(env_, right), 0);
  set_memory(0);
  set(TVK_PARAM_LPMETHOD, 4);
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    for (const bool without_room : {false, true}) {
      SCOPED_TRACE(testing::Message()
                   << "presolve " << presolve << (without_room ? ", no room" : ", no directory"));
      ProbHandle lp = load(model);
      work_in(without_room ? directory_.string() : (directory_ / "missing").string());
      rlimit before{};
      ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
      if (without_room) {  // the signal that comes with a write beyond it would end the program
        const rlimit little{100, before.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
      }
      const int code = without_room ? TVK_ERROR_TEMPORARY_FILE_WRITE : TVK_ERROR_TEMPORARY_FILE_OPEN;
      const int alone = TVKbaropt(env_, lp), by_method = TVKlpopt(env_, lp);
      int with_crossover[] = {0, 0, 0};
      for (int k = 0; k < 3; ++k) with_crossover[k] = TVKhybbaropt(env_, lp, kArguments[k]);
      ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
      EXPECT_EQ(alone, code);
      EXPECT_EQ(by_method, code);
      for (const int status : with_crossover) EXPECT_EQ(status, code);
      EXPECT_TRUE(fs::is_empty(directory_));
      EXPECT_EQ(TVKgetstat(env_, lp), 0);
      EXPECT_EQ(TVKgetnumcols(env_, lp), model.columns);

      work_in(directory_.string());
      ASSERT_EQ(TVKhybbaropt(env_, lp, 'p'), 0);
      EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
      EXPECT_NEAR(objective(lp), objective(right), 1e-6 * objective(right));
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    }
  }
  EXPECT_EQ(TVKfreeprob(env_, &right), 0);
}

/* The simplex may not go far enough: what the barrier finds counts, and where it drops out the simplex' limit. */
TEST_F(BarrierStorage, ClonesOfTheConcurrentOptimizerUseTheCallersDirectory) {
  const Lp model = assignment(30, TVK_MIN);
  set_memory(0);
  set(TVK_PARAM_LPMETHOD, 6);
  set(TVK_PARAM_THREADS, 2);
  set(TVK_PARAM_ITLIM, 20);
  for (const bool is_there : {true, false}) {
    SCOPED_TRACE(is_there);
    if (!is_there) work_in((directory_ / "missing").string());
    ProbHandle lp = load(model);
    EXPECT_EQ(TVKlpopt(env_, lp), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), is_there ? TVK_STATUS_OPTIMAL : TVK_STATUS_ITERATION_LIMIT);
    EXPECT_EQ(warnings(), is_there ? ""
                                   : "Warning: concurrent optimization goes on without barrier: Could not "
                                     "open temporary file.\n");
    EXPECT_TRUE(fs::is_empty(directory_));
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

}  // namespace
