#include "bench/cholesky/systems.h"

#include <tovik.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>

namespace bench {
namespace {

using tovik::lp::cholesky::Pattern;

struct Columns {
  int rows = 0;
  std::vector<int> start, index;
  std::vector<double> value;
};

Columns read(const std::string& file) {
  Columns a;
  int status = 0, count = 0, surplus = 0;
  EnvHandle env = TVKopenTOVIK(&status);
  ProbHandle lp = TVKcreateprob(env, &status, "system");
  if (TVKreadcopyprob(env, lp, file.c_str(), nullptr) != 0) {
    std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
  } else {
    const int columns = TVKgetnumcols(env, lp);
    a.rows = TVKgetnumrows(env, lp);
    TVKgetcols(env, lp, &count, nullptr, nullptr, nullptr, 0, &surplus, 0, columns - 1);
    a.start.resize(static_cast<std::size_t>(columns) + 1);
    a.index.resize(static_cast<std::size_t>(-surplus));
    a.value.resize(a.index.size());
    TVKgetcols(env, lp, &count, a.start.data(), a.index.data(), a.value.data(), -surplus, &surplus, 0,
               columns - 1);
    a.start.back() = count;
  }
  TVKfreeprob(env, &lp);
  TVKcloseTOVIK(&env);
  return a;
}

}  // namespace

System system_of_model(const std::string& file) {
  const Columns a = read(file);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> exponent(-1, 1);
  const std::size_t columns = a.start.empty() ? 0 : a.start.size() - 1;
  std::vector<std::vector<std::pair<int, double>>> rows(static_cast<std::size_t>(a.rows));
  std::vector<double> scale(columns);
  for (std::size_t j = 0; j < columns; ++j) {
    scale[j] = std::pow(10.0, exponent(random));
    for (int k = a.start[j]; k < a.start[j + 1]; ++k)
      rows[a.index[k]].emplace_back(static_cast<int>(j), a.value[k]);
  }
  System system;
  system.name = std::filesystem::path(file).stem().stem();
  system.pattern.size = a.rows;
  system.pattern.start.push_back(0);
  std::vector<double> sum(rows.size(), 0);
  std::vector<int> mark(rows.size(), -1), touched;
  for (int i = 0; i < a.rows; ++i) {
    touched.assign(1, i);
    mark[i] = i;
    sum[i] = 1;
    for (const auto& [j, value] : rows[i])
      for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
        const int other = a.index[k];
        if (other < i) continue;
        if (mark[other] != i) {
          mark[other] = i;
          sum[other] = 0;
          touched.push_back(other);
        }
        sum[other] += scale[j] * value * a.value[k];
      }
    std::sort(touched.begin(), touched.end());
    for (const int other : touched) {
      system.pattern.index.push_back(other);
      system.values.push_back(sum[other]);
    }
    system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
  }
  return system;
}

System grid(int a, int b, int c) {
  System system;
  system.name = "grid " + std::to_string(a) + " " + std::to_string(b) + " " + std::to_string(c);
  system.pattern.size = a * b * c;
  system.pattern.start.push_back(0);
  auto put = [&](int row, double value) {
    system.pattern.index.push_back(row);
    system.values.push_back(value);
  };
  for (int i = 0; i < a; ++i)
    for (int j = 0; j < b; ++j)
      for (int k = 0; k < c; ++k) {
        const int number = (i * b + j) * c + k;
        put(number, 6.1);
        if (k + 1 < c) put(number + 1, -1);
        if (j + 1 < b) put(number + c, -1);
        if (i + 1 < a) put(number + b * c, -1);
        system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
      }
  return system;
}

}  // namespace bench
