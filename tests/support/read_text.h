/* A problem from the text of an LP file, through the public header. */
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tovik.h"

namespace support {

inline ProbHandle read_text(EnvHandle env, const std::string& model) {
  int status = -1;
  ProbHandle lp = TVKcreateprob(env, &status, "model");
  const std::string file = testing::TempDir() + "text_" + std::to_string(getpid()) + ".lp";
  FILE* out = std::fopen(file.c_str(), "w");
  std::fputs(model.c_str(), out);
  std::fclose(out);
  EXPECT_EQ(TVKreadcopyprob(env, lp, file.c_str(), "LP"), 0);
  std::remove(file.c_str());
  return lp;
}

}  // namespace support
