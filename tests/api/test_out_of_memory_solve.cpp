/* Memory runs out at each allocation of a session in turn - opening, reading, changing, solving, asking:
 * every call succeeds or says 1001 and leaves the problem as it was; said again it succeeds; nothing is left
 * behind. */
#include <cstdlib>
#include <functional>
#include <new>

#include "support/describe_problem.h"

namespace {

thread_local long allocations_left = -1;  // -1: all succeed
thread_local bool fails_on = false;       // the allocations after the failing one fail as well
thread_local bool failed = false;
thread_local long outstanding = 0;

void* allocate(std::size_t size) {
  if (allocations_left == 0) {
    failed = true;
    if (!fails_on) allocations_left = -1;
    return nullptr;
  }
  if (allocations_left > 0) --allocations_left;
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory != nullptr) ++outstanding;
  return memory;
}

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  if (memory != nullptr) --outstanding;
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept {
  operator delete(memory);
}

namespace {

/* One session; the allocation number `fail_at` of its calls fails. */
class Session {
 public:
  Session(long fail_at, bool on, const char* file) : remaining_(fail_at), on_(on), file_(file) {}

  void run() {
    int status = 0;
    call("open", [&] { return (env_ = TVKopenTOVIK(&status)) == nullptr ? status : 0; });
    call("create", [&] { return (lp_ = TVKcreateprob(env_, &status, "memory")) == nullptr ? status : 0; });
    call("read", [&] { return TVKreadcopyprob(env_, lp_, file_, nullptr); });
    call("dual", [&] { return TVKdualopt(env_, lp_); });
    ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
    ask();
    change();
    call("primal", [&] { return TVKprimopt(env_, lp_); });
    ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
    call("automatic", [&] { return TVKlpopt(env_, lp_); });
    const int column = 0;
    double down, up;
    call("strong branching", [&] { return TVKstrongbranch(env_, lp_, &column, 1, &down, &up, 100); });
    call("pivot in", [&] { return TVKpivotin(env_, lp_, &column, 1); });
    call("after the pivot", [&] { return TVKdualopt(env_, lp_); });
    ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
    solve_again();
    ASSERT_EQ(TVKcloseTOVIK(&env_), 0);
  }
  bool reached() const { return reached_; }

 private:
  void call(const char* what, const std::function<int()>& routine) {
    if (reached_) {
      ASSERT_EQ(routine(), 0) << what;
      return;
    }
    const std::string before = text();
    failed = false;
    fails_on = on_;
    allocations_left = remaining_;
    const int code = routine();
    remaining_ = allocations_left;
    allocations_left = -1;
    if (!failed) {
      ASSERT_EQ(code, 0) << what;
      return;
    }
    reached_ = true;
    if (code == 0) return;
    ASSERT_EQ(code, 1001) << what;
    ASSERT_EQ(text(), before) << what;
    ASSERT_EQ(routine(), 0) << what << " said again";
  }

  void ask() {
    const auto columns = static_cast<std::size_t>(TVKgetnumcols(env_, lp_));
    const auto rows = static_cast<std::size_t>(TVKgetnumrows(env_, lp_));
    std::vector<double> low(columns + rows, 1.0), high(columns + rows, 1.0);
    std::vector<int> head(rows);
    const int n = static_cast<int>(columns), m = static_cast<int>(rows);
    call("head", [&] { return TVKgetbasehead(env_, lp_, head.data(), low.data()); });
    call("inverse row", [&] { return TVKgetbaseinvrow(env_, lp_, 0, low.data()); });
    call("tableau", [&] { return TVKgettableaurow(env_, lp_, 0, low.data(), high.data()); });
    call("solve", [&] { return TVKftran(env_, lp_, low.data()); });
    call("cost range", [&] { return TVKgetobjsens(env_, lp_, 0, n - 1, low.data(), high.data()); });
    call("rhs range", [&] { return TVKgetrhssens(env_, lp_, 0, m - 1, low.data(), high.data()); });
    call("quality",
         [&] { return TVKgetquality(env_, lp_, TVK_QUALITY_SUM_PRIMAL_INFEAS, low.data(), nullptr); });
    call("kappa", [&] { return TVKgetquality(env_, lp_, TVK_QUALITY_KAPPA, low.data(), nullptr); });
  }

