/* What a search does with the symmetries of its problem: the same from its beginning to its end. */
#pragma once

#include <cstdint>
#include <vector>

#include "mip/symmetry/detector.h"
#include "mip/symmetry/orbitope.h"

namespace tovik::mip {

struct SymmetryPlan {
  std::int64_t found = 0;             // generators in all
  std::vector<Generator> generators;  // for orbital fixing
  std::vector<Orbitope> orbitopes;    // which these leave alone
};

}  // namespace tovik::mip
