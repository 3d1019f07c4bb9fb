/* Every modification fails cleanly wherever memory runs out: the code is 1001 and the problem is as before;
 * the same call then succeeds. */
#include <functional>
#include <string>
#include <vector>

#include "support/describe_families.h"
#include "support/environment_fixture.h"
#include "support/failing_memory.h"

namespace {

class OutOfMemory : public support::WithEnvironment {
 protected:
  using Call = std::function<int(ProbHandle)>;

  /* 40 columns and 36 rows, the first row and the first column long; names where asked for. */
  ProbHandle build(bool named) {
    int status = 0;
    ProbHandle lp = TVKcreateprob(env_, &status, "memory");
    std::vector<double> ones(40, 1.0);
    std::vector<std::string> text;
    for (int k = 0; k < 40; ++k) text.push_back("name_" + std::to_string(k));
    std::vector<char*> names;
    for (std::string& name : text) names.push_back(name.data());
    EXPECT_EQ(
        TVKnewcols(env_, lp, 40, ones.data(), nullptr, nullptr, nullptr, named ? names.data() : nullptr), 0);
    EXPECT_EQ(TVKnewrows(env_, lp, 36, nullptr, nullptr, nullptr, named ? names.data() : nullptr), 0);
    for (int k = 0; k < 40; ++k) EXPECT_EQ(TVKchgcoef(env_, lp, 0, k, k + 1), 0);
    for (int k = 1; k < 36; ++k) EXPECT_EQ(TVKchgcoef(env_, lp, k, 0, k + 1), 0);
    if (with_families_) add_families(lp);
    return lp;
  }

  /* One item in every family. */
  void add_families(ProbHandle lp) {
    const int begin = 0, columns[] = {3, 1, 2};
    const double values[] = {1, 2, 3};
    char name[] = "item";
    char* names[] = {name};
    EXPECT_EQ(TVKaddsos(env_, lp, 1, 3, "1", &begin, columns, values, names), 0);
    EXPECT_EQ(TVKaddlazyconstraints(env_, lp, 1, 3, values, "L", &begin, columns, values, nullptr), 0);
    EXPECT_EQ(TVKEaddindconstr(env_, lp, 5, 0, 3, 1, 'L', columns, values, nullptr), 0);
    EXPECT_EQ(TVKcopyorder(env_, lp, 3, columns, nullptr, nullptr), 0);
    EXPECT_EQ(TVKaddmipstarts(env_, lp, 1, 3, &begin, columns, values, nullptr, nullptr), 0);
    EXPECT_EQ(TVKchgqpcoef(env_, lp, 1, 2, 4), 0);
    EXPECT_EQ(TVKaddqconstr(env_, lp, 3, 1, 1, 'L', columns, values, columns, columns, values, nullptr), 0);
  }

  std::string text_of(ProbHandle lp, bool named) {
    const std::string families = with_families_ ? support::describe_families(env_, lp) : "";
    return families + (named ? support::describe(env_, lp) : "") + rows_of(lp);
  }
  std::string rows_of(ProbHandle lp) {
    const int rows = TVKgetnumrows(env_, lp), entries = TVKgetnumnz(env_, lp);
    std::vector<int> begin(static_cast<std::size_t>(rows)), index(static_cast<std::size_t>(entries));
    std::vector<double> value(index.size());
    int count = 0, surplus = 0;
    EXPECT_EQ(TVKgetrows(env_, lp, &count, begin.data(), index.data(), value.data(), entries, &surplus, 0,
                         rows - 1),
              0);
    std::string text = std::to_string(TVKgetnumcols(env_, lp)) + '\n';
    for (std::size_t p = 0; p < index.size(); ++p)
      text += std::to_string(index[p]) + ':' + std::to_string(value[p]) + ' ';
    for (const int b : begin) text += std::to_string(b) + ' ';
    return text;
  }

  /* Lets the first, second, ... allocation of `call` fail until it succeeds; reading the rows first makes the
   * model keep its row-wise copy, looking up a name its index. */
  void fail_everywhere(const char* what, bool named, bool derived, const Call& call) {
    SCOPED_TRACE(what);
    ProbHandle lp = build(named);
    const std::string before = text_of(lp, named);
    ProbHandle other = build(named);
    EXPECT_EQ(call(other), 0);
    const std::string after = text_of(other, named);
    EXPECT_NE(before, after);
    EXPECT_EQ(TVKfreeprob(env_, &other), 0);
    int index = 0, failures = 0;
    for (long k = 0;; ++k) {
      if (!derived) {
        ASSERT_EQ(TVKfreeprob(env_, &lp), 0);
        lp = build(named);
      } else if (named) {
        EXPECT_EQ(TVKgetcolindex(env_, lp, "name_7", &index), 0);
      }
      support::allocations_until_failure = k;
      const int code = call(lp);
      const bool reached = support::allocations_until_failure < 0;
      support::allocations_until_failure = -1;
      if (code == 0) {
        ASSERT_EQ(text_of(lp, named), after) << "allocation " << k;
        if (!reached) break;
        ASSERT_EQ(TVKfreeprob(env_, &lp), 0);  // memory was short for a derived structure only
        lp = build(named);
        rows_of(lp);
        continue;
      }
      ++failures;
      ASSERT_EQ(code, 1001);
      ASSERT_EQ(text_of(lp, named), before) << "allocation " << k;
      ASSERT_LT(k, 2000);
    }
    EXPECT_GT(failures, 0);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }

  bool with_families_ = false;

