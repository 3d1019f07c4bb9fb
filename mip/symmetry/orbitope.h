/* Orbitopes: symmetries that permute the columns of a matrix of variables in every way, such as equal bins, colours or machines.
 *
 * Of the solutions that differ by such permutations those count whose binary part has columns that do not ascend lexicographically,
 * by an order of the rows that never changes ("Packing and partitioning orbitopes", Kaibel, Pfetsch, Math. Programming 114
 * (2008)). One of each class does. What that implies at a node are the bounds on which the lexicographically least and greatest
 * completions agree ("Orbitopal fixing for the full (sub-)orbitope and application to the unit commitment problem", Bendotti,
 * Fouilhoux, Rottner, Math. Programming 186 (2021)): every column lies between the two, so it shares the entries that they share in
 * front. Where the first rows hold at most one 1 each, column j has none in the first j of them.
 *
 * - Beside orbital fixing: only on orbitopes whose variables no generator moves that is used there. The order of columns keeps the
 *   symmetry of all others, so that orbital fixing works on a problem of which the order is a part.
 * - Beside all else: bounds by an orbitope hold for solutions in that order only. Nothing that holds for other nodes may come of
 *   them, their reason says so; below the root they are used, and a restart asked for at the root knows nothing of them.
 * - All searches on one tree, and one that goes on after a limit, need the same orbitopes.
 * - Cost: rows times columns a call, counted as ticks. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mip/domain/domain.h"
#include "mip/symmetry/detector.h"

namespace tovik::mip {

/* All its entries are binary. */
struct Orbitope {
  int rows = 0, columns = 0;
  int packing_rows = 0;      // the first ones, that hold at most one 1
  std::vector<int> entries;  // by rows

  int at(int row, int column) const { return entries[static_cast<std::size_t>(row * columns + column)]; }
};

/* Takes from the generators what acts on an orbitope: swaps of two of its columns, and what else overlaps with it. Only where it
 * has most of what they move, and at least three columns. */
std::vector<Orbitope> take_orbitopes(const Problem& problem, std::vector<Generator>& generators);

class OrbitopalFixing {
 public:
  explicit OrbitopalFixing(const std::vector<Orbitope>& orbitopes) : orbitopes_(orbitopes) {}

  /* True when a bound moved or the domain has become infeasible. */
  bool fix(Domain& domain);
  std::int64_t fixings() const { return fixings_; }
  std::int64_t ticks() const { return ticks_; }

 private:
  bool fix(const Orbitope& orbitope, Domain& domain);
  bool tighten(int column, int value, Domain& domain);

  std::vector<Orbitope> orbitopes_;
  std::vector<char> least_, greatest_;  // by columns
  std::int64_t fixings_ = 0, ticks_ = 0;
};

}  // namespace tovik::mip
