/* Random sequences of model changes through the public interface, compared with a dense model that knows
 * nothing of sparse storage, lazy deletion or indexes. */
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/environment_fixture.h"

namespace {

using Indices = std::vector<int>;
using Values = std::vector<double>;

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

struct DenseColumn {
  double objective, lower, upper;
  std::string name;
  Values coefficients;  // one per row
};

struct DenseRow {
  double rhs, range;
  char sense;
  std::string name;
};

struct DenseModel {
  std::vector<DenseColumn> columns;
  std::vector<DenseRow> rows;
  int n() const { return static_cast<int>(columns.size()); }
  int m() const { return static_cast<int>(rows.size()); }
  void delete_row(int i) {
    rows.erase(rows.begin() + i);
    for (DenseColumn& c : columns) c.coefficients.erase(c.coefficients.begin() + i);
  }
  void delete_column(int j) { columns.erase(columns.begin() + j); }
};

std::string name_at(ConstEnvHandle env, ConstProbHandle lp, bool column, int k) {
  char buffer[64];
  char* name = nullptr;
  int surplus = 0;
  const int code =
      (column ? TVKgetcolname : TVKgetrowname)(env, lp, &name, buffer, sizeof buffer, &surplus, k, k);
  return code == 0 ? name : "";
}

/* A model in the library beside its dense twin; every step changes both. */
class Twins {
 public:
  Twins(EnvHandle env, ProbHandle lp, unsigned seed, bool unchecked)
      : env_(env), lp_(lp), random_(seed), unchecked_(unchecked) {}

  void step() {
    switch (below(16)) {
      case 0:
      case 1:
        return add_rows();
      case 2:
      case 3:
        return add_columns();
      case 4:
        return new_empty();
      case 5:
        return delete_range();
      case 6:
        return delete_set();
      case 7:
      case 8:
        return set_coefficients(1 + below(2));
      case 9:
      case 10:
        return set_coefficients(3 + below(30));
      case 11:
        return change_bounds();
      case 12:
        return change_values();
      case 13:
        return rename();
      case 14:
        return delete_one_by_one();
      default:
        return read_some();
    }
  }

  void compare() {
    ASSERT_EQ(TVKgetnumcols(env_, lp_), dense_.n());
    ASSERT_EQ(TVKgetnumrows(env_, lp_), dense_.m());
    std::int64_t entries = 0;
    for (const DenseColumn& c : dense_.columns) {
      entries += std::count_if(c.coefficients.begin(), c.coefficients.end(), [](double v) { return v != 0; });
    }
    ASSERT_EQ(TVKgetnumnz(env_, lp_), entries);
    compare_columns(0, dense_.n() - 1);
    if (below(2) == 0) compare_rows(0, dense_.m() - 1);
    compare_vectors();
    compare_names(true);
    compare_names(false);
  }

 private:
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  double value() { return below(4) == 0 ? 0.0 : below(2000) / 8.0 - 100; }
  Values values(int n) {
    Values v(at(n));
    for (double& x : v) x = value();
    return v;
  }
  std::string fresh_name() { return "u" + std::to_string(++names_) + std::string(at(below(12)), '_'); }

  /* count vectors with distinct indices below `bound` in random order. */
  struct Sparse {
    Indices begin, index;
    Values value;
  };
  Sparse sparse(int count, int bound) {
    Sparse s;
    for (int k = 0; k < count; ++k) {
      s.begin.push_back(static_cast<int>(s.index.size()));
      std::set<int> used;
      for (int p = below(6); p > 0 && bound > 0; --p) used.insert(below(bound));
      Indices index(used.begin(), used.end());
      std::shuffle(index.begin(), index.end(), random_);
      for (const int i : index) {
        s.index.push_back(i);
        s.value.push_back(value());
      }
    }
    return s;
  }

  /* Names for some of the new items, or none at all. */
  struct Given {
    std::vector<std::string> text;
    std::vector<char*> pointer;
    char** array() { return pointer.empty() ? nullptr : pointer.data(); }
  };
  Given some_names(int count) {
    Given given;
    if (below(3) == 0) return given;
    for (int k = 0; k < count; ++k) given.text.push_back(fresh_name());
    for (std::string& text : given.text)
      given.pointer.push_back(unchecked_ && below(4) == 0 ? nullptr : text.data());
    return given;
  }
  /* Names that the library generated are copied; that they are unique is checked by compare_names. */
  void learn_names(bool columns, int first) {
    if (columns) {
      for (int j = first; j < dense_.n(); ++j) dense_.columns[at(j)].name = name_at(env_, lp_, true, j);
    } else {
      for (int i = first; i < dense_.m(); ++i) dense_.rows[at(i)].name = name_at(env_, lp_, false, i);
    }
  }
  void check_given(bool columns, int first, const Given& given) {
    for (std::size_t k = 0; k < given.pointer.size(); ++k) {
      if (given.pointer[k] != nullptr) {
        EXPECT_EQ(name_at(env_, lp_, columns, first + static_cast<int>(k)), given.text[k]);
      }
    }
    const bool all =
        !given.pointer.empty() && (columns ? dense_.columns[0].name : dense_.rows[0].name).empty();
    learn_names(columns, all ? 0 : first);
  }

