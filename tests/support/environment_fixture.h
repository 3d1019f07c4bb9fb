/* An open environment whose messages are kept, for tests through the public header. */
#pragma once

#include <gtest/gtest.h>
#include <tovik.h>

#include <string>
#include <utility>

namespace support {

extern "C" inline void keep_text(void* handle, const char* text) {
  *static_cast<std::string*>(handle) += text;
}

class WithEnvironment : public testing::Test {
 protected:
  void SetUp() override {
    int status = -1;
    env_ = TVKopenTOVIK(&status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(TVKgetchannels(env_, &results_, &warning_, &error_, &log_), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, error_, &errors_, keep_text), 0);
    ASSERT_EQ(TVKaddfuncdest(env_, warning_, &warnings_, keep_text), 0);
  }
  void TearDown() override { EXPECT_EQ(TVKcloseTOVIK(&env_), 0); }

  /* What was written to the error channel since the last call. */
  std::string errors() { return std::exchange(errors_, {}); }
  std::string warnings() { return std::exchange(warnings_, {}); }

  EnvHandle env_ = nullptr;
  ChannelHandle results_ = nullptr, warning_ = nullptr, error_ = nullptr, log_ = nullptr;

 private:
  std::string errors_, warnings_;
};

}  // namespace support
