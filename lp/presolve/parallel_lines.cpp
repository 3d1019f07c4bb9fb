#include "lp/presolve/parallel_lines.h"

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

std::uint64_t direction_hash(const View& line) {
  int first = 0;
  for (int k = 1; k < line.length; ++k) {
    if (line.index[k] < line.index[first]) first = k;
  }
  const double inverse = 1 / line.value[first];
  std::uint64_t hash = mixed(static_cast<std::uint64_t>(line.length));
  for (int k = 0; k < line.length; ++k) {
    const auto rounded = std::bit_cast<std::uint32_t>(static_cast<float>(line.value[k] * inverse));
    hash += mixed((std::uint64_t{rounded} << 32) + static_cast<std::uint32_t>(line.index[k]));
  }
  return hash;
}

void keep_shared_hashes(std::vector<HashedLine>& lines) {
  std::sort(lines.begin(), lines.end(), [](const HashedLine& a, const HashedLine& b) {
    return a.hash != b.hash ? a.hash < b.hash : a.line < b.line;
  });
  size_t kept = 0;
  for (size_t k = 0; k < lines.size(); ++k) {
    const bool shared = (k > 0 && lines[k - 1].hash == lines[k].hash) ||
                        (k + 1 < lines.size() && lines[k + 1].hash == lines[k].hash);
    if (shared) lines[kept++] = lines[k];
  }
  lines.resize(kept);
}

void Spread::load(const View& line) {
  for (const int k : index_) value_[k] = 0;
  index_.assign(line.index, line.index + line.length);
  for (int k = 0; k < line.length; ++k) value_[line.index[k]] = line.value[k];
}

double Spread::ratio(const View& other) const {
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
