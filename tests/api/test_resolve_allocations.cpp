/* A re-solve that finds its optimum unmoved takes no memory: neither the change nor the optimizer, the
 * occasional complete check included. */
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <new>
#include <random>

#include "support/environment_fixture.h"

namespace {
thread_local long allocations = 0;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size != 0 ? size : 1);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace {

constexpr int kFrom = 15, kTo = 25;  // places of a transport problem

class ResolveAllocations : public support::WithEnvironment {
 protected:
  /* Random costs and amounts; with more to send than asked for, so that some rows are slack. Entries of mixed
   * size, so that the model is scaled. */
  void SetUp() override {
    WithEnvironment::SetUp();
    std::mt19937 random(5);
    int code = 0;
    lp_ = TVKcreateprob(env_, &code, "transport");
    const int columns = kFrom * kTo;
    std::vector<double> rhs, cost(columns), value;
    std::string senses;
    std::vector<int> begin, index;
    for (int i = 0; i < kFrom; ++i) {
      rhs.push_back(60 + static_cast<double>(random() % 50));
      senses += 'L';
    }
    for (int i = 0; i < kTo; ++i) {
      rhs.push_back(40 + static_cast<double>(random() % 7));
      senses += 'G';
    }
    for (double& c : cost) c = 10 + static_cast<double>(random() % 1000) / 16;
    ASSERT_EQ(TVKnewcols(env_, lp_, columns, cost.data(), nullptr, nullptr, nullptr, nullptr), 0);
    for (int i = 0; i < kFrom + kTo; ++i) {
      begin.push_back(static_cast<int>(index.size()));
      const double size = i % 3 == 0 ? 100 : 1;
      rhs[i] *= size;
      for (int k = 0; k < (i < kFrom ? kTo : kFrom); ++k) {
        index.push_back(i < kFrom ? i * kTo + k : k * kTo + i - kFrom);
        value.push_back(size);
      }
    }
    ASSERT_EQ(TVKaddrows(env_, lp_, 0, kFrom + kTo, static_cast<int>(index.size()), rhs.data(),
                         senses.c_str(), begin.data(), index.data(), value.data(), nullptr, nullptr),
              0);
    ASSERT_EQ(TVKdualopt(env_, lp_), 0);
    ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
    columns_.resize(columns);
    rows_.resize(kFrom + kTo);
    ASSERT_EQ(TVKgetbase(env_, lp_, columns_.data(), rows_.data()), 0);
  }

  int set_bound(int j, const char* which, double value) { return TVKchgbds(env_, lp_, 1, &j, which, &value); }

  ProbHandle lp_ = nullptr;
  std::vector<int> columns_, rows_;
};

TEST_F(ResolveAllocations, NoneWithoutPivots) {
  constexpr int kSolves = 1300;
  const auto first = [](const std::vector<int>& status, int wanted) {
    return static_cast<int>(std::find(status.begin(), status.end(), wanted) - status.begin());
  };
  const int nonbasic = first(columns_, 0), basic = first(columns_, 1);
  const int tight = kFrom + first({rows_.begin() + kFrom, rows_.end()}, 0);
  double cost_nonbasic, cost_basic, rhs;
  ASSERT_EQ(TVKgetobj(env_, lp_, &cost_nonbasic, nonbasic, nonbasic), 0);
  ASSERT_EQ(TVKgetobj(env_, lp_, &cost_basic, basic, basic), 0);
  ASSERT_EQ(TVKgetrhs(env_, lp_, &rhs, tight, tight), 0);
  double best = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &best), 0);
  const struct {
    const char* what;
    std::function<int(double)> change;
    bool objective_moves;
  } kinds[] = {
      {"upper bound", [&](double d) { return set_bound(nonbasic, "U", 1e5 + d); }, false},
      {"lower bound", [&](double d) { return set_bound(nonbasic, "L", d); }, true},
      {"cost of a nonbasic column",
       [&](double d) {
         const double cost = cost_nonbasic + d;
         return TVKchgobj(env_, lp_, 1, &nonbasic, &cost);
       },
       false},
      {"cost of a basic column",
       [&](double d) {
         const double cost = cost_basic + d;
         return TVKchgobj(env_, lp_, 1, &basic, &cost);
       },
       true},
      {"right-hand side",
       [&](double d) {
         const double value = rhs + d;
         return TVKchgrhs(env_, lp_, 1, &tight, &value);
       },
       true},
      {"coefficient of the right-hand side",
       [&](double d) { return TVKchgcoef(env_, lp_, tight, -1, rhs + d); }, true},
      {"offset", [&](double d) { return TVKchgobjoffset(env_, lp_, d); }, true},
  };
  int (*const optimizers[])(ConstEnvHandle, ProbHandle) = {TVKdualopt, TVKprimopt, TVKlpopt};
  for (const auto& kind : kinds) {
    for (const auto optimize : optimizers) {
      SCOPED_TRACE(kind.what);
      ASSERT_EQ(optimize(env_, lp_), 0);  // makes what lives on
      long taken = 0;
      for (int k = 0; k < kSolves; ++k) {
        const long before = allocations;
        const int changed = kind.change(k % 2 == 0 ? 1e-3 : 0.0);
        const int solved = optimize(env_, lp_);
        taken += allocations - before;
        ASSERT_EQ(changed, 0);
        ASSERT_EQ(solved, 0);
        ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
        ASSERT_EQ(TVKgetitcnt(env_, lp_), 0);
        double value = 0;
        ASSERT_EQ(TVKgetobjval(env_, lp_, &value), 0);
        if (k % 2 == 0) {
          ASSERT_EQ(std::fabs(value - best) > 1e-7, kind.objective_moves) << value - best;
        } else {
          ASSERT_NEAR(value, best, 1e-9 * best) << k;
        }
      }
      EXPECT_EQ(taken, 0);
    }
  }
}

}  // namespace
