#include "lp/presolve/parallel_vectors.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace tovik::lp::presolve {
namespace {

constexpr double kProportional = 1e-13;  // relative difference of entries that counts as none

std::uint64_t mixed(std::uint64_t x) {  // finalizer with full avalanche
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
  return x ^ (x >> 31);
}

}  // namespace

std::uint64_t direction_hash(const View& vector) {
  int first = 0;
  for (int k = 1; k < vector.length; ++k) {
    if (vector.index[k] < vector.index[first]) first = k;
  }
  const double inverse = 1 / vector.value[first];
  std::uint64_t hash = mixed(static_cast<std::uint64_t>(vector.length));
  for (int k = 0; k < vector.length; ++k) {
    const auto rounded = std::bit_cast<std::uint32_t>(static_cast<float>(vector.value[k] * inverse));
    hash += mixed((std::uint64_t{rounded} << 32) + static_cast<std::uint32_t>(vector.index[k]));
  }
  return hash;
}

void keep_shared_hashes(std::vector<HashedVector>& vectors) {
  std::sort(vectors.begin(), vectors.end(), [](const HashedVector& a, const HashedVector& b) {
    return a.hash != b.hash ? a.hash < b.hash : a.index < b.index;
  });
  size_t kept = 0;
  for (size_t k = 0; k < vectors.size(); ++k) {
    const bool shared = (k > 0 && vectors[k - 1].hash == vectors[k].hash) ||
                        (k + 1 < vectors.size() && vectors[k + 1].hash == vectors[k].hash);
    if (shared) vectors[kept++] = vectors[k];
  }
  vectors.resize(kept);
}

void ScatteredVector::load(const View& vector) {
  for (const int k : index_) value_[k] = 0;
  index_.assign(vector.index, vector.index + vector.length);
  for (int k = 0; k < vector.length; ++k) value_[vector.index[k]] = vector.value[k];
}

double ScatteredVector::ratio(const View& other) const {
  if (other.length == 0 || other.length != static_cast<int>(index_.size())) return 0;
  const double base = value_[other.index[0]];
  if (base == 0) return 0;
  const double g = other.value[0] / base;
  for (int k = 1; k < other.length; ++k) {
    const double scaled = g * value_[other.index[k]];
    if (std::fabs(other.value[k] - scaled) > kProportional * std::fabs(other.value[k])) return 0;
  }
  return g;
}

}  // namespace tovik::lp::presolve
