/* An environment, a folder for files and an empty network. */
#pragma once

#include "support/file_fixture.h"

namespace support {

class WithNetwork : public WithFiles {
 protected:
  void SetUp() override {
    WithFiles::SetUp();
    int status = -1;
    net_ = TVKNETcreateprob(env_, &status, "start");
    ASSERT_EQ(status, 0);
  }

  NetProbHandle net_ = nullptr;
};

}  // namespace support
