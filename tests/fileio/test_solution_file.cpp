/* Solution and MIP-start files: their text, what comes back, and what readers say about faulty ones. */
#include <algorithm>
#include <cmath>

#include "support/file_fixture.h"

namespace {

const std::string kXml = "<?xml version = \"1.0\" standalone=\"yes\"?>\n";

class SolutionFile : public support::WithFiles {
 protected:
  void load(const std::string& lp_text) {
    ASSERT_EQ(read_text("model.lp", lp_text), 0) << errors();
    ASSERT_EQ(TVKchgprobname(env_, lp_, "p"), 0);
    warnings();
  }
  void load_mip() { load("max x + y + z\nst\n r: x + y + z <= 9.5\ngenerals\n x y\nend\n"); }
  /* A document with one solution. */
  static std::string document(const std::string& inside, const std::string& header = "") {
    return kXml + "<TOVIKSolution version=\"1.2\">\n <header" + header + "/>\n <variables>\n" + inside +
           " </variables>\n</TOVIKSolution>\n";
  }
  int read_start(const std::string& text) {
    put("a.mst", text);
    return TVKreadcopymipstart(env_, lp_, path("a.mst").c_str());
  }
  /* MIP starts as "EFFORT column:value ...", each on a line. */
  std::string starts() {
    std::string text;
    for (int k = 0; k < TVKgetnummipstarts(env_, lp_); ++k) {
      int count = 0, begin = 0, effort = 0, surplus = 0, columns[8];
      double values[8];
      EXPECT_EQ(TVKgetmipstarts(env_, lp_, &count, &begin, columns, values, &effort, 8, &surplus, k, k), 0);
      text += std::to_string(effort);
      for (int e = 0; e < count; ++e)
        text += ' ' + std::to_string(columns[e]) + ':' + support::number(values[e]);
      text += '\n';
    }
    return text;
  }
  void forget_starts() {
    if (TVKgetnummipstarts(env_, lp_) > 0) {
      ASSERT_EQ(TVKdelmipstarts(env_, lp_, 0, TVKgetnummipstarts(env_, lp_) - 1), 0);
    }
  }
};

TEST_F(SolutionFile, TextOfASolution) {
  load("max 3 x + 2 y + z\nst\n a: x + 4 y + z <= 4\nbounds\n x <= 2\nend\n");
  const int row = 0;
  const char* name = "\"a&'<'>";
  ASSERT_EQ(TVKchgrowname(env_, lp_, 1, &row, const_cast<char**>(&name)), 0);
  EXPECT_EQ(TVKsolwrite(env_, lp_, path("a.sol").c_str()), 1217);
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  const int iterations = TVKgetitcnt(env_, lp_);
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("a.sol").c_str()), 0);
  const std::string text = content("a.sol");
  EXPECT_TRUE(text.starts_with(
      kXml +
      "<TOVIKSolution version=\"1.2\">\n <header\n   problemName=\"p\"\n   objectiveValue=\"8\"\n"
      "   solutionTypeValue=\"1\"\n   solutionTypeString=\"basic\"\n   solutionStatusValue=\"1\"\n"
      "   solutionStatusString=\"optimal\"\n   solutionMethodString=\"dual\"\n   primalFeasible=\"1\"\n"
      "   dualFeasible=\"1\"\n   simplexIterations=\"" +
      std::to_string(iterations) + "\"\n   writeLevel=\"1\"/>\n <quality\n   epRHS=\"1e-06\"\n"))
      << text;
  EXPECT_TRUE(
      text.ends_with("/>\n <linearConstraints>\n"
                     "  <constraint name=\"&quot;a&amp;&apos;&lt;&apos;&gt;\" index=\"0\" status=\"LL\" "
                     "slack=\"0\" dual=\"1\"/>\n"
                     " </linearConstraints>\n <variables>\n"
                     "  <variable name=\"x\" index=\"0\" status=\"UL\" value=\"2\" reducedCost=\"2\"/>\n"
                     "  <variable name=\"y\" index=\"1\" status=\"LL\" value=\"0\" reducedCost=\"-2\"/>\n"
                     "  <variable name=\"z\" index=\"2\" status=\"BS\" value=\"2\" reducedCost=\"0\"/>\n"
                     " </variables>\n</TOVIKSolution>\n"))
      << text;

  const int slack_basis[] = {0, 0, 0}, row_basis[] = {1};
  ASSERT_EQ(TVKcopybase(env_, lp_, slack_basis, row_basis), 0);
  ASSERT_EQ(TVKreadcopysol(env_, lp_, path("a").c_str()), 0) << errors();
  EXPECT_EQ(warnings(), "");
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);

  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_WRITELEVEL, 3), 0);
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("b.sol.gz").c_str()), 0);
  ASSERT_EQ(TVKreadcopysol(env_, lp_, path("b.sol.gz").c_str()), 0);
  EXPECT_EQ(warnings(), "");  // the values that are there are a start
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_WRITELEVEL, 2), 0);
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("c.sol").c_str()), 0);
  EXPECT_TRUE(content("c.sol").ends_with(" <variables>\n </variables>\n</TOVIKSolution>\n"));
}

