#include "env/journal.h"

#include <algorithm>

namespace tovik {
namespace {

constexpr std::size_t kMinCapacity = 256;
constexpr std::size_t kCapacityShare =
    8;  // one place for so many rows or columns: beyond that a comparison is as cheap
constexpr std::size_t kMaxDeleted = 1024;

}  // namespace

void Journal::Changes::start(std::size_t known) {
  touched_.clear();
  deleted_.clear();
  touched_.reserve(std::max(kMinCapacity, known / kCapacityShare));
  deleted_.reserve(kMaxDeleted);
  known_ = known;
  added_ = 0;
}

void Journal::Changes::clear() noexcept {
  known_ = known_ - deleted_.size() + static_cast<std::size_t>(added_);
  added_ = 0;
  touched_.clear();
  deleted_.clear();
}

bool Journal::Changes::record_values(std::span<const int> which) noexcept {
  if (touched_.size() + which.size() > touched_.capacity()) return false;
  touched_.insert(touched_.end(), which.begin(), which.end());
  return true;
}

/* The k-th of the present ones is deleted; among those that the engine knows it is the k-th that is not yet
 * deleted. */
bool Journal::Changes::record_deletion(int k) noexcept {
  if (static_cast<std::size_t>(k) >= known_ - deleted_.size()) {
    --added_;
    return true;
  }
  if (deleted_.size() == deleted_.capacity()) return false;
  auto place = deleted_.begin();
  for (; place != deleted_.end() && *place <= k; ++place) ++k;
  deleted_.insert(place, k);
  return true;
}

bool Journal::Changes::record_deletions(int first, int last) noexcept {
  for (int k = last; k >= first; --k) {
    if (!record_deletion(k)) return false;
  }
  std::erase_if(touched_, [&](int k) { return first <= k && k <= last; });
  for (int& k : touched_) {
    if (k > last) k -= last - first + 1;
  }
  return true;
}

void Journal::start(std::size_t rows, std::size_t columns) {
  lose_structure();
  rows_.start(rows);
  columns_.start(columns);
  values_lost_ = structure_lost_ = false;
}

void Journal::clear() noexcept {
  rows_.clear();
  columns_.clear();
  values_lost_ = structure_lost_;
}

void Journal::record(const Edit& edit) noexcept {
  if (structure_lost_) return;
  Changes& changes = edit.dimension == Edit::Dimension::rows ? rows_ : columns_;
  switch (edit.kind) {
    case Edit::Kind::values:
      if (!changes.record_values(edit.which)) lose_values();
      break;
    case Edit::Kind::added:
      changes.added_ += edit.last - edit.first + 1;
      break;
    case Edit::Kind::deleted:
      if (!changes.record_deletions(edit.first, edit.last)) lose_structure();
      break;
    case Edit::Kind::deleted_marked:
      for (auto k = static_cast<int>(edit.which.size()) - 1; k >= 0 && !structure_lost_; --k) {
        if (edit.which[static_cast<std::size_t>(k)] == 1 && !changes.record_deletions(k, k)) lose_structure();
      }
      break;
  }
}

}  // namespace tovik
