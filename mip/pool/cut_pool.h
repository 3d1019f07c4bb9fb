/* The cuts that separators have found and that are not rows of the relaxation, each once.
 *
 * - Holds: by cut its terms, Euclidean norm, and age: rounds in which it was not violated. A cut whose terms are those of
 *   another, up to scale, replaces it where its side is tighter, else it is dropped.
 * - select(): the violated cuts, best first: violation by the norm of the terms on columns between their bounds, parallelism to
 *   the objective, integer support; what is too parallel to a better one stays (Achterberg 2007, section 8.9).
 * - Cost: a selection costs the entries of all cuts, and those of the selected ones for each candidate.
 * - Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "mip/domain/problem.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

struct SelectionRules {
  double least_efficacy = 1e-4;
  double least_violation = 1e-5;  // absolute
  double most_parallel = 0.3;     // cosine to a better cut
  int limit = 2000;
};

class CutPool {
 public:
  explicit CutPool(const Problem& problem) : problem_(problem) {}

  /* False where it is known already, or empty. */
  bool add(Cut cut);
  /* Takes the best violated ones out of the pool. The others get older, and leave when they are too old. */
  std::vector<Cut> select(std::span<const double> x, const SelectionRules& rules);
  std::size_t size() const { return cuts_.size(); }
  std::int64_t work() const { return work_; }  // entries touched

 private:
  struct Kept {
    Cut cut;
    double norm;
    std::uint64_t hash;
    int age = 0;
  };
  static std::uint64_t hash_of(const Cut& cut);
  double score(const Kept& kept, double efficacy) const;
  void remove(std::size_t k);

  const Problem& problem_;
  std::vector<Kept> cuts_;
  std::unordered_map<std::uint64_t, std::size_t> by_hash_;
  double cost_norm_ = -1;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
