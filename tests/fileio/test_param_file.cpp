/* Parameter files: what is written, what each kind of line does, that a faulty file changes nothing, and the
 * file that is read when an environment opens. */
#include <limits>

#include "support/file_fixture.h"

namespace {

constexpr int kNamesOnly = 1053, kHiddenInteger = 1075;
const std::string kHeader = "TOVIK Parameter File Version 12.2.0.0\n";

class ParameterFile : public support::WithFiles {
 protected:
  int read(const std::string& text) {
    put("a.prm", text);
    return TVKreadcopyparam(env_, path("a.prm").c_str());
  }
  int integer(int number) {
    int value = -12345;
    EXPECT_EQ(TVKgetintparam(env_, number, &value), 0);
    return value;
  }
  double real(int number) {
    double value = -12345;
    EXPECT_EQ(TVKgetdblparam(env_, number, &value), 0);
    return value;
  }
  std::string text(int number) {
    char buffer[TVK_STR_PARAM_MAX];
    EXPECT_EQ(TVKgetstrparam(env_, number, buffer), 0);
    return buffer;
  }
  void change_some() {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 77), 0);
    ASSERT_EQ(TVKsetintparam(env_, kHiddenInteger, 1), 0);
    ASSERT_EQ(TVKsetintparam(env_, kNamesOnly, 1), 0);
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPOPT, 1.0 / 3e3), 0);
    ASSERT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, "two words # no comment"), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, 0), 0);
  }
};

TEST_F(ParameterFile, HoldsWhatDiffersAndGivesItBack) {
  change_some();
  ASSERT_EQ(TVKwriteparam(env_, path("a.prm").c_str()), 0);
  const std::string most =
      kHeader + "TVK_PARAM_EPOPT                  3.33333333333333e-04   \n" +
      "TVK_PARAM_ITLIM                  77\nTVK_PARAM_WORKDIR                \"two words # no comment\"\n" +
      "1075                             1\n";
  EXPECT_EQ(content("a.prm"), most + "TVK_PARAM_MIPCBREDLP             0\n");
  ASSERT_EQ(TVKEwriteparam(env_, path("b.prm.gz").c_str()), 0);
  ASSERT_EQ(TVKsetdefaults(env_), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SIMDISPLAY, 2), 0);
  ASSERT_EQ(TVKreadcopyparam(env_, path("b.prm.gz").c_str()), 0) << errors();
  EXPECT_EQ(integer(TVK_PARAM_ITLIM), 77);
  EXPECT_EQ(integer(kHiddenInteger), 1);
  EXPECT_EQ(integer(kNamesOnly), 0);
  EXPECT_EQ(integer(TVK_PARAM_SIMDISPLAY), 1);
  EXPECT_EQ(integer(TVK_PARAM_MIPCBREDLP), 1);
  EXPECT_DOUBLE_EQ(real(TVK_PARAM_EPOPT), 3.33333333333333e-04);
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), "two words # no comment");
  ASSERT_EQ(TVKwriteparam(env_, path("c.prm").c_str()), 0);
  EXPECT_EQ(content("c.prm"), most);
}

/* Neither of them could be read back. */
TEST_F(ParameterFile, TextsThatCannotStandInAFileAreLeftOut) {
  for (const char* value : {"", "a\"b", "a\nb"}) {
    ASSERT_EQ(TVKsetstrparam(env_, TVK_PARAM_WORKDIR, value), 0);
    ASSERT_EQ(TVKwriteparam(env_, path("a.prm").c_str()), 0);
    EXPECT_EQ(content("a.prm"), kHeader);
    EXPECT_EQ(warnings(), "Warning:  The value of parameter 1064 cannot stand in a file.\n");
  }
}

struct LineCase {
  const char* line;
  int code;
  const char* error;    // of the line, which is the second; empty for a sound one
  const char* warning;  // likewise
  int iterations;       // of TVK_PARAM_ITLIM after a sound file
};

constexpr const char* kNonIntegral = "Warning, line 2: non-integral value specified for integer parameter.\n";
constexpr int kDefaultIterations = 2100000000;

