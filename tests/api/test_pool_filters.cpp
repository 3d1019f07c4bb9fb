/* Filters of the solution pool through the public header: what they keep out, queries, deletion, files, errors. */
#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "support/knapsack_models.h"

namespace {

class PoolFilters : public support::KnapsackModels {
 protected:
  static constexpr int kAll[] = {0, 1, 2};
  static constexpr double kOnes[] = {1, 1, 1}, kZeros[] = {0, 0, 0};

  void SetUp() override {
    KnapsackModels::SetUp();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SOLNPOOLINTENSITY, 4), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_POPULATELIM, 1000), 0);
  }
  /* Seven points: of the columns a, b, c all but (1, 1, 1); values 0 1 2 3 3 4 5. */
  ProbHandle seven() {
    return read("Maximize obj: 3 a + 2 b + c\nSubject To\n r: a + b + c <= 2\nBinary\n a b c\nEnd\n");
  }
  std::vector<double> populate(ProbHandle lp) {
    EXPECT_EQ(TVKpopulate(env_, lp), 0) << errors();
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);
    return members(lp);
  }
  std::vector<double> members(ProbHandle lp) {
    std::vector<double> all(static_cast<std::size_t>(TVKgetsolnpoolnumsolns(env_, lp)));
    for (std::size_t k = 0; k < all.size(); ++k)
      EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, static_cast<int>(k), &all[k]), 0);
    std::sort(all.begin(), all.end());
    return all;
  }
  /* Of the columns a, b, c: the number of ones. */
  int add_distance(ProbHandle lp, double lower, double upper, const char* name = nullptr) {
    return TVKaddsolnpooldivfilter(env_, lp, lower, upper, 3, kAll, nullptr, kZeros, name);
  }
  std::string name(ProbHandle lp, int which) {
    char text[400];
    int surplus = -1;
    EXPECT_EQ(TVKgetsolnpoolfiltername(env_, lp, text, 400, &surplus, which), 0) << errors();
    return text;
  }
  int write(const std::string& file, const std::string& text) {
    std::ofstream(file) << text;
    return 0;
  }
  static std::string text_of(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
};

using Values = std::vector<double>;

}  // namespace

TEST_F(PoolFilters, KeepOutWhatDoesNotPass) {
  ProbHandle lp = seven();
  ASSERT_EQ(add_distance(lp, 2, TVK_INFBOUND), 0) << errors();
  EXPECT_EQ(populate(lp), (Values{3, 4, 5}));
  // One that comes later is for those that are there, too.
  const double no_third[] = {0, 0, 1};
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 1, 1, 3, kAll, no_third, "c is there"), 0);
  EXPECT_EQ(members(lp), (Values{3, 4}));
  EXPECT_EQ(populate(lp), (Values{3, 4}));
  EXPECT_EQ(objective(lp), 5);  // the incumbent need not pass
  EXPECT_EQ(x(lp), (Values{1, 1, 0}));

  // The gap counts from the best of all.
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 1), 0);
  EXPECT_EQ(TVKpopulate(env_, lp), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  EXPECT_EQ(members(lp), (Values{4}));
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 1e75), 0);

  int marks[] = {1, 0};
  ASSERT_EQ(TVKdelsetsolnpoolfilters(env_, lp, marks), 0);
  EXPECT_EQ(marks[0], -1);
  EXPECT_EQ(marks[1], 0);
  EXPECT_EQ(populate(lp), (Values{1, 3, 4}));
  ASSERT_EQ(TVKdelsolnpoolfilters(env_, lp, 0, 0), 0);
  EXPECT_EQ(populate(lp), (Values{0, 1, 2, 3, 3, 4, 5}));

  // Nothing can be both; nothing is found, and all of it.
  ASSERT_EQ(add_distance(lp, 2, 1), 0);
  EXPECT_EQ(populate(lp), Values{});
}

