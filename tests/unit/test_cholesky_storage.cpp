/* Factors that do not fit into the memory that they may take: the same digits from a file, which leaves nothing behind, and
 * errors where the file cannot be made, written or read. */
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "lp/cholesky/cholesky.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace tovik::lp::cholesky {
namespace {

namespace fs = std::filesystem;
using support::QuietControl;
using support::Random;

struct System {
  Pattern pattern;
  std::vector<double> values;
  std::vector<signed char> signs;
};

/* A grid of a * b * c rows with random couplings, some more between any two rows, and signs at random: entries between rows of
 * one sign are dominated by their diagonals, others may have any size. */
System random_system(int a, int b, int c, int more, Random& random) {
  System system;
  const int n = a * b * c;
  system.pattern.size = n;
  for (int i = 0; i < n; ++i) system.signs.push_back(random.chance(0.4) ? -1 : 1);
  std::vector<std::vector<int>> below(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    if ((i + 1) % c != 0) below[i].push_back(i + 1);
    if ((i / c + 1) % b != 0) below[i].push_back(i + c);
    if (i + b * c < n) below[i].push_back(i + b * c);
  }
  for (int k = 0; k < more; ++k) {
    const int i = random.below(n), j = random.below(n);
    if (i != j) below[std::min(i, j)].push_back(std::max(i, j));
  }
  std::vector<double> sum(static_cast<std::size_t>(n), 0);
  for (int j = 0; j < n; ++j) {
    std::sort(below[j].begin(), below[j].end());
    below[j].erase(std::unique(below[j].begin(), below[j].end()), below[j].end());
    system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
    system.pattern.index.push_back(j);
    system.values.push_back(0);
    for (const int i : below[j]) {
      const double value = random.uniform(-1, 1);
      system.pattern.index.push_back(i);
      system.values.push_back(value);
      sum[i] += std::abs(value);
      sum[j] += std::abs(value);
    }
  }
  system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
  for (int j = 0; j < n; ++j)
    system.values[system.pattern.start[j]] = system.signs[j] * (sum[j] + random.uniform(0.1, 1));
  return system;
}

/* An empty directory for the time of a test. */
class Directory {
 public:
  Directory() {
    std::string name = (fs::temp_directory_path() / "cholesky-XXXXXX").string();
    path_ = ::mkdtemp(name.data()) == nullptr ? "" : name;
  }
  ~Directory() { fs::remove_all(path_); }
  std::string path() const { return path_.string(); }
  bool is_empty() const { return fs::is_empty(path_); }

 private:
  fs::path path_;
};

constexpr int kSides = 3;  // right-hand sides at once

struct Numbers {
  Report report;
  std::vector<double> one, several;
};

Numbers solve_all(const Cholesky& factor, const Report& report, int size) {
  Numbers numbers{report, std::vector<double>(static_cast<std::size_t>(size), 1.0),
                  std::vector<double>(static_cast<std::size_t>(size) * kSides)};
  for (std::size_t k = 0; k < numbers.several.size(); ++k)
    numbers.several[k] = static_cast<double>(k % 7) - 3;
  factor.solve(numbers.one.data());
  factor.solve(numbers.several.data(), kSides);
  return numbers;
}

void expect_same(const Numbers& a, const Numbers& b) {
  EXPECT_EQ(a.one, b.one);
  EXPECT_EQ(a.several, b.several);
  EXPECT_EQ(a.report.smallest_pivot, b.report.smallest_pivot);
  EXPECT_EQ(a.report.largest_pivot, b.report.largest_pivot);
}

class CholeskyStorage : public testing::Test {
 protected:
  State analyze(const System& system, int threads, double work_memory) {
    Options options;
    options.threads = threads;
    options.work_memory = work_memory;
    options.work_directory = directory_.path();
    return factor_.analyze(system.pattern, options, control_);
  }
  State factorize(const System& system) {
    return factor_.factorize(system.values.data(), system.signs.data(), {}, control_, &report_);
  }
  Numbers in_core(const System& system) {
    EXPECT_EQ(analyze(system, 1, 1e12), State::done);
    EXPECT_FALSE(factor_.storage().out_of_core);
    EXPECT_EQ(factorize(system), State::done);
    return solve_all(factor_, report_, system.pattern.size);
  }

