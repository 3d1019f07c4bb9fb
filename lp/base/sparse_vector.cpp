#include "lp/base/sparse_vector.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp {

namespace {

// Clearing by the list beats clearing the whole array up to about this share of nonzeros.
constexpr double kClearByList = 0.3;
// Lists longer than this share are rebuilt sorted: sequential access later pays for the scan.
constexpr double kSortedList = 0.1;

}  // namespace

void SparseVector::resize(int dimension) {
  array.assign(dimension, 0.0);
  index.assign(dimension, 0);
  count = 0;
  want_pack = false;
  packed_index.clear();
  packed_value.clear();
}

void SparseVector::clear() {
  if (count < 0 || count > kClearByList * dimension()) {
    std::fill(array.begin(), array.end(), 0.0);
  } else {
    for (int k = 0; k < count; ++k) array[index[k]] = 0.0;
  }
  count = 0;
  want_pack = false;
  packed_index.clear();
  packed_value.clear();
}

void SparseVector::tight() {
  if (count < 0) {
    for (double& value : array) {
      if (std::fabs(value) < kTiny) value = 0.0;
    }
    return;
  }
  int kept = 0;
  for (int k = 0; k < count; ++k) {
    const int i = index[k];
    if (std::fabs(array[i]) < kTiny) {
      array[i] = 0.0;
    } else {
      index[kept++] = i;
    }
  }
  count = kept;
}

void SparseVector::reindex() {
  if (count >= 0 && count <= kSortedList * dimension()) return;
  int found = 0;
  const int size = dimension();
  for (int i = 0; i < size; ++i) {
    if (array[i] != 0.0) index[found++] = i;
  }
  count = found;
}

void SparseVector::pack() {
  packed_index.clear();
  packed_value.clear();
  const auto append = [this](int i) {
    if (array[i] == 0.0) return;
    packed_index.push_back(i);
    packed_value.push_back(array[i]);
  };
  if (count < 0) {
    for (int i = 0; i < dimension(); ++i) append(i);
  } else {
    for (int k = 0; k < count; ++k) append(index[k]);
  }
}

void SparseVector::copy(const SparseVector& other) {
  clear();
  if (other.count < 0) {
    std::copy(other.array.begin(), other.array.end(), array.begin());
  } else {
    for (int k = 0; k < other.count; ++k) {
      const int i = other.index[k];
      index[k] = i;
      array[i] = other.array[i];
    }
  }
  count = other.count;
}

double SparseVector::norm2() const {
  double sum = 0.0;
  if (count < 0) {
    for (const double value : array) sum += value * value;
  } else {
    for (int k = 0; k < count; ++k) sum += array[index[k]] * array[index[k]];
  }
  return sum;
}

}  // namespace tovik::lp