TEST_F(ParameterFile, Lines) {
  const LineCase cases[] = {
      {"", 0, "", "", kDefaultIterations},
      {"  \t# only a comment", 0, "", "", kDefaultIterations},
      {"TVK_PARAM_ITLIM 5 # trailing", 0, "", "", 5},
      {"\t1020\t6\r", 0, "", "", 6},
      {"TVK_PARAM_ITLIM 7#8", 0, "", "", 7},
      {"1020 2.5", 0, "", kNonIntegral, 2},
      {"1020 3-4", 0, "", kNonIntegral, 3},
      {"1020 1e3", 0, "", "", 1},
      {"1020 +9 more", 0, "", "", 9},
      {"1011 whatever", 0, "", "", kDefaultIterations},
      {"1064 \"a # b\"", 0, "", "", kDefaultIterations},
      {"1064 word", 0, "", "", kDefaultIterations},
      {"1014 1e-7x", 0, "", "", kDefaultIterations},
      {"2008 1e-400", 0, "", "", kDefaultIterations},
      {"2008 -0x1p-9", 1014, "Parameter value too small", "", 0},
      {"1020 -1", 1014, "Parameter value too small", "", 0},
      {"1020 99999999999", 1015, "Parameter value too big", "", 0},
      {"1014 1e999", 1015, "Parameter value too big", "", 0},
      {"1020 +-5", 1434, "Line 2: Couldn't convert '+-5' to a number", "", 0},
      {"1020 x", 1434, "Line 2: Couldn't convert 'x' to a number", "", 0},
      {"1014 .x", 1434, "Line 2: Couldn't convert '.x' to a number", "", 0},
      {"1020", 1434, "Line 2: Couldn't convert '' to a number", "", 0},
      {"1500 1", 1013, "Bad parameter number to TOVIK parameter routine", "", 0},
      {"99999999999 1", 1013, "Bad parameter number to TOVIK parameter routine", "", 0},
      {"99 1", 1013, "Bad parameter number to TOVIK parameter routine", "", 0},
      {"TVK_PARAM_NOTHING 1", 1028, "Bad parameter name to TOVIK parameter routine", "", 0},
      {"1064 \"open", 1660, "Line 2:  Not enough entries", "", 0},
      {"1064 \"\"", 1660, "Line 2:  Not enough entries", "", 0},
      {"1064", 1660, "Line 2:  Not enough entries", "", 0},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.line);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 1234), 0);
    EXPECT_EQ(read(kHeader + c.line + "\n"), c.code);
    EXPECT_EQ(errors(), c.code == 0 ? ""
                                    : "TOVIK Error " + std::string(c.code < 10000 ? " " : "") +
                                          std::to_string(c.code) + ": " + c.error + ".\n");
    const bool no_line = c.code != 0 && std::string_view(c.error).find("Line") != 0;  // so a warning tells it
    const std::string name = std::string(c.line).substr(0, std::string_view(c.line).find(' '));
    EXPECT_EQ(warnings(), no_line ? "Warning, line 2: '" + name + "' is not set.\n" : c.warning);
    EXPECT_EQ(integer(TVK_PARAM_ITLIM), c.code == 0 ? c.iterations : 1234);
  }
  const std::string longest(510, 'x');
  EXPECT_EQ(read(kHeader + "1064 \"" + longest + "\"#" + std::string(10000, ' ')), 0);
  EXPECT_EQ(text(TVK_PARAM_WORKDIR), longest);
  EXPECT_EQ(read(kHeader + "1064 \"" + std::string(600, 'x') + "\"\n"), 1660);
  EXPECT_EQ(read(kHeader + "1064 \"" + std::string(9000, 'x') + "\"\n"), 1660);
}

