/* Error and status texts, and the lines that failing routines write. */
#include <set>

#include "support/environment_fixture.h"

namespace {

using Errors = support::WithEnvironment;

TEST_F(Errors, TextsOfKnownUnknownAndImpossibleCodes) {
  char buffer[TVK_TEXT_BUFFER_SIZE] = "untouched";
  for (int code : {0, -1001, 100000}) {
    EXPECT_EQ(TVKgeterrorstring(env_, code, buffer), nullptr);
    EXPECT_STREQ(buffer, "untouched");
  }
  EXPECT_EQ(TVKgeterrorstring(env_, 1001, buffer), buffer);
  EXPECT_STREQ(buffer, "TOVIK Error  1001: Out of memory.\n");
  EXPECT_EQ(TVKgeterrorstring(nullptr, 1217, buffer), buffer);
  EXPECT_STREQ(buffer, "TOVIK Error  1217: No solution exists.\n");
  EXPECT_EQ(TVKgeterrorstring(env_, 1999, buffer), nullptr);
  EXPECT_STREQ(buffer, "TOVIK Error  1999: Unknown error code.\n");
  EXPECT_EQ(TVKgeterrorstring(env_, 99999, buffer), nullptr);
  EXPECT_STREQ(buffer, "TOVIK Error 99999: Unknown error code.\n");
  EXPECT_EQ(TVKgeterrorstring(env_, 1225, buffer), buffer);
  EXPECT_STREQ(buffer, "TOVIK Error  1225: Numeric entry %d is not a double precison number (NAN).\n");
  EXPECT_EQ(TVKgeterrorstring(env_, 1661, buffer), buffer);
  EXPECT_STREQ(buffer, "TOVIK Error  1661: Line %d:  Missing or invalid header.\n");
}

/* The digest of all texts, taken from the published list, notices a wrong letter anywhere. */
TEST_F(Errors, EveryCodeHasItsText) {
  char buffer[TVK_TEXT_BUFFER_SIZE];
  int known = 0;
  unsigned digest = 2166136261u;
  for (int code = 1; code <= 99999; ++code) {
    if (TVKgeterrorstring(env_, code, buffer) == nullptr) continue;
    ++known;
    for (const char* c = buffer; *c != '\0'; ++c)
      digest = (digest ^ static_cast<unsigned char>(*c)) * 16777619u;
  }
  EXPECT_EQ(known, 249);
  EXPECT_EQ(digest, 12771958u);
}

TEST_F(Errors, EveryStatusHasItsText) {
  char buffer[TVK_TEXT_BUFFER_SIZE];
  int known = 0;
  unsigned digest = 2166136261u;
  std::set<std::string> texts;
  for (int status = -10; status <= 2000; ++status) {
    if (TVKgetstatstring(env_, status, buffer) == nullptr) {
      EXPECT_STREQ(buffer, "Unknown status value");
      continue;
    }
    ++known;
    texts.insert(buffer);
    for (const char* c = buffer; *c != '\0'; ++c)
      digest = (digest ^ static_cast<unsigned char>(*c)) * 16777619u;
  }
  EXPECT_EQ(known, 65);
  EXPECT_EQ(texts.size(), 55u);
  EXPECT_EQ(digest, 2096587779u);
  EXPECT_STREQ(TVKgetstatstring(nullptr, TVK_STATUS_MIP_ERROR_TREE, buffer), "error termination");
}

TEST_F(Errors, AFailureIsReportedOnceByItsRoutine) {
  EXPECT_EQ(TVKgetprobtype(env_, nullptr), -1);
  EXPECT_EQ(errors(), "TOVIK Error  1009: No problem exists.\n");
  EXPECT_EQ(TVKgetstat(env_, nullptr), 0);
  EXPECT_EQ(errors(), "TOVIK Error  1009: No problem exists.\n");
  int status = 0;
  ProbHandle lp = TVKcreateprob(env_, &status, "p");
  double x[3];
  EXPECT_EQ(TVKgetx(env_, lp, x, -1, 5), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1205: TVKgetx: 'begin' value -1 is less than 0.\n"
            "TOVIK Error  1206: TVKgetx: 'end' value 5 is greater than -1.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
}

}  // namespace
