/* The LP reader through the public header: texts to models, warnings, and a corpus of broken files.
 * A corpus file is named by the code that it must give: 1602_adjacent_signs.lp. */
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "support/file_fixture.h"

namespace {

namespace fs = std::filesystem;

class LpReader : public support::WithFiles {
 protected:
  int read(const std::string& text) { return read_text("model.lp", text); }
};

struct ModelCase {
  const char* what;
  std::string text;
  std::string model;
  std::string warnings = {};
};

const ModelCase kModels[] = {
    {"a plain problem, names and comments",
     "\\Problem name: p\n\nMaximize\n profit: 2 x1 + 3x2 - x3 \\ + 9 x9\nSubject To\n a: x1 + x2 <= 4\n"
     " b: x1 - 2.5e1 x3 >= -2\n x2 = 1\nBounds\n x1 <= 4\nEnd\n",
     "max 0\nx1 - 2 [0,4] a:1 b:1\nx2 - 3 [0,inf] a:1 c3:1\nx3 - -1 [0,inf] b:-25\na L 4\nb G -2\nc3 E 1\n"},
    {"terms over lines, repeated and cancelled terms, constants",
     "min\n 3 x\n +\n 2\n y + 4 - 1\nst\n r: x + y + x - 0 z\n <=\n 5\n s: x - x + y >= 1\nend\n",
     "min 3\nx - 3 [0,inf] r:2\ny - 2 [0,inf] r:1 s:1\nz - 0 [0,inf]\nr L 5\ns G 1\n"},
    {"senses in all spellings; a lone minus behind a sense is a sign",
     "Min x\nst\n a: x < 1\n b: x =< 2\n c: x <= 3\n d: x > -1\n e_: x => -2\n f: x >= -3\n g: x = 0\n h: x "
     "<-5\nend",
     "min 0\nx - 1 [0,inf] a:1 b:1 c:1 d:1 e_:1 f:1 g:1 h:1\n"
     "a L 1\nb L 2\nc L 3\nd G -1\ne_ G -2\nf G -3\ng E 0\nh L -5\n"},
    {"ranges, reversed rows and infinite right-hand sides",
     "min x\nst\n a: -5 <= x + y <= 10\n b: 8 >= x >= 3\n c: 4 <= x\n d: -inf <= x <= 7\n f: 1 <= x <= 1\n"
     " g: x >= - Infinity\nend\n",
     "min 0\nx - 1 [0,inf] a:1 b:1 c:1 d:1 f:1 g:1\ny - 0 [0,inf] a:1\n"
     "a R -5 15\nb R 3 5\nc G 4\nd L 7\nf E 1\ng G -inf\n"},
    {"a written range column comes back as a range; others stay columns",
     "min x\nst\n a: x + y - Rga = 4\n b: x - Rgb = 1\n c: x - 2 Rgc = 1\n d: x - Rgd = 1\n"
     "bounds\n Rga <= 6\n Rgc <= 1\n Rgd <= 1\ngeneral\n Rgd\nend\n",
     "min 0\nx C 1 [0,inf] a:1 b:1 c:1 d:1\ny C 0 [0,inf] a:1\nRgb C 0 [0,inf] b:-1\nRgc C 0 [0,1] c:-2\n"
     "Rgd I 0 [0,1] d:-1\na R 4 6\nb E 1\nc E 1\nd E 1\n"},
    {"bounds in all forms",
     "min a + b + c + d + f + g + h + i + j + inf\nbounds\n a < = 4\n -2 <= b\n 1 <= c <= 3\n d Free\n f = "
     "7\n"
     " -INF <= g <= +infinity\n 5 >= h >= 2\n i <= -\n + => j\n inf <= 9\nend\n",
     "min 0\na - 1 [0,4]\nb - 1 [-2,inf]\nc - 1 [1,3]\nd - 1 [-inf,inf]\nf - 1 [7,7]\ng - 1 [-inf,inf]\nh - "
     "1 [2,5]\n"
     "i - 1 [0,-1]\nj - 1 [0,1]\ninf - 1 [0,9]\n"},
    {"a conflict of senses keeps both bounds", "min x\nbounds\n 1 <= x >= 5\nend\n", "min 0\nx - 1 [5,inf]\n",
     "Warning, line 3: Possible sense conflict.\n"},
    {"types; semi-integer in either order; binaries with bounds of their own",
     "min a + b + c + d + f\nbounds\n f <= 2\n d <= 9\nbinaries\n a f\ngenerals\n b c\nsemi-continuous\n c "
     "d\nints\n d\nend\n",
     "min 0\na B 1 [0,1]\nb I 1 [0,inf]\nc N 1 [0,inf]\nd N 1 [0,9]\nf B 1 [0,2]\n",
     "Warning:  Binary variables declared with bounds other than 0 and 1.\n"},
    {"an empty type section leaves the problem continuous", "min x\ngenerals\nend\n",
     "min 0\nx - 1 [0,inf]\n"},
    {"section words: too short, with content behind them, in two words",
     "MINIM obj: x\nsuch   that: r: x >= 1\n bounds + x <= 4\n mi + x <= 3\nBOUND\n x <= 9\nEND\nrubbish "
     "<<\n",
     "min 0\nx - 1 [0,9] r:1 c2:1 c3:1\nbounds - 0 [0,inf] c2:1\nmi - 0 [0,inf] c3:1\nr G 1\nc2 L 4\nc3 L "
     "3\n"},
    {"after Maximize a line with min is content", "max\n min\n + x\nend\n",
     "max 0\nmin - 1 [0,inf]\nx - 1 [0,inf]\n"},
    {"a column called like a section word", "min st1 + end1 + 2 free\nst\n sos: free + bin >= 1\nend\n",
     "min 0\nst1 - 1 [0,inf]\nend1 - 1 [0,inf]\nfree - 2 [0,inf] sos:1\nbin - 0 [0,inf] sos:1\nsos G 1\n"},
    {"names with every sort of character", "min !\"#$%&'(),;?@_`{}~.9 + \x80z\xfe\nend\n",
     "min 0\n!\"#$%&'(),;?@_`{}~.9 - 1 [0,inf]\n\x80z\xfe - 1 [0,inf]\n"},
    {"line ends of other systems, tabs, a form feed",
     "min\t\tx\r\nst\r\n\tr: x >= 1\f s: x <= 2\rt: x <= 3\r\nend\r\n",
     "min 0\nx - 1 [0,inf] r:1 s:1 t:1\nr G 1\ns L 2\nt L 3\n"},
    {"invalid characters are skipped",
     "min x\x01y + \xff"
     "z\nend\n",
     "min 0\nxy - 1 [0,inf]\nz - 1 [0,inf]\n",
     "Warning, line 1: Unexpected character code 1 skipped.\nWarning, line 1: Unexpected character code 255 "
     "skipped.\n"},
    {"what stands behind a right-hand side is ignored", "min x\nst\n r: x <= 4 + 2 y\nend\n",
     "min 0\nx - 1 [0,inf] r:1\nr L 4\n", "Warning, line 3: Characters after RHS value are ignored.\n"},
    {"an unfinished constraint is dropped", "min x\nst\n r: x <= 4\n s: x + y\nbounds\n x <= 1\nend\n",
     "min 0\nx - 1 [0,1] r:1\ny - 0 [0,inf]\nr L 4\n",
     "Warning, line 5: Unfinished constraint is discarded.\n"},
    {"an unfinished constraint at the end of the file", "min x\nst\n r: x <= 4\n s: x + y\n",
     "min 0\nx - 1 [0,inf] r:1\ny - 0 [0,inf]\nr L 4\n",
     "Warning, line 4: Unfinished constraint is discarded.\nWarning: 'End' missing.\n"},
    {"an objective that ends in a sign", "min x +\nst\n r: x <= 4\nend\n",
     "min 0\nx - 1 [0,inf] r:1\nr L 4\n", "Warning, line 2: Objective ended unexpectedly.\n"},
    {"no end", "min x\nst\n r: x <= 4", "min 0\nx - 1 [0,inf] r:1\nr L 4\n", "Warning: 'End' missing.\n"},
    {"names that do not exist", "min x\nbounds\n y <= 4\ngenerals\n z 3x e5 x\nend\n",
     "min 0\nx I 1 [0,inf]\n",
     "Warning, line 3: Name 'y' does not exist.\nWarning, line 5: Name 'z' does not exist.\n"
     "Warning, line 5: '3x' not valid identifier.\nWarning, line 5: 'e5' not valid identifier.\n"},
    {"default row names keep away from given ones", "min x\nst\n x >= 1\n c1: x >= 2\n x >= 3\nend\n",
     "min 0\nx - 1 [0,inf] c1_:1 c1:1 c3:1\nc1_ G 1\nc1 G 2\nc3 G 3\n"},
    {"nothing at all", "min\nend\n", "min 0\n"},
    {"numbers at the edges of a double",
     "min 1.7976931348623157e308 x + 4.9e-324 y + 1e-400 z + 123456789012345678901234567890 u + .5 v + 5. "
     "w\nend\n",
     "min 0\nx - 1.79769313486232e+308 [0,inf]\ny - 4.94065645841247e-324 [0,inf]\nz - 0 [0,inf]\n"
     "u - 1.23456789012346e+29 [0,inf]\nv - 0.5 [0,inf]\nw - 5 [0,inf]\n"},
    {"a coefficient that touches its name", "min 3x + 2e1y - 3ex\nend\n",
     "min 0\nx - 3 [0,inf]\ny - 20 [0,inf]\nex - -3 [0,inf]\n"},
};

TEST_F(LpReader, ReadsTheModelAndSaysWhatItIgnores) {
  for (const ModelCase& c : kModels) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(read(c.text), 0) << errors();
    EXPECT_EQ(model(), c.model);
    EXPECT_EQ(warnings(), c.warnings);
  }
}

