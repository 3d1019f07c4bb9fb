/* Environments share nothing: each thread opens its own, builds, changes and solves models, and meets no
 * other. */
#include <gtest/gtest.h>
#include <tovik.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 4;

/* Assignment of `size` jobs with pseudo-random costs: an LP that takes some iterations. */
struct Assignment {
  explicit Assignment(int jobs) : size(jobs) {
    unsigned state = 12345;
    for (int job = 0; job < size; ++job) {
      for (int worker = 0; worker < size; ++worker) {
        state = state * 1103515245u + 12345u;
        cost.push_back(1 + static_cast<double>((state >> 16) % 97));
        begin.push_back(static_cast<int>(index.size()));
        count.push_back(2);
        index.push_back(job);
        index.push_back(size + worker);
      }
    }
    value.assign(index.size(), 1);
    lower.assign(cost.size(), 0);
    upper.assign(cost.size(), TVK_INFBOUND);
    rhs.assign(static_cast<size_t>(2 * size), 1);
    sense.assign(rhs.size(), 'E');
  }
  int columns() const { return static_cast<int>(cost.size()); }
  int rows() const { return 2 * size; }

  int size;
  std::vector<double> cost, value, lower, upper, rhs;
  std::vector<int> begin, count, index;
  std::string sense;
};

struct Outcome {
  int code = -1, status = -1;
  double objective = 0;
  std::string errors;
  std::vector<double> x;
};

extern "C" void collect_errors(void* handle, const char* text) {
  *static_cast<std::string*>(handle) += text;
}

Outcome solve(const Assignment& a, int seed, int method) {
  Outcome outcome;
  EnvHandle env = TVKopenTOVIK(&outcome.code);
  if (env == nullptr) return outcome;
  ChannelHandle errors = nullptr;
  TVKgetchannels(env, nullptr, nullptr, &errors, nullptr);
  TVKaddfuncdest(env, errors, &outcome.errors, collect_errors);
  TVKsetintparam(env, 1124, seed);
  TVKsetintparam(env, TVK_PARAM_LPMETHOD, method);
  TVKsetintparam(env, -1, 0);  // an error line of its own
  ProbHandle lp = TVKcreateprob(env, &outcome.code, "assignment");
  outcome.code = TVKcopylp(env, lp, a.columns(), a.rows(), TVK_MIN, a.cost.data(), a.rhs.data(),
                           a.sense.data(), a.begin.data(), a.count.data(), a.index.data(), a.value.data(),
                           a.lower.data(), a.upper.data(), nullptr);
  if (outcome.code == 0) outcome.code = TVKlpopt(env, lp);
  if (outcome.code == 0) {
    outcome.x.resize(a.cost.size());
    outcome.code = TVKsolution(env, lp, &outcome.status, &outcome.objective, outcome.x.data(), nullptr,
                               nullptr, nullptr);
  }
  TVKfreeprob(env, &lp);
  TVKcloseTOVIK(&env);
  return outcome;
}

TEST(ParallelEnvironments, ThreadsSolveSideBySideAsTheyDoAlone) {
  const Assignment model(12);
  const Outcome alone = solve(model, 1, 2);
  ASSERT_EQ(alone.code, 0);
  ASSERT_EQ(alone.status, TVK_STATUS_OPTIMAL);
  std::vector<std::vector<Outcome>> outcomes(kThreads);
  std::vector<std::thread> team;
  for (int t = 0; t < kThreads; ++t) {
    team.emplace_back([&, t] {
      for (int round = 0; round < 5; ++round) {
        outcomes[static_cast<size_t>(t)].push_back(solve(model, t + 1, 1 + (t + round) % 2));
      }
    });
  }
  for (std::thread& member : team) member.join();
  for (const auto& of_thread : outcomes) {
    for (const Outcome& outcome : of_thread) {
      EXPECT_EQ(outcome.code, 0);
      EXPECT_EQ(outcome.status, TVK_STATUS_OPTIMAL);
      EXPECT_NEAR(outcome.objective, alone.objective, 1e-9 * alone.objective);
      EXPECT_EQ(outcome.errors, alone.errors);
    }
  }
}

/* Different models by different methods, at once: to the last bit the answers that each gives alone. */
TEST(ParallelEnvironments, DifferentModelsAtOnce) {
  const Assignment first(12), second(17);
  const auto work = [](const Assignment& model, int method) {
    std::vector<std::vector<double>> answers;
    for (int round = 0; round < 4; ++round) answers.push_back(solve(model, 1, method).x);
    return answers;
  };
  const auto first_alone = work(first, 1), second_alone = work(second, 2);
  std::vector<std::vector<double>> first_answers, second_answers;
  std::thread other([&] { second_answers = work(second, 2); });
  first_answers = work(first, 1);
  other.join();
  EXPECT_EQ(first_alone[0].size(), first.cost.size());
  EXPECT_EQ(first_answers, first_alone);
  EXPECT_EQ(second_answers, second_alone);
}

/* A flag that another thread sets ends a solve; the environment can be used again afterwards. */
TEST(ParallelEnvironments, AnotherThreadMayStopASolve) {
  const Assignment model(60);
  int code = -1, status = -1;
  volatile int stop = 0;
  EnvHandle env = TVKopenTOVIK(&code);
  ASSERT_NE(env, nullptr);
  ProbHandle lp = TVKcreateprob(env, &code, "assignment");
  ASSERT_EQ(TVKsetterminate(env, &stop), 0);
  ASSERT_EQ(TVKcopylp(env, lp, model.columns(), model.rows(), TVK_MIN, model.cost.data(), model.rhs.data(),
                      model.sense.data(), model.begin.data(), model.count.data(), model.index.data(),
                      model.value.data(), model.lower.data(), model.upper.data(), nullptr),
            0);
  stop = 1;
  EXPECT_EQ(TVKlpopt(env, lp), 0);
  EXPECT_EQ(TVKgetstat(env, lp), TVK_STATUS_USER_ABORT);
  stop = 0;
  EXPECT_EQ(TVKlpopt(env, lp), 0);
  EXPECT_EQ(TVKsolution(env, lp, &status, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(status, TVK_STATUS_OPTIMAL);
  TVKfreeprob(env, &lp);
  TVKcloseTOVIK(&env);
}

}  // namespace