/* Of an assignment the best solution does not pass, another one does. */
TEST_F(PoolFilters, FindSolutionsThatPassWhereTheBestDoesNot) {
  ProbHandle lp =
      read("Minimize obj: x + 10 a\nSubject To\n r: x + 3 a >= 2\nBounds\n x <= 9\nBinary\n a\nEnd\n");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SOLNPOOLINTENSITY, 4), 0);
  EXPECT_EQ(populate(lp), (Values{2, 10}));
  const int first = 0;
  const double one = 1;
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 4, TVK_INFBOUND, 1, &first, &one, nullptr), 0);
  EXPECT_EQ(members(lp), Values{});
  EXPECT_EQ(populate(lp), (Values{4, 14}));
  EXPECT_EQ(objective(lp), 2);
}

TEST_F(PoolFilters, ActOnStartsAndTheSearch) {
  ProbHandle lp = seven();
  const int beg[] = {0, 3}, columns[] = {0, 1, 2, 0, 1, 2}, efforts[] = {1, 1};
  const double values[] = {0, 0, 1, 1, 0, 1};
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 2, 6, beg, columns, values, efforts, nullptr), 0);
  ASSERT_EQ(add_distance(lp, 0, 1), 0);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const Values found = members(lp);
  EXPECT_TRUE(std::count(found.begin(), found.end(), 1.0) == 1);  // the first start
  EXPECT_TRUE(std::all_of(found.begin(), found.end(), [](double v) { return v <= 3; }));
  EXPECT_EQ(objective(lp), 5);
}

TEST_F(PoolFilters, TellWhatTheyAre) {
  ProbHandle lp = seven();
  const double weights[] = {1, 2}, reference[] = {1, 0.5};
  const int columns[] = {2, 0};
  ASSERT_EQ(TVKaddsolnpooldivfilter(env_, lp, -1e30, 3, 2, columns, weights, reference, nullptr), 0);
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, -1, 1e30, 2, columns, weights, "of two"), 0);
  ASSERT_EQ(add_distance(lp, 0, 3, ""), 0);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 3);
  EXPECT_EQ(name(lp, 0), "f1");
  EXPECT_EQ(name(lp, 1), "of two");
  EXPECT_EQ(name(lp, 2), "f3");
  int type = 0, index = -1, count = -1, surplus = 0, ind[3] = {-1, -1, -1};
  double lower = NAN, upper = NAN, val[3] = {}, ref[3] = {};
  EXPECT_EQ(TVKgetsolnpoolfiltertype(env_, lp, &type, 1), 0);
  EXPECT_EQ(type, TVK_FILTER_RANGE);
  EXPECT_EQ(TVKgetsolnpoolfilterindex(env_, lp, "of two", &index), 0);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(TVKgetsolnpooldivfilter(env_, lp, &lower, &upper, &count, ind, val, ref, 3, &surplus, 0), 0);
  EXPECT_EQ(lower, -1e20);
  EXPECT_EQ(upper, 3);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(surplus, 1);
  EXPECT_EQ(std::vector<int>(ind, ind + 2), std::vector<int>(columns, columns + 2));
  EXPECT_EQ(Values(val, val + 2), Values(weights, weights + 2));
  EXPECT_EQ(Values(ref, ref + 2), Values(reference, reference + 2));
  EXPECT_EQ(TVKgetsolnpoolrngfilter(env_, lp, &lower, &upper, &count, ind, val, 1, &surplus, 1),
            TVK_ERROR_ARRAY_TOO_SHORT);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(surplus, -1);
  EXPECT_EQ(upper, 1e20);
  EXPECT_EQ(TVKgetsolnpoolrngfilter(env_, lp, nullptr, nullptr, nullptr, nullptr, nullptr, 0, &surplus, 1),
            TVK_ERROR_ARRAY_TOO_SHORT);
  EXPECT_EQ(surplus, -2);
  EXPECT_EQ(TVKgetsolnpoolrngfilter(env_, lp, &lower, &upper, &count, ind, val, 3, &surplus, 0),
            TVK_ERROR_BAD_ARGUMENT);
  EXPECT_EQ(TVKgetsolnpooldivfilter(env_, lp, &lower, &upper, &count, ind, val, nullptr, 3, &surplus, 0),
            TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(TVKgetsolnpoolfiltertype(env_, lp, &type, 3), TVK_ERROR_INDEX_RANGE);
  EXPECT_EQ(TVKgetsolnpoolfilterindex(env_, lp, "f2", &index), TVK_ERROR_NAME_NOT_FOUND);

  // Numbers are given once, names that are taken left out.
  ASSERT_EQ(TVKdelsolnpoolfilters(env_, lp, 0, 1), 0);
  ASSERT_EQ(add_distance(lp, 0, 3, "f5"), 0);
  ASSERT_EQ(add_distance(lp, 0, 3), 0);
  EXPECT_EQ(name(lp, 0) + name(lp, 1) + name(lp, 2), "f3f5f6");
}

