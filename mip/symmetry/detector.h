/* The symmetries of a mixed-integer problem that permute columns: generators of a group of permutations that map every row to a
 * row, and so every solution to one that is as good.
 *
 * - Method: individualization and refinement on the coloured graph ("Practical graph isomorphism", McKay 1981), as codes for
 *   large sparse graphs do it ("Exploiting structure in symmetry detection for CNF", Darga et al. 2004): the first path of
 *   individualized vertices ends in a leaf; then, from the deepest level up, every other vertex of a level's cell that is in no
 *   known orbit with the first is tried for an automorphism that maps one to the other and keeps what was individualized before. At
 *   each step down the map that exchanges what was split and keeps all else is tried first, which finds most generators at once.
 * - What is found keeps its level's prefix, and generates, where nothing was given up, the whole group.
 * - Trust: each generator is compared with the problem's data, number by number, before it is kept; nothing rests on the
 *   refinement.
 * - What moves no integer column is not looked for.
 * - Limits: ticks (edges and vertices looked at), never the clock; the same problem and limit give the same generators. */
#pragma once

#include <cstdint>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip {

/* The columns that a permutation moves, ascending, and where to. */
struct Generator {
  std::vector<int> columns, images;
};

struct Symmetries {
  std::vector<Generator> generators;
  std::int64_t ticks = 0;
  bool is_complete = false;  // false: the limit ended the search, or dead ends were given up
};

Symmetries find_symmetries(const Problem& problem, std::int64_t tick_limit);

}  // namespace tovik::mip
