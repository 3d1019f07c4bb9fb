/* Methods as callers know them: values of TVK_PARAM_LPMETHOD, and what made a solution. */
#pragma once

namespace tovik::method_code {

inline constexpr int kAutomatic = 0;
inline constexpr int kPrimal = 1;
inline constexpr int kDual = 2;
inline constexpr int kNetwork = 3;
inline constexpr int kBarrier = 4;
inline constexpr int kSifting = 5;
inline constexpr int kConcurrent = 6;
inline constexpr int kMixedInteger = 12;  // of solutions only

}  // namespace tovik::method_code
