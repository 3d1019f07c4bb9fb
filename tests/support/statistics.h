/* What an optimization has counted, read through the public header. */
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tovik.h"

namespace support {

inline nlohmann::json statistics(ConstEnvHandle env, ConstProbHandle lp) {
  int surplus = 0;
  EXPECT_EQ(TVKgetstatistics(env, lp, nullptr, 0, &surplus), TVK_ERROR_ARRAY_TOO_SHORT);
  EXPECT_LT(surplus, 0);
  std::string text(static_cast<std::size_t>(-surplus), '?');
  EXPECT_EQ(TVKgetstatistics(env, lp, text.data(), -surplus, &surplus), 0);
  EXPECT_EQ(surplus, 0);
  EXPECT_EQ(text.back(), '\0');
  return nlohmann::json::parse(text.c_str());
}

}  // namespace support
