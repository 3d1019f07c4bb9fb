/* What the classes of cuts are called in logs and statistics, in the order of CutClass. */
#pragma once

#include "mip/pool/cut.h"

namespace tovik::mip::run {

inline constexpr const char* kCutNames[kCutClasses] = {
    "Covers",   "GUBcuts",  "Flowcuts",  "Cliques",   "Fract",     "MIRcuts",  "Flowpaths", "Disjcuts",
    "Impl Bds", "ZeroHalf", "MCF",       "Local Cov", "Tighten",   "ObjDisj",  "User",      "Table",
    "Pool",     "Discard",  "Local Cut", "GCS",       "EnumCover", "UserSoft", "Cone"};

}  // namespace tovik::mip::run