TEST_F(PoolFilters, BadInputChangesNothing) {
  ProbHandle lp = read(
      "Maximize obj: a + y + z\nSubject To\n r: a + y + z <= 9\nBounds\n y <= 5\n z <= 1\nBinary\n "
      "a\nGeneral\n y "
      "z\nEnd\n");
  const double nan = NAN, inf = std::numeric_limits<double>::infinity(), one = 1;
  const int y = 1, z = 2, outside = 3, twice[] = {0, 0};
  const auto diversity = [&](double lower, int count, const int* ind, const double* ref) {
    return TVKaddsolnpooldivfilter(env_, lp, lower, 2, count, ind, nullptr, ref, nullptr);
  };
  EXPECT_EQ(diversity(0, 1, &y, &one), TVK_ERROR_FILTER_NOT_BINARY);
  EXPECT_NE(errors().find("TOVIK Error  3414: Diversity filter has non-binary variable"), std::string::npos);
  EXPECT_EQ(diversity(0, -1, &y, &one), TVK_ERROR_BAD_ARGUMENT);
  EXPECT_EQ(diversity(0, 1, nullptr, &one), TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(diversity(0, 1, &z, nullptr), TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(diversity(0, 1, &outside, &one), TVK_ERROR_COLUMN_INDEX_RANGE);
  EXPECT_EQ(diversity(0, 2, twice, kOnes), TVK_ERROR_DUPLICATE_ENTRY);
  EXPECT_EQ(diversity(nan, 1, &z, &one), TVK_ERROR_NOT_A_NUMBER);
  EXPECT_EQ(diversity(0, 1, &z, &nan), TVK_ERROR_NOT_A_NUMBER);
  EXPECT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 0, 1, 1, &y, &inf, nullptr), TVK_ERROR_NUMBER_TOO_BIG);
  EXPECT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 0, 1, 1, &y, &one, "bell \a"), TVK_ERROR_BAD_ARGUMENT);
  EXPECT_EQ(TVKdelsolnpoolfilters(env_, lp, 0, 0), TVK_ERROR_INDEX_RANGE);
  EXPECT_EQ(TVKdelsetsolnpoolfilters(env_, lp, nullptr), TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 0);
  EXPECT_EQ(diversity(0, 1, &z, &one), 0);
  EXPECT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 0, 1, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 2);

  // Where they end.
  int status = 0;
  ProbHandle clone = TVKcloneprob(env_, lp, &status);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, clone), 0);
  EXPECT_EQ(TVKdelcols(env_, lp, 0, 0), 0);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 0);
  EXPECT_EQ(TVKaddsolnpoolrngfilter(env_, clone, 0, 1, 1, &y, &one, nullptr), 0);
  EXPECT_EQ(TVKchgprobtype(env_, clone, TVK_PROBTYPE_LP), 0);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, clone), 0);
  EXPECT_EQ(TVKaddsolnpoolrngfilter(env_, clone, 0, 1, 1, &y, &one, nullptr), TVK_ERROR_NOT_MIP);
}