TEST_F(SolutionFile, EveryDigitComesBackWhereItIsAskedFor) {
  load("max x + y\nst\n a: 3 x <= 1\n b: 7 y <= 1\nend\n");
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  double x[2], read[2];
  ASSERT_EQ(TVKgetx(env_, lp_, x, 0, 1), 0);
  const auto values_of = [&](const char* name) {
    EXPECT_EQ(TVKreadsolution(env_, lp_, path(name).c_str(), 0, nullptr, nullptr, nullptr, nullptr, read,
                              nullptr, nullptr, nullptr, nullptr, nullptr),
              0);
  };
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("short.sol").c_str()), 0);
  values_of("short.sol");
  EXPECT_TRUE(read[0] != x[0] || read[1] != x[1]) << "15 digits tell neither of them";
  ASSERT_EQ(TVKsolwriteexact(env_, lp_, path("exact.sol").c_str()), 0);
  values_of("exact.sol");
  EXPECT_EQ(read[0], x[0]);
  EXPECT_EQ(read[1], x[1]);
}

TEST_F(SolutionFile, MipStartsComeBack) {
  load_mip();
  EXPECT_EQ(TVKwritemipstarts(env_, lp_, path("a.mst").c_str(), 0, 0), 3020);
  const int begin[] = {0, 3}, columns[] = {0, 1, 2, 1}, efforts[] = {-1, 3};
  const double values[] = {3, 0, 2.5, -7};
  const char* names[] = {"first & \"best\"", "second"};
  ASSERT_EQ(TVKaddmipstarts(env_, lp_, 2, 4, begin, columns, values, efforts, const_cast<char**>(names)), 0);
  ASSERT_EQ(TVKwritemipstarts(env_, lp_, path("one.mst").c_str(), 0, 0), 0);
  EXPECT_EQ(content("one.mst"),
            kXml +
                "<TOVIKSolution version=\"1.2\">\n <header\n   problemName=\"p\"\n"
                "   solutionName=\"first &amp; &quot;best&quot;\"\n   solutionIndex=\"0\"\n"
                "   MIPStartEffortLevel=\"0\"\n   writeLevel=\"1\"/>\n <variables>\n"
                "  <variable name=\"x\" index=\"0\" value=\"3\"/>\n"
                "  <variable name=\"y\" index=\"1\" value=\"0\"/>\n"
                "  <variable name=\"z\" index=\"2\" value=\"2.5\"/>\n </variables>\n</TOVIKSolution>\n");
  ASSERT_EQ(TVKwritemipstarts(env_, lp_, path("all.mst.bz2").c_str(), 0, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_WRITELEVEL, 4), 0);
  ASSERT_EQ(TVKwritemipstarts(env_, lp_, path("some.mst").c_str(), 0, 0), 0);
  EXPECT_EQ(TVKwritemipstarts(env_, lp_, path("some.mst").c_str(), 0, 2), 1200);
  errors();
  forget_starts();
  ASSERT_EQ(TVKreadcopymipstarts(env_, lp_, path("all.mst.bz2").c_str()), 0) << errors();
  EXPECT_EQ(starts(), "0 0:3 1:0 2:2.5\n3 1:-7\n");
  EXPECT_EQ(support::names(env_, lp_, TVKgetmipstartname, 2), (std::vector<std::string>{names[0], names[1]}));
  forget_starts();
  ASSERT_EQ(TVKreadcopymipstart(env_, lp_, path("all.mst.bz2").c_str()), 0);
  EXPECT_EQ(starts(), "0 0:3 1:0 2:2.5\n");
  EXPECT_EQ(warnings(), "Warning: more than one TOVIKSolution element in file, only first one processed.\n");
  ASSERT_EQ(TVKreadcopysol(env_, lp_, path("some.mst").c_str()), 0);
  EXPECT_EQ(starts(), "0 0:3 1:0 2:2.5\n0 0:3\n");
}

