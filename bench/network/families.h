/* The classic families of minimum-cost flow problems, written after their papers. Whole numbers, connected, feasible by
 * construction: a skeleton of paths carries all supply. The same name, size and seed give the same instance anywhere. */
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/network/instance.h"

namespace bench {

struct Recipe {
  std::string family;
  int nodes = 0;          // about
  std::int64_t arcs = 0;  // about
  std::function<Instance()> make;
};

/* Families one after the other, each from small to large. */
std::vector<Recipe> all_recipes();

}  // namespace bench
