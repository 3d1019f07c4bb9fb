/* The reporter's line for every way a failure can reach it, indirect files, and the start of the random
 * stream. */
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "env/handles.h"
#include "env/status_table.h"

namespace tovik {
namespace {

class Reporter : public testing::Test {
 protected:
  void SetUp() override {
    int status = -1;
    handle_ = TVKopenTOVIK(&status);
    ASSERT_EQ(status, 0);
    env_ = from_handle(ConstEnvHandle(handle_));
    env_->error_channel->add_function(
        this, [](void* self, const char* text) { static_cast<Reporter*>(self)->said_ += text; });
  }
  void TearDown() override { TVKcloseTOVIK(&handle_); }
  std::string said() { return std::exchange(said_, {}); }

  EnvHandle handle_ = nullptr;
  Environment* env_ = nullptr;
  std::string said_;
};

TEST_F(Reporter, EachFailureIsPrintedOnce) {
  EXPECT_EQ(report(*env_, 0), 0);
  EXPECT_EQ(report(*env_, -1217), 1217);
  EXPECT_EQ(report(*env_, Status::reported(1217)), 1217);
  EXPECT_EQ(said(), "");
  EXPECT_EQ(report(*env_, 1217), 1217);
  EXPECT_EQ(said(), "TOVIK Error  1217: No solution exists.\n");
  EXPECT_EQ(report(*env_, fail(*env_, 1434, 12, "3x")), 1434);
  EXPECT_EQ(said(), "TOVIK Error  1434: Line 12: Couldn't convert '3x' to a number.\n");
  EXPECT_EQ(report(*env_, 1448), 1448);
  EXPECT_EQ(said(), "TOVIK Error  1448: Line %d: '%.255s' is not a row name.\n");
  for (int unknown : {1999, 9003, 123456, INT_MAX}) {
    EXPECT_EQ(report(*env_, unknown), unknown);
    char line[100];
    std::snprintf(line, sizeof line, "TOVIK Error %5d:  Unknown error code.\n", unknown);
    EXPECT_EQ(said(), line);
  }
}

TEST_F(Reporter, TextsFromOutsideAreNeitherInterpretedNorCut) {
  const std::string name = "%s%n" + std::string(3000, 'x');
  EXPECT_EQ(fail(*env_, 1423, name.c_str()).code(), 1423);
  EXPECT_EQ(said(), "TOVIK Error  1423: Could not open file '" + name + "' for reading.\n");
}

TEST_F(Reporter, OnlyTheConclusionsOfPresolveCanBeSilenced) {
  const int codes[] = {1101, 1106, 1117, 1118, 1123, 9025};
  for (int code : codes) EXPECT_EQ(report(*env_, code), code);
  EXPECT_NE(said(), "");
  ASSERT_EQ(TVKsetintparam(handle_, 1043, 0), 0);
  for (int code : codes) EXPECT_EQ(report(*env_, code), code);
  EXPECT_EQ(said(), "");
  EXPECT_EQ(report(*env_, 1103), 1103);
  EXPECT_EQ(said(), "TOVIK Error  1103: No presolved problem created.\n");
}

/* A message function may call routines that count work; reporting costs none all the same. */
TEST_F(Reporter, ReportingIsNoWork) {
  env_->error_channel->add_function(
      env_, [](void* env, const char*) { static_cast<Environment*>(env)->add_work(1000); });
  const std::uint64_t before = env_->work->ticks;
  EXPECT_EQ(report(*env_, 1217), 1217);
  EXPECT_EQ(env_->work->ticks, before);
}

TEST_F(Reporter, AnIndirectFileIsSkippedWhileItsSlotIsNull) {
  FILE* slot = nullptr;
  Channel channel(*env_);
  ASSERT_EQ(channel.add_file_slot(&slot), 0);
  channel.write("lost");
  slot = std::tmpfile();
  channel.write("kept");
  EXPECT_EQ(std::ftell(slot), 4);
  std::fclose(std::exchange(slot, nullptr));
  channel.disconnect();
  EXPECT_TRUE(channel.empty());
}

TEST_F(Reporter, ShortStatusTextsTellApartWhatLongOnesDoNot) {
  EXPECT_STREQ(short_status_text(109), "error, feasible");
  EXPECT_STREQ(short_status_text(116), "error, feas, tree");
  EXPECT_STREQ(short_status_text(7), "Unknown stat value");
}

}  // namespace
}  // namespace tovik