/* A column that was binary may be any now: it counts by its distance. */
TEST_F(PoolFilters, OutliveChangesOfTheModel) {
  ProbHandle lp =
      read("Maximize obj: a + b\nSubject To\n r: a + b <= 3\nBounds\n a <= 1\n b <= 1\nGeneral\n a b\nEnd\n");
  const int both[] = {0, 1};
  ASSERT_EQ(TVKaddsolnpooldivfilter(env_, lp, 2, 2, 2, both, nullptr, kOnes, nullptr), 0);
  EXPECT_EQ(populate(lp), (Values{0}));
  const double two[] = {2, 2};
  ASSERT_EQ(TVKchgbds(env_, lp, 2, both, "UU", two), 0);
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 1);
  EXPECT_EQ(populate(lp), (Values{0, 2, 2}));  // (0, 0), (0, 2), (2, 0)
}

TEST_F(PoolFilters, FilesHoldThemExactly) {
  ProbHandle lp = seven();
  const std::string file = temporary("a.flt"), packed = temporary("a.flt.gz"), again = temporary("b.flt");
  const double odd[] = {0.1, 1.0 / 3, -2.5e-17}, reference[] = {0, 1, 1e-9};
  const std::string names[] = {"plain", "<&\"'> \t\n\r", "\xe9\xff latin", "\xc3\xa9 utf-8"};
  ASSERT_EQ(TVKaddsolnpooldivfilter(env_, lp, 1.0 / 7, 1e30, 3, kAll, odd, reference, names[0].c_str()), 0);
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, -1e30, 2.0 / 7, 3, kAll, odd, names[1].c_str()), 0);
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 0, 0, 0, nullptr, nullptr, names[2].c_str()), 0);
  ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, 1, 2, 3, kAll, odd, names[3].c_str()), 0);
  const char* const column = "\xe8 <b>";
  const int first = 0;
  ASSERT_EQ(TVKchgcolname(env_, lp, 1, &first, &column), 0);
  ASSERT_EQ(TVKfltwrite(env_, lp, file.c_str()), 0) << errors();
  ASSERT_EQ(TVKfltwrite(env_, lp, packed.c_str()), 0) << errors();
  const std::string text = text_of(file);
  EXPECT_NE(text.find(" <diversityFilter name=\"plain\" lowerBound=\"0.14285714285714285\">\n"
                      "  <variable name=\"\xe8 &lt;b&gt;\" index=\"0\" weight=\"0.1\" value=\"0\"/>\n"),
            std::string::npos)
      << text;
  ASSERT_EQ(TVKdelsolnpoolfilters(env_, lp, 0, 3), 0);
  ASSERT_EQ(TVKreadcopysolnpoolfilters(env_, lp, packed.c_str()), 0) << errors();
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 4);
  for (int k = 0; k < 4; ++k) EXPECT_EQ(name(lp, k), names[k]);
  ASSERT_EQ(TVKfltwrite(env_, lp, again.c_str()), 0);
  EXPECT_EQ(text_of(again), text);
  // Behind those that are there, which the extension may be left out for.
  ASSERT_EQ(TVKreadcopysolnpoolfilters(env_, lp, file.substr(0, file.size() - 4).c_str()), 0) << errors();
  EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 8);

  // Columns are found by name where there are names, else by index.
  ProbHandle other = read("Minimize obj: b + a\nSubject To\n r: b + a >= 0\nBinary\n a b\nEnd\n");
  write(file,
        "<TOVIKFilters><rangeFilter upperBound=\"1\"><variable name=\"a\" index=\"0\"/><variable "
        "name=\"none\"/>"
        "<variable index=\"0\" coefficient=\"2\"/></rangeFilter></TOVIKFilters>");
  ASSERT_EQ(TVKreadcopysolnpoolfilters(env_, other, file.c_str()), 0) << errors();
  int ind[3] = {}, count = 0, surplus = 0;
  double val[3] = {}, lower = 0, upper = 0;
  ASSERT_EQ(TVKgetsolnpoolrngfilter(env_, other, &lower, &upper, &count, ind, val, 3, &surplus, 0), 0);
  EXPECT_EQ(std::vector<int>(ind, ind + count), (std::vector<int>{1, 0}));
  EXPECT_EQ(Values(val, val + count), (Values{1, 2}));
  EXPECT_EQ(lower, -1e20);
}