TEST_F(SolutionFile, NamesOfAnyBytesComeBack) {
  load_mip();
  const int columns[] = {0, 1, 2};
  const double values[] = {1, 2, 3};
  const int begin = 0;
  const char* const families[][3] = {
      {"\xe9t\xe9", "\xff\x80", "plain"},            // Latin-1
      {"\xc3\xa9t\xc3\xa9", "\xe2\x82\xac", "b"},    // UTF-8
      {"\xc3\xa9", "\xe9", "c"},                     // both
      {"tab\there", "line\nfeed", " two  blanks "},  // white space
      {"bell\a", "same", "same"},                    // what no document can hold, and what is not unique
  };
  for (const auto& names : families) {
    SCOPED_TRACE(names[0]);
    ASSERT_EQ(TVKchgcolname(env_, lp_, 3, columns, const_cast<char**>(names)), 0);
    ASSERT_EQ(TVKaddmipstarts(env_, lp_, 1, 3, &begin, columns, values, nullptr, nullptr), 0);
    ASSERT_EQ(TVKwritemipstarts(env_, lp_, path("a.mst").c_str(), 0, 0), 0);
    forget_starts();
    ASSERT_EQ(TVKreadcopymipstart(env_, lp_, path("a.mst").c_str()), 0) << errors() << content("a.mst");
    EXPECT_EQ(starts(), "0 0:1 1:2 2:3\n") << content("a.mst");
    EXPECT_EQ(warnings(), "");
    forget_starts();
  }
}

struct Element {
  const char* text;
  const char* start;  // of the first element line, which is line 5
  const char* warning;
};

TEST_F(SolutionFile, Elements) {
  const Element cases[] = {
      {"<variable name=\"y\" value=\"1.5\"/>", "0 1:1.5\n", ""},
      {"<variable index=\"2\" value=\"-1e3\"/>", "0 2:-1000\n", ""},
      {"<variable index=\"1.9\" value=\"1\"/>", "0 1:1\n", ""},
      {"<variable value=\"4\" index=\"0\" name=\"z\"/>", "0 2:4\n", ""},
      {"<variable name=\"x\"/><variable name=\"y\" value=\"1\"/>", "0 1:1\n", ""},
      {"<variable name=\"x\" value=\"1\"/><variable name=\"x\" value=\"2\"/>", "0 0:2\n",
       "Warning, line 5: repeated entry for 'x'.\n"},
      {"<variable name=\"x\" value=\"1\"/><variable name=\"x\"/>", "",
       "Warning, line 5: repeated entry for 'x'.\nWarning: no MIP start values read, no MIP start loaded.\n"},
      {"<variable index=\"1\" value=\"1\"/><variable index=\"1\" value=\"2\"/>", "0 1:2\n",
       "Warning, line 5: repeated entry for variable index 1.\n"},
      {"<variable name=\"q\" index=\"0\" value=\"1\"/><variable name=\"y\" value=\"1\"/>", "0 1:1\n",
       "Warning, line 5: 'q' is not a variable.\n"},
      {"<variable index=\"3\" value=\"1\"/><variable index=\"-1\" value=\"1\"/>", "",
       "Warning, line 5: Variable index '3' out of range.\nWarning, line 5: Variable index '-1' out of "
       "range.\nWarning: no MIP start values read, no MIP start loaded.\n"},
      {"", "", "Warning: no MIP start values read, no MIP start loaded.\n"},
  };
  for (const Element& c : cases) {
    SCOPED_TRACE(c.text);
    load_mip();
    EXPECT_EQ(read_start(document(std::string(c.text) + "\n")), 0) << errors();
    EXPECT_EQ(starts(), c.start);
    EXPECT_EQ(warnings(), c.warning);
  }
  load_mip();
  std::string many;
  for (int k = 0; k < 25; ++k) many += "<variable name=\"n" + std::to_string(k) + "\" value=\"1\"/>\n";
  EXPECT_EQ(read_start(document(many + "<variable name=\"x\" value=\"1\"/>")), 0);
  const std::string said = warnings();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 21);
  EXPECT_TRUE(said.ends_with("'n19' is not a variable.\n5 warnings not printed.\n"));
  EXPECT_EQ(read_start(document("<variable name=\"x\" value=\"1\"/>", " MIPStartEffortLevel=\"4\"")), 0);
  EXPECT_EQ(starts(), "0 0:1\n4 0:1\n");
}