TEST_F(LpReader, NamesTheProblemAndTheObjective) {
  ASSERT_EQ(read("min cost: x\nend\n"), 0);
  char name[256];
  int surplus = 0;
  ASSERT_EQ(TVKgetobjname(env_, lp_, name, sizeof name, &surplus), 0);
  EXPECT_STREQ(name, "cost");
  ASSERT_EQ(TVKgetprobname(env_, lp_, name, sizeof name, &surplus), 0);
  EXPECT_EQ(name, (folder_ / "model.lp").string());
}

TEST_F(LpReader, PrintsTwentyNameWarningsAndCountsTheOthers) {
  std::string text = "min x\ngenerals\n";
  for (int k = 0; k < 23; ++k) text += " y" + std::to_string(k) + "\n";
  ASSERT_EQ(read(text + "end\n"), 0);
  const std::string printed = warnings();
  EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 21);
  EXPECT_NE(printed.find("'y19'"), std::string::npos);
  EXPECT_EQ(printed.find("'y20'"), std::string::npos);
  EXPECT_TRUE(printed.ends_with("\n3 name warnings not printed.\n"));
}

TEST_F(LpReader, CutsLongNamesAndReadsLinesOfAnyLength) {
  const std::string name(255, 'n');
  ASSERT_EQ(read("min " + name + "abc\nst\n r: " + name + " >= 1\nend\n"), 0);
  EXPECT_EQ(warnings(), "Warning, line 1: '" + name + "' truncated.\n");
  EXPECT_EQ(model(), "min 0\n" + name + " - 1 [0,inf] r:1\nr G 1\n");

  const auto with_line = [](std::size_t length) {
    return "min x\ngenerals\nx" + std::string(length - 1, ' ') + "\nend\n";
  };
  EXPECT_EQ(read(with_line(558)), 0);
  EXPECT_EQ(read(with_line(559)), 1464);
  errors();

  std::string row = " r:";  // far longer than any buffer, exponents and all
  for (int k = 0; k < 200000; ++k) row += " + 1e-1 x" + std::to_string(k % 7);
  ASSERT_EQ(read("min x0\nst\n" + row + " >= 1e+3 \\ " + std::string(3000, '-') + " x\n s: x0 <= 1\nend\n"),
            0);
  EXPECT_EQ(warnings(), "");
  double value = 0;
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 7);
  ASSERT_EQ(TVKgetcoef(env_, lp_, 0, 6, &value), 0);
  EXPECT_NEAR(value, 2857.1, 1e-6);
  ASSERT_EQ(TVKgetrhs(env_, lp_, &value, 0, 0), 0);
  EXPECT_EQ(value, 1e3);
}