  Directory directory_;
  QuietControl control_;
  Cholesky factor_;
  Report report_;
};

TEST_F(CholeskyStorage, DigitsAreThoseOfAFactorInMemory) {
  Random random(911);
  const System systems[] = {random_system(17, 17, 17, 40, random), random_system(60, 60, 1, 0, random),
                            random_system(3000, 1, 1, 300, random), random_system(4, 4, 4, 2000, random)};
  for (const System& system : systems) {
    const Numbers right = in_core(system);
    const double size = 8 * static_cast<double>(factor_.counts().stored);
    double least = 0;  // bytes in memory that it takes
    for (const double share : {0.0, 0.3, 1.2, 0.99}) {
      for (const int threads : {1, 2, 3}) {
        SCOPED_TRACE(testing::Message()
                     << "rows " << system.pattern.size << ", memory " << share << ", threads " << threads);
        ASSERT_EQ(analyze(system, threads, share * size), State::done);
        const Storage& storage = factor_.storage();
        EXPECT_EQ(storage.out_of_core, share < 1);
        if (threads == 1 && share < 1) {
          EXPECT_GT(storage.file_bytes, 0);
          if (share == 0) least = storage.needed;
          // What is allowed, or what it takes with buffers of some size.
          EXPECT_LE(storage.needed, std::max(share * size, least + share * size / 2));
        }
        for (int round = 0; round < 2; ++round) {
          ASSERT_EQ(factorize(system), State::done);
          expect_same(solve_all(factor_, report_, system.pattern.size), right);
          EXPECT_TRUE(directory_.is_empty());
        }
      }
    }
  }
}

TEST_F(CholeskyStorage, SolvesMayRunSideBySide) {
  Random random(912);
  const System system = random_system(15, 15, 15, 0, random);
  const Numbers right = in_core(system);
  ASSERT_EQ(analyze(system, 2, 1e5), State::done);
  ASSERT_EQ(factorize(system), State::done);
  Numbers there;
  std::thread other([&] { there = solve_all(factor_, report_, system.pattern.size); });
  expect_same(solve_all(factor_, report_, system.pattern.size), right);
  other.join();
  expect_same(there, right);
}

TEST_F(CholeskyStorage, DirectoriesThatCannotHoldAFileAreToldOf) {
  Random random(913);
  const System system = random_system(8, 8, 8, 0, random);
  for (const char* directory : {"/nowhere/at/all", "/dev/null", "/proc"}) {
    SCOPED_TRACE(directory);
    Options options;
    options.work_memory = 0;
    options.work_directory = directory;
    ASSERT_EQ(factor_.analyze(system.pattern, options, control_), State::done);
    EXPECT_EQ(factor_.allocate(), State::file_not_opened);
    EXPECT_EQ(factorize(system), State::file_not_opened);
  }
}

/* The process's limit of a file's size; writes beyond it give errors. */
class FileLimit {
 public:
  explicit FileLimit(double bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit now = before_;
    now.rlim_cur = static_cast<rlim_t>(bytes);
    ::setrlimit(RLIMIT_FSIZE, &now);
  }
  ~FileLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(CholeskyStorage, WithoutRoomThereIsAnErrorAndLaterAFactor) {
  Random random(914);
  const System system = random_system(20, 20, 20, 0, random);
  const Numbers right = in_core(system);
  for (const int threads : {1, 2}) {
    SCOPED_TRACE(threads);
    ASSERT_EQ(analyze(system, threads, 0), State::done);
    const double bytes = factor_.storage().file_bytes;
    {
      const FileLimit limit(bytes - 1);  // which shows at once
      EXPECT_EQ(factor_.allocate(), State::file_not_written);
      EXPECT_TRUE(directory_.is_empty());
    }
    ASSERT_EQ(factor_.allocate(), State::done);
    for (const double share : {0.0, 0.5, 0.999}) {  // or only when it is written
      const FileLimit limit(share * bytes);
      EXPECT_EQ(factorize(system), State::file_not_written);
    }
    ASSERT_EQ(factorize(system), State::done);
    expect_same(solve_all(factor_, report_, system.pattern.size), right);
  }
}

/* The file of the factor by the name that the system keeps for open files. */
std::string open_file() {
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    const fs::path target = fs::read_symlink(entry.path(), gone);
    if (!gone && target.string().find("/tvktmp1") != std::string::npos) return entry.path().string();
  }
  return {};
}

TEST_F(CholeskyStorage, WhatCannotBeReadBackIsNotSolvedWith) {
  Random random(915);
  const System system = random_system(20, 20, 20, 0, random);
  const Numbers right = in_core(system);
  ASSERT_EQ(analyze(system, 2, 0), State::done);
  ASSERT_EQ(factorize(system), State::done);
  const std::string file = open_file();
  if (file.empty()) GTEST_SKIP() << "this system does not show open files";
  const auto bytes = static_cast<std::int64_t>(factor_.storage().file_bytes);
  std::vector<double> x(static_cast<std::size_t>(system.pattern.size), 1.0);

  ASSERT_EQ(::truncate(file.c_str(), bytes / 2), 0);
  EXPECT_THROW(factor_.solve(x.data()), FileError);
  EXPECT_THROW(factor_.solve(x.data()), FileError);

  ASSERT_EQ(factorize(system), State::done);
  const int handle = ::open(file.c_str(), O_WRONLY);
  ASSERT_GE(handle, 0);
  const double other = 0.125;  // a number of L, as good as any
  ASSERT_EQ(::pwrite(handle, &other, sizeof other, bytes / 16 * 8), static_cast<ssize_t>(sizeof other));
  ::close(handle);
  EXPECT_THROW(factor_.solve(x.data()), FileError);

  ASSERT_EQ(factorize(system), State::done);
  expect_same(solve_all(factor_, report_, system.pattern.size), right);
}

}  // namespace
}  // namespace tovik::lp::cholesky