TEST_F(ParameterFile, Headers) {
  struct Case {
    std::string text;
    int code;
  };
  const Case cases[] = {
      {"", 0},
      {"\n # comment\n\n", 0},
      {kHeader, 0},
      {"\n#\n" + kHeader + "1020 5", 0},
      {"TOVIK  Parameter\tFile Version 9.9 and more\n", 0},
      {"1020 5\n", 1661},
      {"TOVIK Parameter File Version\n", 1661},
      {"tovik Parameter File Version 12.2.0.0\n", 1661},
      {std::string(5000, 'T'), 1661},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 60));
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 1234), 0);
    EXPECT_EQ(read(c.text), c.code);
    EXPECT_EQ(integer(TVK_PARAM_ITLIM) == 1234, c.code != 0);
    const bool other_version = c.text.find("9.9") != std::string::npos;
    EXPECT_EQ(warnings(), other_version ? "Warning:  TOVIK version found in file " + path("a.prm") +
                                              " (9.9) does not match\n          this TOVIK version "
                                              "(12.2.0.0).\n"
                                        : "");
    EXPECT_EQ(errors(), c.code == 0 ? "" : "TOVIK Error  1661: Line 1:  Missing or invalid header.\n");
  }
}

TEST_F(ParameterFile, FaultyFilesChangeNothing) {
  change_some();
  ASSERT_EQ(TVKwriteparam(env_, path("before.prm").c_str()), 0);
  // Each is allowed alone, not both together.
  const std::string conflict = "TVK_PARAM_POLISHTIME 5\nTVK_PARAM_POLISHAFTERNODE 3\n";
  EXPECT_EQ(read(kHeader + "TVK_PARAM_ITLIM 5\n" + conflict), 1807);
  EXPECT_EQ(read(kHeader + "TVK_PARAM_ITLIM 5\n1020 5\nTVK_PARAM_EPOPT 7\n"), 1028);  // names only are wanted
  ASSERT_EQ(TVKwriteparam(env_, path("after.prm").c_str()), 0);
  EXPECT_EQ(content("before.prm"), content("after.prm"));
  EXPECT_EQ(integer(kNamesOnly), 1);
  errors();
  EXPECT_EQ(TVKreadcopyparam(env_, path("none").c_str()), 1423);
  EXPECT_NE(errors().find("none.prm' for reading"), std::string::npos);
  EXPECT_EQ(TVKreadcopyparam(env_, nullptr), 1421);
  EXPECT_EQ(TVKwriteparam(env_, ""), 1421);
  EXPECT_EQ(TVKwriteparam(env_, path("none/a.prm").c_str()), 1422);
  put("cut.prm.gz", "no compressed file");
  EXPECT_EQ(TVKreadcopyparam(env_, path("cut.prm.gz").c_str()), 1423);
  EXPECT_EQ(integer(TVK_PARAM_ITLIM), 77);
}

TEST_F(ParameterFile, OverridesTheDefaultsAtOpening) {
  put("good.prm", kHeader + "TVK_PARAM_ITLIM 55\nTVK_PARAM_SCRIND 1\n");
  put("bad.prm", "nothing of the kind");
  struct Case {
    std::string file;
    int iterations;
    std::string verdict;
  };
  for (const Case& c :
       {Case{"good.prm", 55, "succeeded.\n"}, Case{"bad.prm", kDefaultIterations, "failed.\n"},
        Case{"absent.prm", kDefaultIterations, "failed.\n"}}) {
    setenv("MERU_TOVIK_PARAMETER_FILE", path(c.file).c_str(), 1);
    int status = -1;
    testing::internal::CaptureStdout();
    EnvHandle env = TVKopenTOVIK(&status);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Reading override parameter file '" + path(c.file) + "' " + c.verdict);
    unsetenv("MERU_TOVIK_PARAMETER_FILE");
    ASSERT_EQ(status, 0);
    int value = 0;
    EXPECT_EQ(TVKgetintparam(env, TVK_PARAM_ITLIM, &value), 0);
    EXPECT_EQ(value, c.iterations);
    EXPECT_EQ(TVKgetintparam(env, TVK_PARAM_SCRIND, &value), 0);
    EXPECT_EQ(value, 0);
    TVKcloseTOVIK(&env);
  }
}

}  // namespace
