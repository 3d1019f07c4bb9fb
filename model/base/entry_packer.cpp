#include "model/base/entry_packer.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tovik::model {

VectorView EntryPacker::pack(const int* index, const double* value, int count) {
  bool clean = true;
  for (int p = 0; p < count && clean; ++p) clean = value[p] != 0 && (p == 0 || index[p - 1] < index[p]);
  if (clean) return {index, value, count};
  index_.clear();
  value_.clear();
  for (int p = 0; p < count; ++p) {
    index_.push_back(index[p]);
    value_.push_back(value[p]);
  }
  if (has_duplicates()) merge_duplicates();
  std::size_t kept = 0;
  for (std::size_t p = 0; p < index_.size(); ++p) {
    if (value_[p] == 0) continue;
    index_[kept] = index_[p];
    value_[kept++] = value_[p];
  }
  return {index_.data(), value_.data(), static_cast<int>(kept)};
}

VectorView EntryPacker::keep_last(const int* index, const double* value, int count) {
  index_.assign(index, index + count);
  if (!has_duplicates()) return {index, value, count};
  std::vector<int> position(index_.size());
  std::iota(position.begin(), position.end(), 0);
  std::stable_sort(position.begin(), position.end(), [&](int a, int b) { return index[a] < index[b]; });
  std::vector<char> last(index_.size(), 1);
  for (std::size_t k = 1; k < position.size(); ++k) {
    const int before = position[k - 1];
    if (index[before] == index[position[k]]) last[static_cast<std::size_t>(before)] = 0;
  }
  index_.clear();
  value_.clear();
  for (int p = 0; p < count; ++p) {
    if (last[static_cast<std::size_t>(p)] == 0) continue;
    index_.push_back(index[p]);
    value_.push_back(value[p]);
  }
  return {index_.data(), value_.data(), static_cast<int>(index_.size())};
}

bool EntryPacker::has_duplicates() {
  sorted_ = index_;
  std::sort(sorted_.begin(), sorted_.end());
  return std::adjacent_find(sorted_.begin(), sorted_.end()) != sorted_.end();
}

/* Leaves the entries sorted by index; equal indices are summed in the caller's order. */
void EntryPacker::merge_duplicates() {
  std::vector<std::pair<int, double>> entries;
  entries.reserve(index_.size());
  for (std::size_t p = 0; p < index_.size(); ++p) entries.emplace_back(index_[p], value_[p]);
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  index_.clear();
  value_.clear();
  for (const auto& [index, value] : entries) {
    if (!index_.empty() && index_.back() == index) {
      value_.back() += value;
    } else {
      index_.push_back(index);
      value_.push_back(value);
    }
  }
}

}  // namespace tovik::model