  void fail_in_all_states(const char* what, const Call& call) {
    for (const bool named : {false, true}) {
      for (const bool derived : {false, true}) fail_everywhere(what, named, derived, call);
    }
  }
};

TEST_F(OutOfMemory, LeavesTheProblemAsItWas) {
  const double rhs[] = {1, 2, 3};
  const int begin[] = {0, 4, 6}, index[] = {0, 1, 2, 40, 0, 41, 3, 2};
  const double value[] = {1, 2, 3, 4, 5, 6, 7, 8};
  char a[] = "one", b[] = "two";
  std::string long_name(3000, 'c');
  char* names[] = {a, b, long_name.data()};
  fail_in_all_states("add rows", [&](ProbHandle lp) {
    return TVKaddrows(env_, lp, 2, 3, 8, rhs, "LEG", begin, index, value, names, names);
  });
  const int rows[] = {0, 5, 9, 9, 11, 0, 3, 1};
  fail_in_all_states("add columns", [&](ProbHandle lp) {
    return TVKaddcols(env_, lp, 3, 8, rhs, begin, rows, value, nullptr, rhs, names);
  });
  fail_in_all_states("typed columns", [&](ProbHandle lp) {
    return TVKnewcols(env_, lp, 2, rhs, nullptr, nullptr, "IB", nullptr);
  });
  const int list_rows[] = {1, 2, 3, 4, 1, 2, 0, 7}, list_columns[] = {1, 1, 1, 1, 2, 0, 0, 39};
  const double list_values[] = {1, 2, 3, 4, 5, 0, 0, 8};
  fail_in_all_states("coefficient list", [&](ProbHandle lp) {
    return TVKchgcoeflist(env_, lp, 8, list_rows, list_columns, list_values);
  });
  fail_in_all_states("delete rows in the middle", [&](ProbHandle lp) { return TVKdelrows(env_, lp, 3, 5); });
  int marks[40];
  fail_in_all_states("delete columns by marks", [&](ProbHandle lp) {
    for (int k = 0; k < 40; ++k) marks[k] = k % 3;
    return TVKdelsetcols(env_, lp, marks);
  });
  const int renamed[] = {5, 6, 7};
  fail_everywhere("rename", true, true,
                  [&](ProbHandle lp) { return TVKchgcolname(env_, lp, 3, renamed, names); });
  const int begins[] = {0, 1, 3}, counts[] = {1, 2, 3}, indices[] = {0, 0, 1, 0, 1, 1};
  fail_in_all_states("copy", [&](ProbHandle lp) {
    return TVKcopylpwnames(env_, lp, 3, 2, 1, rhs, rhs, "LL", begins, counts, indices, value, rhs, rhs,
                           nullptr, names, names);
  });
}

TEST_F(OutOfMemory, LeavesTheFamiliesAsTheyWere) {
  with_families_ = true;
  const double values[] = {1, 2, 3, 4, 5, 6};
  const int begin[] = {0, 4}, columns[] = {0, 3, 7, 3, 39, 5}, first[] = {0};
  std::string long_name(250, 'f');
  char a[] = "one";
  char* names[] = {a, long_name.data()};
  const auto fails = [&](const char* what, const Call& call) { fail_everywhere(what, false, true, call); };
  fails("copy sets",
        [&](ProbHandle lp) { return TVKcopysos(env_, lp, 2, 6, "12", begin, columns, values, names); });
  fails("add sets",
        [&](ProbHandle lp) { return TVKaddsos(env_, lp, 2, 6, "12", begin, columns, values, names); });
  fails("delete sets", [&](ProbHandle lp) { return TVKdelsos(env_, lp, 0, 0); });
  fails("add cuts", [&](ProbHandle lp) {
    return TVKaddusercuts(env_, lp, 2, 6, values, "LG", begin, columns, values, names);
  });
  fails("add lazy constraints", [&](ProbHandle lp) {
    return TVKaddlazyconstraints(env_, lp, 2, 6, values, "LG", begin, columns, values, names);
  });
  fails("add an indicator constraint", [&](ProbHandle lp) {
    return TVKEaddindconstr(env_, lp, 4, 1, 6, 2, 'G', columns, values, long_name.c_str());
  });
  fails("copy an order", [&](ProbHandle lp) { return TVKcopyorder(env_, lp, 6, columns, columns, nullptr); });
  fails("add starts", [&](ProbHandle lp) {
    return TVKaddmipstarts(env_, lp, 2, 6, begin, columns, values, columns, names);
  });
  fails("change a start", [&](ProbHandle lp) {
    return TVKchgmipstarts(env_, lp, 1, first, 6, begin, columns, values, nullptr);
  });
  fails("change the quadratic objective", [&](ProbHandle lp) { return TVKchgqpcoef(env_, lp, 30, 1, 2); });
  const std::vector<double> diagonal(40, 2.0);
  fails("copy a quadratic objective", [&](ProbHandle lp) { return TVKcopyqpsep(env_, lp, diagonal.data()); });
  fails("add a quadratic constraint", [&](ProbHandle lp) {
    return TVKaddqconstr(env_, lp, 6, 6, 1, 'G', columns, values, columns, columns, values,
                         long_name.c_str());
  });
  fails("name a set", [&](ProbHandle lp) { return TVKchgname(env_, lp, 'l', 0, long_name.c_str()); });
  fails("delete columns", [&](ProbHandle lp) { return TVKdelcols(env_, lp, 2, 5); });
  with_families_ = false;
  fail_everywhere("become mixed-integer", true, true,
                  [&](ProbHandle lp) { return TVKchgprobtype(env_, lp, 1); });
}

}  // namespace
