#include "mip/symmetry/orbital_fixing.h"

#include <algorithm>
#include <numeric>

#include "mip/symmetry/union_find.h"

namespace tovik::mip {

OrbitalFixing::OrbitalFixing(const Problem& problem, const std::vector<Generator>& generators)
    : is_binary_(static_cast<std::size_t>(problem.num_columns())),
      pairs_(generators.size()),
      moves_start_(is_binary_.size() + 1),
      is_one_(is_binary_.size()),
      is_allowed_(generators.size(), 1) {
  for (int j = 0; j < problem.num_columns(); ++j) {
    is_binary_[j] = problem.is_integer[j] != 0 && problem.lp.lower[j] == 0 && problem.lp.upper[j] == 1;
  }
  std::vector<int> place(is_binary_.size(), -1);
  const auto place_of = [&](int j) {
    if (place[j] < 0) {
      place[j] = static_cast<int>(columns_.size());
      columns_.push_back(j);
    }
    return place[j];
  };
  for (std::size_t g = 0; g < generators.size(); ++g) {
    for (std::size_t k = 0; k < generators[g].columns.size(); ++k) {
      const int j = generators[g].columns[k];
      ++moves_start_[j + 1];
      if (is_binary_[j] == 0) continue;
      pairs_[g].push_back(place_of(j));
      pairs_[g].push_back(place_of(generators[g].images[k]));
    }
  }
  std::partial_sum(moves_start_.begin(), moves_start_.end(), moves_start_.begin());
  moves_.resize(static_cast<std::size_t>(moves_start_.back()));
  std::vector<int> next(moves_start_.begin(), moves_start_.end() - 1);
  for (std::size_t g = 0; g < generators.size(); ++g) {
    for (std::size_t k = 0; k < generators[g].columns.size(); ++k)
      moves_[next[generators[g].columns[k]]++] = {static_cast<int>(g), generators[g].images[k]};
  }
  find_orbits();
}

void OrbitalFixing::set_path(std::span<const BranchedBound> path) {
  allowed_before_ = is_allowed_;
  std::fill(is_allowed_.begin(), is_allowed_.end(), char{1});
  const auto fixes_to_one = [&](const BranchedBound& b) {
    return is_binary_[b.column] != 0 && b.side == Side::lower && b.value == 1;
  };
  const auto fixes_to_zero = [&](const BranchedBound& b) {
    return is_binary_[b.column] != 0 && b.side == Side::upper && b.value == 0;
  };
  for (const BranchedBound& b : path) {
    if (fixes_to_one(b)) is_one_[b.column] = 1;
  }
  for (const BranchedBound& b : path) {
    if (fixes_to_zero(b)) continue;
    for (int k = moves_start_[b.column]; k < moves_start_[b.column + 1]; ++k) {
      if (!keeps(moves_[k], fixes_to_one(b))) is_allowed_[moves_[k].generator] = 0;
    }
    ticks_ += 1 + moves_start_[b.column + 1] - moves_start_[b.column];
  }
  for (const BranchedBound& b : path) is_one_[b.column] = 0;
  ticks_ += static_cast<std::int64_t>(is_allowed_.size());
  if (is_allowed_ != allowed_before_) find_orbits();
}

void OrbitalFixing::find_orbits() {
  const int count = num_columns();
  UnionFind sets(count);
  for (std::size_t g = 0; g < pairs_.size(); ++g) {
    if (is_allowed_[g] == 0) continue;
    for (std::size_t k = 0; k < pairs_[g].size(); k += 2) sets.join(pairs_[g][k], pairs_[g][k + 1]);
    ticks_ += static_cast<std::int64_t>(pairs_[g].size());
  }
  std::vector<int> size(static_cast<std::size_t>(count)), next(size.size());
  for (int k = 0; k < count; ++k) ++size[sets.find(k)];
  orbit_start_.assign(1, 0);
  for (int k = 0; k < count; ++k) {
    if (size[k] < 2) continue;
    next[k] = orbit_start_.back();
    orbit_start_.push_back(orbit_start_.back() + size[k]);
  }
  orbit_members_.resize(static_cast<std::size_t>(orbit_start_.back()));
  for (int k = 0; k < count; ++k) {
    const int root = sets.find(k);
    if (size[root] > 1) orbit_members_[next[root]++] = columns_[k];
  }
  ticks_ += 3 * static_cast<std::int64_t>(count);
}

bool OrbitalFixing::fix(Domain& domain) {
  bool moved = false;
  for (std::size_t k = 0; k + 1 < orbit_start_.size() && !domain.is_infeasible(); ++k) {
    const auto size = static_cast<std::size_t>(orbit_start_[k + 1] - orbit_start_[k]);
    moved |=
        fix_orbit(std::span(orbit_members_).subspan(static_cast<std::size_t>(orbit_start_[k]), size), domain);
  }
  ticks_ += static_cast<std::int64_t>(orbit_members_.size());
  return moved || domain.is_infeasible();
}

/* Members that are fixed differently leave nothing: the second bound crosses the first. */
bool OrbitalFixing::fix_orbit(std::span<const int> orbit, Domain& domain) {
  int zero = -1, one = -1;
  for (const int j : orbit) {
    if (domain.upper(j) < 0.5) zero = j;
    if (domain.lower(j) > 0.5) one = j;
  }
  bool moved = false;
  for (const int j : orbit) {
    const bool to_zero = zero >= 0 && domain.tighten_upper(j, 0, {Reason::Kind::symmetry, zero});
    const bool to_one = one >= 0 && domain.tighten_lower(j, 1, {Reason::Kind::symmetry, one});
    if (to_zero || to_one) ++fixings_;
    moved = moved || to_zero || to_one;
  }
  return moved;
}

}  // namespace tovik::mip