TEST_F(LpReader, BrokenFilesGiveTheirCodeAndLeaveTheProblemAlone) {
  ASSERT_EQ(read("max 3 x + y\nst\n r: x + y <= 2\ngenerals\n x\nend\n"), 0);
  EXPECT_GT(check_broken_files(TOVIK_SOURCE_DIR "/tests/fileio/corpus/lp", "lp"), 40);
}

/* As other programs write rows whose terms have gone. */
TEST_F(LpReader, LabelledRowsMayHaveNoTerms) {
  ASSERT_EQ(read("min x\nst\n a: = +0\n b: x + y >= 2\n c: <= 5\nend\n"), 0);
  EXPECT_EQ(warnings(),
            "Warning, line 3: Constraint 'a' has no terms.\nWarning, line 5: Constraint 'c' has no terms.\n");
  EXPECT_EQ(TVKgetnumrows(env_, lp_), 3);
  EXPECT_EQ(TVKgetnumnz(env_, lp_), 2);
  double rhs[3];
  ASSERT_EQ(TVKgetrhs(env_, lp_, rhs, 0, 2), 0);
  EXPECT_EQ(rhs[0], 0);
  EXPECT_EQ(rhs[2], 5);
}

struct LineCase {
  const char* text;
  const char* line;
};

TEST_F(LpReader, ErrorsSayWhereAndWhat) {
  const LineCase cases[] = {
      {"min x\nst\n r: x +\n\n - y <= 2\nend\n", "TOVIK Error  1602: Lines 3,5: Adjacent signs.\n"},
      {"min x\nst\n r: x y <= 2\nend\n",
       "TOVIK Error  1608: Line 3: Expected '+','-' or sense, found 'y'.\n"},
      {"min x\nst\n r: x <= 2e999\nend\n", "TOVIK Error  1435: Line 3: Exponent 'e999' out of range.\n"},
      {"min x\nst\n r: x <= 2e\nend\n", "TOVIK Error  1618: Line 3: Exponent 'e' not ended with number.\n"},
      {"min x\nst\n r: x <= e4\nend\n",
       "TOVIK Error  1618: Line 3: Exponent 'e4' not started with number.\n"},
      {"min x\nst\n r: x >= 1\n r: x <= 2\nend\n", "TOVIK Error  1447: Line 4: Row 'r' repeats.\n"},
      {"min x\nsos\n s: S3:: x:1\nend\n", "TOVIK Error  1442: Line 3: Unrecognized SOS type: S3.\n"},
      {"min x\nst\n q: [ x^2 ] = 2\nend\n",
       "TOVIK Error  1437: Line 3: Illegal quadratic constraint sense.\n"},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_NE(read(c.text), 0);
    EXPECT_TRUE(errors().ends_with(c.line)) << errors();
  }
}

}  // namespace