  /* Loosened bounds, a column that pays nothing and a row that asks for nothing: the optimum stays. */
  void change() {
    const double zero = 0, large = 1e6, one = 1;
    const int begin = 0, index = 0;
    const double bound = 1e5;
    call("add a row",
         [&] { return TVKaddrows(env_, lp_, 0, 1, 1, &large, "L", &begin, &index, &one, nullptr, nullptr); });
    call("add a column", [&] {
      return TVKaddcols(env_, lp_, 1, 0, &zero, &begin, nullptr, nullptr, nullptr, &bound, nullptr);
    });
    const std::vector<int> columns(static_cast<std::size_t>(TVKgetnumcols(env_, lp_)), 0);
    const std::vector<int> rows(static_cast<std::size_t>(TVKgetnumrows(env_, lp_)), 1);
    call("basis", [&] { return TVKcopybase(env_, lp_, columns.data(), rows.data()); });
  }

  /* Rows, columns and values that come and go under a live engine. */
  void solve_again() {
    const double large = 1e6, one = 1, small = -1e6;
    const int begin = 0, index = 0;
    const int rows = TVKgetnumrows(env_, lp_), columns = TVKgetnumcols(env_, lp_);
    const auto solve = [&](const char* what) {
      call(what, [&] { return TVKdualopt(env_, lp_); });
      ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
    };
    call("bound", [&] { return TVKchgbds(env_, lp_, 1, &index, "U", &large); });
    solve("after the bound");
    call("row",
         [&] { return TVKaddrows(env_, lp_, 0, 1, 1, &large, "L", &begin, &index, &one, nullptr, nullptr); });
    solve("after the row");
    call("column",
         [&] { return TVKaddcols(env_, lp_, 1, 1, &one, &begin, &rows, &one, nullptr, &one, nullptr); });
    solve("after the column");
    call("right-hand side", [&] { return TVKchgrhs(env_, lp_, 1, &rows, &small); });  // cuts the optimum off
    call("no point left", [&] { return TVKdualopt(env_, lp_); });
    ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_INFEASIBLE);
    call("delete column", [&] { return TVKdelcols(env_, lp_, columns, columns); });
    call("delete row", [&] { return TVKdelrows(env_, lp_, rows, rows); });
    solve("after deleting");
  }

  /* Model, status, solution and basis. */
  std::string text() {
    if (lp_ == nullptr) return "";
    std::string all;
    if (TVKgetnumcols(env_, lp_) > 0) all = support::describe(env_, lp_);
    std::vector<double> x(static_cast<std::size_t>(TVKgetnumcols(env_, lp_)));
    std::vector<int> columns(x.size()), rows(static_cast<std::size_t>(TVKgetnumrows(env_, lp_)));
    all += std::to_string(TVKgetstat(env_, lp_)) + ' ' + std::to_string(TVKgetitcnt(env_, lp_));
    if (TVKsolution(env_, lp_, nullptr, nullptr, x.data(), nullptr, nullptr, nullptr) == 0) {
      for (const double v : x) all += ' ' + support::number(v);
    }
    if (TVKgetbase(env_, lp_, columns.data(), rows.data()) == 0) {
      for (const int s : columns) all += static_cast<char>('0' + s);
      for (const int s : rows) all += static_cast<char>('0' + s);
    }
    return all;
  }

  EnvHandle env_ = nullptr;
  ProbHandle lp_ = nullptr;
  long remaining_;
  bool on_, reached_ = false;
  const char* file_;
};

TEST(OutOfMemoryWhileSolving, EveryCallFailsCleanly) {
  for (const char* file :
       {TOVIK_SOURCE_DIR "/examples/blending.lp", TOVIK_SOURCE_DIR "/examples/transport.mps"}) {
    Session(-1, false, file).run();  // first use fills what the process keeps
    for (const bool on : {false, true}) {
      long failures = 0;
      for (bool reached = true; reached; ++failures) {
        SCOPED_TRACE(std::string(file) + " allocation " + std::to_string(failures) + (on ? " and on" : ""));
        const long before = outstanding;
        Session session(failures, on, file);
        session.run();
        reached = session.reached();
        EXPECT_EQ(outstanding, before);
        if (testing::Test::HasFailure()) return;
      }
      EXPECT_GT(failures, 100);
    }
  }
}

}  // namespace