  void add_rows() {
    const int ccnt = below(3), rcnt = 1 + below(4), n = dense_.n(), m = dense_.m();
    Sparse s = sparse(rcnt, n + ccnt);
    const Values rhs = values(rcnt);
    Given row_names = some_names(rcnt), column_names = some_names(ccnt);
    ASSERT_EQ(
        TVKaddrows(env_, lp_, ccnt, rcnt, static_cast<int>(s.index.size()), rhs.data(), "LGERLGE",
                   s.begin.data(), s.index.data(), s.value.data(), column_names.array(), row_names.array()),
        0);
    for (int k = 0; k < rcnt; ++k) dense_.rows.push_back({rhs[at(k)], 0, "LGERLGE"[k], ""});
    for (int k = 0; k < ccnt; ++k) dense_.columns.push_back({0, 0, 1e20, "", Values(at(m))});
    for (DenseColumn& c : dense_.columns) c.coefficients.resize(at(m + rcnt));
    for (int k = 0; k < rcnt; ++k) {
      const std::size_t end = k + 1 < rcnt ? at(s.begin[at(k + 1)]) : s.index.size();
      for (std::size_t p = at(s.begin[at(k)]); p < end; ++p) {
        dense_.columns[at(s.index[p])].coefficients[at(m + k)] = s.value[p];
      }
    }
    check_given(false, m, row_names);
    if (ccnt > 0) check_given(true, n, column_names);
  }

  void add_columns() {
    const int ccnt = 1 + below(4), n = dense_.n(), m = dense_.m();
    Sparse s = sparse(ccnt, m);
    const Values objective = values(ccnt), lower = values(ccnt);
    Values upper = lower;
    for (double& u : upper) u = below(3) == 0 ? 3e20 : u + below(9);
    Given given = some_names(ccnt);
    ASSERT_EQ(TVKaddcols(env_, lp_, ccnt, static_cast<int>(s.index.size()), objective.data(), s.begin.data(),
                         s.index.data(), s.value.data(), lower.data(), upper.data(), given.array()),
              0);
    for (int k = 0; k < ccnt; ++k) {
      DenseColumn c{objective[at(k)], lower[at(k)], std::min(upper[at(k)], 1e20), "", Values(at(m))};
      const std::size_t end = k + 1 < ccnt ? at(s.begin[at(k + 1)]) : s.index.size();
      for (std::size_t p = at(s.begin[at(k)]); p < end; ++p) c.coefficients[at(s.index[p])] = s.value[p];
      dense_.columns.push_back(c);
    }
    check_given(true, n, given);
  }

  void new_empty() {
    const int n = dense_.n(), m = dense_.m();
    const Values range = values(2);
    ASSERT_EQ(TVKnewrows(env_, lp_, 2, nullptr, "RL", range.data(), nullptr), 0);
    dense_.rows.push_back({0, range[0], 'R', ""});
    dense_.rows.push_back({0, 0, 'L', ""});
    for (DenseColumn& c : dense_.columns) c.coefficients.resize(at(m + 2));
    ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    dense_.columns.push_back({0, 0, 1e20, "", Values(at(m + 2))});
    learn_names(true, n);
    learn_names(false, m);
  }

  void delete_range() {
    const bool tail = below(2) == 0;
    if (dense_.m() > 0) {
      const int end = tail ? dense_.m() - 1 : below(dense_.m()), begin = std::max(0, end - below(3));
      ASSERT_EQ(TVKdelrows(env_, lp_, begin, end), 0);
      for (int i = end; i >= begin; --i) dense_.delete_row(i);
    }
    if (dense_.n() > 0 && below(2) == 0) {
      const int end = tail ? dense_.n() - 1 : below(dense_.n()), begin = std::max(0, end - below(3));
      ASSERT_EQ(TVKdelcols(env_, lp_, begin, end), 0);
      for (int j = end; j >= begin; --j) dense_.delete_column(j);
    }
  }

  void delete_one_by_one() {
    for (int k = below(5); k > 0; --k) {
      if (dense_.m() > 2 && below(2) == 0) {
        const int i = below(dense_.m());
        ASSERT_EQ(TVKdelrows(env_, lp_, i, i), 0);
        dense_.delete_row(i);
      } else if (dense_.n() > 2) {
        const int j = below(dense_.n());
        ASSERT_EQ(TVKdelcols(env_, lp_, j, j), 0);
        dense_.delete_column(j);
      }
    }
  }

