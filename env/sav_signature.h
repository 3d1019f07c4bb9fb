/* The five bytes behind the first one by which SAV files are recognized. */
#pragma once

#include <string_view>

namespace tovik {

inline constexpr std::string_view kSavSignature = "TOVIK";

}  // namespace tovik
