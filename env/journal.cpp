#include "env/journal.h"

#include <algorithm>

namespace tovik {
namespace {

constexpr std::size_t kLeastRoom = 256;
constexpr std::size_t kRoomShare = 8;  // one place for so many lines: beyond that a comparison is as cheap
constexpr std::size_t kMostGone = 1024;

}  // namespace

void Journal::Lines::start(std::size_t known) {
  touched_.clear();
  gone_.clear();
  touched_.reserve(std::max(kLeastRoom, known / kRoomShare));
  gone_.reserve(kMostGone);
  known_ = known;
  added_ = 0;
}

void Journal::Lines::clear() noexcept {
  known_ = known_ - gone_.size() + static_cast<std::size_t>(added_);
  added_ = 0;
  touched_.clear();
  gone_.clear();
}

bool Journal::Lines::touch(std::span<const int> which) noexcept {
  if (touched_.size() + which.size() > touched_.capacity()) return false;
  touched_.insert(touched_.end(), which.begin(), which.end());
  return true;
}

/* The k-th of the present lines goes; among those that the engine knows it is the k-th that is not yet
 * gone. */
bool Journal::Lines::erase_one(int k) noexcept {
  if (static_cast<std::size_t>(k) >= known_ - gone_.size()) {
    --added_;
    return true;
  }
  if (gone_.size() == gone_.capacity()) return false;
  auto place = gone_.begin();
  for (; place != gone_.end() && *place <= k; ++place) ++k;
  gone_.insert(place, k);
  return true;
}

bool Journal::Lines::erase(int first, int last) noexcept {
  for (int k = last; k >= first; --k) {
    if (!erase_one(k)) return false;
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

void Journal::note(const Edit& edit) noexcept {
  if (structure_lost_) return;
  Lines& lines = edit.lines == Edit::Lines::rows ? rows_ : columns_;
  switch (edit.kind) {
    case Edit::Kind::values:
      if (!lines.touch(edit.which)) lose_values();
      break;
    case Edit::Kind::added:
      lines.added_ += edit.last - edit.first + 1;
      break;
    case Edit::Kind::deleted:
      if (!lines.erase(edit.first, edit.last)) lose_structure();
      break;
    case Edit::Kind::deleted_marked:
      for (auto k = static_cast<int>(edit.which.size()) - 1; k >= 0 && !structure_lost_; --k) {
        if (edit.which[static_cast<std::size_t>(k)] == 1 && !lines.erase(k, k)) lose_structure();
      }
      break;
  }
}

}  // namespace tovik