  void delete_set() {
    const bool rows = below(2) == 0;
    const int count = rows ? dense_.m() : dense_.n();
    Indices marks(at(count + 1)), expected(at(count + 1));
    int kept = 0;
    for (int k = 0; k < count; ++k) {
      marks[at(k)] = below(6) - 1;
      expected[at(k)] = marks[at(k)] == 1 ? -1 : kept++;
    }
    ASSERT_EQ((rows ? TVKdelsetrows : TVKdelsetcols)(env_, lp_, marks.data()), 0);
    EXPECT_EQ(marks, expected);
    for (int k = count - 1; k >= 0; --k) {
      if (expected[at(k)] < 0) rows ? dense_.delete_row(k) : dense_.delete_column(k);
    }
  }

  void set_coefficients(int count) {
    if (dense_.n() == 0 || dense_.m() == 0) return;
    const bool one_column = below(3) == 0;
    std::set<std::pair<int, int>> pairs;
    const int column = below(dense_.n());
    for (int k = 0; k < count; ++k)
      pairs.insert({below(dense_.m()), one_column ? column : below(dense_.n())});
    Indices rows, columns;
    Values coefficients;
    for (const auto& [i, j] : pairs) {
      rows.push_back(i);
      columns.push_back(j);
      coefficients.push_back(value());
      dense_.columns[at(j)].coefficients[at(i)] = coefficients.back();
    }
    if (pairs.size() == 1) {
      ASSERT_EQ(TVKchgcoef(env_, lp_, rows[0], columns[0], coefficients[0]), 0);
    } else {
      ASSERT_EQ(TVKchgcoeflist(env_, lp_, static_cast<int>(rows.size()), rows.data(), columns.data(),
                               coefficients.data()),
                0);
    }
  }

  void change_bounds() {
    if (dense_.n() == 0) return;
    const int j[] = {below(dense_.n()), below(dense_.n())};
    const double bounds[] = {value(), value()};
    ASSERT_EQ(TVKchgbds(env_, lp_, 2, j, "LB", bounds), 0);
    dense_.columns[at(j[0])].lower = bounds[0];
    dense_.columns[at(j[1])].lower = dense_.columns[at(j[1])].upper = bounds[1];
  }

  void change_values() {
    if (dense_.n() == 0 || dense_.m() == 0) return;
    const int i = below(dense_.m()), j = below(dense_.n());
    const double rhs = value(), objective = value();
    ASSERT_EQ(TVKchgrhs(env_, lp_, 1, &i, &rhs), 0);
    ASSERT_EQ(TVKchgobj(env_, lp_, 1, &j, &objective), 0);
    const char sense = "LGER"[below(4)];
    ASSERT_EQ(TVKchgsense(env_, lp_, 1, &i, &sense), 0);
    DenseRow& row = dense_.rows[at(i)];
    row.rhs = rhs;
    row.range = sense == 'R' ? row.range : 0;
    row.sense = sense;
    dense_.columns[at(j)].objective = objective;
    if (sense == 'R') {
      row.range = value();
      ASSERT_EQ(TVKchgrngval(env_, lp_, 1, &i, &row.range), 0);
    }
  }

  void rename() {
    if (dense_.n() == 0 || dense_.m() == 0) return;
    const int i = below(dense_.m()), j = below(dense_.n());
    const std::string row = fresh_name(), column = fresh_name();
    ASSERT_EQ(TVKchgname(env_, lp_, 'r', i, row.c_str()), 0);
    ASSERT_EQ(TVKchgname(env_, lp_, 'c', j, column.c_str()), 0);
    learn_names(false, dense_.rows[0].name.empty() ? 0 : i);
    learn_names(true, dense_.columns[0].name.empty() ? 0 : j);
    EXPECT_EQ(dense_.rows[at(i)].name, row);
    EXPECT_EQ(dense_.columns[at(j)].name, column);
  }

  void read_some() {
    if (dense_.m() > 0) {
      const int i = below(dense_.m());
      compare_rows(i, std::min(dense_.m() - 1, i + below(3)));
    }
    if (dense_.n() > 0 && dense_.m() > 0) {
      const int i = below(dense_.m()), j = below(dense_.n());
      double coefficient = -1;
      EXPECT_EQ(TVKgetcoef(env_, lp_, i, j, &coefficient), 0);
      EXPECT_EQ(coefficient, dense_.columns[at(j)].coefficients[at(i)]);
    }
  }