TEST_F(PoolFilters, BadFilesChangeNothing) {
  ProbHandle lp = seven();
  ASSERT_EQ(add_distance(lp, 0, 3), 0);
  const std::string file = temporary("bad.flt");
  const struct {
    const char* text;
    int code;
  } kFiles[] = {
      {"", TVK_ERROR_XML_PARSE},
      {"NAME x\n", TVK_ERROR_XML_PARSE},
      {"<TOVIKSolution></TOVIKSolution>", TVK_ERROR_XML_PARSE},
      {"<TOVIKFilters><rangeFilter></TOVIKFilters>", TVK_ERROR_XML_PARSE},
      {"<TOVIKFilters><rangeFilter/><rangeFilter lowerBound=\"x\"/></TOVIKFilters>",
       TVK_ERROR_LINE_NUMBER_CONVERSION},
      {"<TOVIKFilters><rangeFilter upperBound=\"nan\"/></TOVIKFilters>", TVK_ERROR_LINE_NUMBER_CONVERSION},
      {"<TOVIKFilters><rangeFilter><variable index=\"1\" coefficient=\"\"/></rangeFilter></TOVIKFilters>",
       TVK_ERROR_LINE_NUMBER_CONVERSION},
      {"<TOVIKFilters><rangeFilter/><diversityFilter><variable index=\"1\"/><variable name=\"b\"/>"
       "</diversityFilter></TOVIKFilters>",
       TVK_ERROR_DUPLICATE_ENTRY},
  };
  for (const auto& [text, code] : kFiles) {
    write(file, text);
    EXPECT_EQ(TVKreadcopysolnpoolfilters(env_, lp, file.c_str()), code) << text;
    EXPECT_EQ(TVKgetsolnpoolnumfilters(env_, lp), 1) << text;
  }
  EXPECT_EQ(TVKreadcopysolnpoolfilters(env_, lp, "/nowhere/a.flt"), TVK_ERROR_OPEN_FOR_READING);
  EXPECT_EQ(TVKreadcopysolnpoolfilters(env_, lp, nullptr), TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(TVKfltwrite(env_, lp, "/nowhere/a.flt"), TVK_ERROR_OPEN_FOR_WRITING);
  EXPECT_EQ(TVKfltwrite(env_, lp, ""), TVK_ERROR_NO_FILE_NAME);
  EXPECT_EQ(TVKfltwrite(env_, lp, "/dev/full"), TVK_ERROR_TEMPORARY_FILE_WRITE);
  ProbHandle general = read("Minimize obj: b\nSubject To\n r: b >= 0\nBounds\n b <= 7\nGeneral\n b\nEnd\n");
  write(file, "<TOVIKFilters><diversityFilter><variable name=\"b\"/></diversityFilter></TOVIKFilters>");
  EXPECT_EQ(TVKreadcopysolnpoolfilters(env_, general, file.c_str()), TVK_ERROR_FILTER_NOT_BINARY);
  ProbHandle continuous = read("Minimize obj: b\nSubject To\n r: b >= 0\nEnd\n");
  EXPECT_EQ(TVKreadcopysolnpoolfilters(env_, continuous, file.c_str()), TVK_ERROR_NOT_MIP);
}