TEST_F(SolutionFile, TextStartsAndFaultyFiles) {
  load_mip();
  EXPECT_EQ(read_start("NAME  start\n* comment\n    x  1\n    z  2.5\nENDATA\n"), 0);
  EXPECT_EQ(starts(), "0 0:1 2:2.5\n");
  struct Case {
    std::string text;
    int code;
    std::string error;
  };
  const Case cases[] = {
      {" " + document("<variable name=\"x\" value=\"1\"/>"), 1434, ""},  // text, as a blank comes first
      {kXml + "<TOVIKSolution>", 1425, "XML parsing error at line 2: no element found"},
      {kXml + "<TOVIKSolution></x>", 1425, "XML parsing error at line 2: mismatched tag"},
      {document("<variable name=\"\x01\"/>"), 1425, ""},
      {document("<variable name=\"x\" value=\"1x\"/>"), 1434, "Line 5: Couldn't convert '1x' to a number"},
      {"NAME\n    x  1  2\nENDATA\n", 1553, "Line 2: Wrong number of entries"},
      {"", 0, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const int code = read_start(c.text);
    if (c.error.empty()) {
      EXPECT_EQ(code != 0, c.code != 0);
      errors();
    } else {
      EXPECT_EQ(code, c.code);
      EXPECT_EQ(errors(), "TOVIK Error  " + std::to_string(c.code) + ": " + c.error + ".\n");
    }
    EXPECT_EQ(starts(), "0 0:1 2:2.5\n");
  }
  EXPECT_EQ(TVKreadcopymipstart(env_, lp_, path("absent").c_str()), 1423);
  EXPECT_EQ(TVKreadcopysol(env_, lp_, nullptr), 1421);
  load("min x\nend\n");
  EXPECT_EQ(TVKreadcopymipstart(env_, lp_, path("a.mst").c_str()), 3003);
  put("a.sol", document("<variable name=\"y\" value=\"1\"/>"));
  EXPECT_EQ(TVKreadcopysol(env_, lp_, path("a.sol").c_str()), 0);
  EXPECT_EQ(
      warnings(),
      "Warning, line 5: 'y' is not a variable.\nWarning: no complete solution read, no start loaded.\n");
}

TEST_F(SolutionFile, QueryHandsOverWhatAFileSaysAndLeavesTheProblemAlone) {
  load("max 3 x + 2 y + z\nst\n a: x + 4 y + z <= 4\nbounds\n x <= 2\nend\n");
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("a.sol").c_str()), 0);
  double objective = 0, x[3], dj[3], pi[1], slack[1];
  int count = 0, unknown = -1, status = 0, cstat[3], rstat[1];
  const auto read = [&](const char* name, int which = 0) {
    return TVKreadsolution(env_, lp_, path(name).c_str(), which, &count, &unknown, &status, &objective, x, pi,
                           slack, dj, cstat, rstat);
  };
  ASSERT_EQ(read("a.sol"), 0) << errors();
  EXPECT_EQ(TVKgetstat(env_, lp_), 1) << "the solution is still there";
  EXPECT_EQ((std::vector<double>{objective, x[0], x[1], x[2], dj[0], dj[1], dj[2], pi[0], slack[0]}),
            (std::vector<double>{8, 2, 0, 2, 2, -2, 0, 1, 0}));
  EXPECT_EQ((std::vector<int>{count, unknown, status, cstat[0], cstat[1], cstat[2], rstat[0]}),
            (std::vector<int>{1, 0, 1, TVK_AT_UPPER, TVK_AT_LOWER, TVK_BASIC, TVK_AT_LOWER}));

  /* The second of two; what it does not say is told apart from zero. */
  const std::string other =
      "<TOVIKSolution><header objectiveValue=\"?\"/><variables><variable name=\"y\" "
      "value=\"5\"/><variable index=\"7\" value=\"1\"/></variables></TOVIKSolution>";
  put("b.sol", "<TOVIKSolutions><TOVIKSolution/>" + other + "</TOVIKSolutions>");
  ASSERT_EQ(read("b.sol", 1), 0) << errors();
  EXPECT_TRUE(std::isnan(objective));
  EXPECT_EQ((std::vector<double>{x[0], x[1], x[2], dj[1], pi[0], slack[0]}),
            (std::vector<double>{1e20, 5, 1e20, 1e20, 1e20, 1e20}));
  EXPECT_EQ((std::vector<int>{count, unknown, status, cstat[1], rstat[0]}),
            (std::vector<int>{2, 1, 0, -1, -1}));
  EXPECT_EQ(read("b.sol", 0), 0);
  EXPECT_EQ(objective, 1e20);
  for (const int which : {-1, 2}) EXPECT_EQ(read("b.sol", which), 1200);

  /* What the write level leaves out is zero, among the columns that it speaks of. */
  const char type[] = {'I', 'C', 'C'};
  ASSERT_EQ(TVKcopyctype(env_, lp_, type), 0);
  for (const auto& [level, absent] : {std::pair("2", 1e20), {"3", 0.0}, {"4", 1e20}}) {
    put("c.sol",
        document("<variable name=\"z\" value=\"4\"/>\n", std::string(" writeLevel=\"") + level + "\""));
    ASSERT_EQ(read("c.sol"), 0) << errors();
    EXPECT_EQ(x[0], level[0] == '2' ? 1e20 : 0.0) << level;
    EXPECT_EQ(x[1], absent) << level;
    EXPECT_EQ(x[2], 4) << level;
  }
  EXPECT_EQ(TVKreadsolution(env_, lp_, path("c.sol").c_str(), 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr, nullptr),
            0);
}

}  // namespace