  void compare_columns(int begin, int end) { compare_vectors_of(TVKgetcols, begin, end, true); }
  void compare_rows(int begin, int end) { compare_vectors_of(TVKgetrows, begin, end, false); }

  template <class Query>
  void compare_vectors_of(Query query, int begin, int end, bool columns) {
    int count = 0, surplus = 0;
    const int size = query(env_, lp_, &count, nullptr, nullptr, nullptr, 0, &surplus, begin, end);
    ASSERT_EQ(size, surplus == 0 ? 0 : 1207);
    if (surplus == 0) return;
    const int space = -surplus;
    Indices start(at(end - begin + 1)), index(at(space));
    Values value(at(space));
    ASSERT_EQ(query(env_, lp_, &count, start.data(), index.data(), value.data(), space, &surplus, begin, end),
              0);
    ASSERT_EQ(count, space);
    for (int k = begin; k <= end; ++k) {
      const int first = start[at(k - begin)], last = k < end ? start[at(k - begin + 1)] : space;
      const int length = columns ? dense_.m() : dense_.n();
      Values dense(at(length));
      for (int p = first; p < last; ++p) {
        ASSERT_EQ(dense[at(index[at(p)])], 0) << "index twice";
        dense[at(index[at(p)])] = value[at(p)];
        if (!columns && p > first) {
          EXPECT_LT(index[at(p - 1)], index[at(p)]);
        }
      }
      for (int l = 0; l < length; ++l) {
        ASSERT_EQ(dense[at(l)], columns ? dense_.columns[at(k)].coefficients[at(l)]
                                        : dense_.columns[at(l)].coefficients[at(k)]);
      }
    }
  }

  void compare_vectors() {
    const int n = dense_.n(), m = dense_.m();
    Values objective(at(n)), lower(at(n)), upper(at(n)), rhs(at(m)), range(at(m));
    std::vector<char> sense(at(m));
    ASSERT_EQ(TVKgetobj(env_, lp_, objective.data(), 0, n - 1), 0);
    ASSERT_EQ(TVKgetlb(env_, lp_, lower.data(), 0, n - 1), 0);
    ASSERT_EQ(TVKgetub(env_, lp_, upper.data(), 0, n - 1), 0);
    ASSERT_EQ(TVKgetrhs(env_, lp_, rhs.data(), 0, m - 1), 0);
    ASSERT_EQ(TVKgetrngval(env_, lp_, range.data(), 0, m - 1), 0);
    ASSERT_EQ(TVKgetsense(env_, lp_, sense.data(), 0, m - 1), 0);
    for (int j = 0; j < n; ++j) {
      EXPECT_EQ(objective[at(j)], dense_.columns[at(j)].objective);
      EXPECT_EQ(lower[at(j)], dense_.columns[at(j)].lower);
      EXPECT_EQ(upper[at(j)], dense_.columns[at(j)].upper);
    }
    for (int i = 0; i < m; ++i) {
      EXPECT_EQ(rhs[at(i)], dense_.rows[at(i)].rhs);
      EXPECT_EQ(range[at(i)], dense_.rows[at(i)].range);
      EXPECT_EQ(sense[at(i)], dense_.rows[at(i)].sense);
    }
  }

  void compare_names(bool columns) {
    const int count = columns ? dense_.n() : dense_.m();
    std::set<std::string> seen;
    for (int k = 0; k < count; ++k) {
      const std::string& name = columns ? dense_.columns[at(k)].name : dense_.rows[at(k)].name;
      EXPECT_EQ(name_at(env_, lp_, columns, k), name);
      if (name.empty()) continue;
      EXPECT_TRUE(seen.insert(name).second) << name << " twice";
      int found = -1;
      EXPECT_EQ((columns ? TVKgetcolindex : TVKgetrowindex)(env_, lp_, name.c_str(), &found), 0);
      EXPECT_EQ(found, k);
    }
  }

  EnvHandle env_;
  ProbHandle lp_;
  std::mt19937 random_;
  bool unchecked_;  // the data check is off: null names may be passed
  DenseModel dense_;
  int names_ = 0;
};

class RandomModels : public support::WithEnvironment {};

TEST_F(RandomModels, FollowADenseTwinThroughRandomChanges) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    int status = 0;
    ProbHandle lp = TVKcreateprob(env_, &status, "twin");
    ASSERT_EQ(status, 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, static_cast<int>(seed % 2)), 0);
    Twins twins(env_, lp, seed, seed % 2 == 0);
    const unsigned comparisons = 1 + seed % 7;
    for (unsigned k = 0; k < 300 && !HasFailure(); ++k) {
      twins.step();
      if (k % comparisons == 0) twins.compare();
    }
    twins.compare();
    ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
    if (HasFailure()) return;
  }
}

}  // namespace
