/* What a reader said about the last model stays with the problem until another model comes. */
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "support/environment_fixture.h"

namespace {

class ReadWarnings : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    int status = -1;
    lp_ = TVKcreateprob(env_, &status, "read");
    std::string name = (std::filesystem::temp_directory_path() / "tovik-test-XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  void TearDown() override {
    std::filesystem::remove_all(folder_);
    WithEnvironment::TearDown();
  }
  int read(const char* name, const std::string& text) {
    std::ofstream(folder_ / name) << text;
    return TVKreadcopyprob(env_, lp_, (folder_ / name).c_str(), nullptr);
  }
  std::string said(int warnings, int dropped) {
    int surplus = 0, all = -1, missing = -1;
    TVKgetreadwarnings(env_, lp_, nullptr, nullptr, nullptr, 0, &surplus);
    std::string text(static_cast<std::size_t>(-surplus), '?');
    EXPECT_EQ(TVKgetreadwarnings(env_, lp_, &all, &missing, text.data(), -surplus, &surplus), 0);
    EXPECT_EQ(surplus, 0);
    EXPECT_EQ(all, warnings);
    EXPECT_EQ(missing, dropped);
    return text.c_str();
  }

  ProbHandle lp_ = nullptr;
  std::filesystem::path folder_;
};

const char kDropping[] = "Minimize\n c: x\nSubject To\n a: x >= 1.5 y\n b: x + y >= 2 + 3\n";

TEST_F(ReadWarnings, TextsAreThoseOfTheChannelAndDroppedTextIsCounted) {
  EXPECT_EQ(said(0, 0), "");
  ASSERT_EQ(read("a.lp", kDropping), 0);
  const std::string texts = said(3, 2);  // 'End' missing drops nothing
  EXPECT_EQ(texts, warnings());
  EXPECT_NE(texts.find("line 4"), std::string::npos) << texts;
  int dropped = 0;
  EXPECT_EQ(TVKgetreadwarnings(env_, lp_, nullptr, &dropped, nullptr, 0, nullptr), 0);
  EXPECT_EQ(dropped, 2);
  char small[4];
  int surplus = 0;
  errors();
  EXPECT_EQ(TVKgetreadwarnings(env_, lp_, nullptr, nullptr, small, 4, &surplus), TVK_ERROR_ARRAY_TOO_SHORT);
  EXPECT_EQ(surplus, 4 - static_cast<int>(texts.size()) - 1);
}

TEST_F(ReadWarnings, FailedReadingKeepsThemAndAnotherModelEndsThem) {
  ASSERT_EQ(read("a.lp", kDropping), 0);
  EXPECT_NE(read("b.lp", "Minimize\n c: x + + >=\n"), 0);
  said(3, 2);
  const double none[] = {0};
  const int zero[] = {0};
  EXPECT_EQ(TVKcopylp(env_, lp_, 1, 0, TVK_MIN, none, none, "", zero, zero, zero, none, none, none, nullptr),
            0);
  EXPECT_EQ(said(0, 0), "");
  ASSERT_EQ(read("a.lp", kDropping), 0);
  ASSERT_EQ(read("c.lp", "Minimize\n c: x\nSubject To\n a: x >= 1\nEnd\n"), 0);
  EXPECT_EQ(said(0, 0), "");
}

TEST_F(ReadWarnings, WarningOverTwoLinesIsOne) {
  ASSERT_EQ(read("a.mps",
                 "NAME t\nROWS\n N c\n L r\nCOLUMNS\n x c 1 r 1\nRHS\n r r 1\nBOUNDS\n UP b x -2\nENDATA\n"),
            0);
  const std::string text = said(1, 0);
  EXPECT_NE(text.find("minus infinity"), std::string::npos) << text;
}

TEST_F(ReadWarnings, TextHasALimitAndNumbersDoNot) {
  std::string model = "Minimize\n c: x\nSubject To\n";
  for (int i = 0; i < 3000; ++i) model += " a" + std::to_string(i) + ": x >= 1 y\n";
  ASSERT_EQ(read("many.lp", model + "End\n"), 0);
  const std::string text = said(3000, 3000);
  EXPECT_LE(text.size(), 65536u);
  EXPECT_GT(text.size(), 60000u);
}

/* Integer columns of markers: other programs read [0, 1] where a file says nothing. */
TEST_F(ReadWarnings, IntegerColumnsWithoutBoundsAreNoted) {
  ASSERT_EQ(
      read("i.mps",
           "NAME t\nROWS\n N c\n L r\nCOLUMNS\n M 'MARKER' 'INTORG'\n x c 1 r 1\n y c 1 r 1\n z c 1 r 1\n"
           " M 'MARKER' 'INTEND'\n u c 1 r 1\nRHS\n r r 1\nBOUNDS\n PL b y\n UP b z 4\nENDATA\n"),
      0);
  EXPECT_EQ(warnings(), "");
  const std::string text = said(0, 0);
  EXPECT_EQ(text.rfind("Note:", 0), 0u) << text;
  EXPECT_NE(text.find("'x'"), std::string::npos) << text;
  for (const char* other : {"'y'", "'z'", "'u'"}) EXPECT_EQ(text.find(other), std::string::npos) << text;
}

}  // namespace
