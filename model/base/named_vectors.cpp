#include "model/base/named_vectors.h"

namespace tovik::model {

void NamedVectors::append(VectorView vector, const char* name) {
  const Extent before = extent();
  vectors_.append(vector);
  try {
    names_.append(before.vectors, 1, name != nullptr ? &name : nullptr);
  } catch (...) {
    truncate(before);
    throw;
  }
}

void NamedVectors::set(int k, int column, double value) {
  const int position = vectors_.find(k, column);
  if (position < 0) {
    vectors_.push(k, column, value);
  } else {
    vectors_.set_value(k, position, value);
  }
}

void NamedVectors::truncate(Extent extent) noexcept {
  vectors_.truncate(extent.vectors);
  if (names_.size() > extent.names) names_.truncate(extent.names);
}

void NamedVectors::renumber(std::span<const int> renumber) noexcept {
  vectors_.keep_vectors(renumber);
  names_.renumber(renumber);
}

std::vector<int> renumbering_without(int count, int first, int last) {
  std::vector<int> renumber(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) {
    renumber[static_cast<std::size_t>(k)] = k < first ? k : k <= last ? -1 : k - (last - first + 1);
  }
  return renumber;
}

std::vector<int> renumbering_without(std::span<const int> marks) {
  std::vector<int> renumber(marks.size());
  int kept = 0;
  for (std::size_t k = 0; k < marks.size(); ++k) renumber[k] = marks[k] == 1 ? -1 : kept++;
  return renumber;
}

}  // namespace tovik::model
