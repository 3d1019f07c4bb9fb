#include "model/base/names.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "model/base/name_hash.h"

namespace tovik::model {

namespace {

struct MadeUp {
  char text[24];
  MadeUp(char letter, long number) { std::snprintf(text, sizeof text, "%c%ld", letter, number); }
};

}  // namespace

int NameTable::find(std::string_view name) const {
  if (empty()) return -1;
  if (slots_.empty()) build_index();
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t s = hash_of(name) & mask; slots_[s] != kFree; s = (s + 1) & mask) {
    if (slots_[s] >= 0 && view(slots_[s]) == name) return slots_[s];
  }
  return -1;
}

void NameTable::adopt(NameBlock&& block) noexcept {
  clear();
  block_ = std::move(block);
  block.text.clear();
  block.offset.clear();
}

NameBlock NameTable::release() noexcept {
  NameBlock block = std::move(block_);
  clear();
  return block;
}

void NameTable::append(int present, int count, const char* const* names) {
  append(present, count, names, names != nullptr);
}

void NameTable::append(int present, int count, const char* const* names, bool always) {
  if (empty() && !always) return;
  if (mostly_waste()) compact();
  const int before = size();
  try {
    for (int k = before; k < present; ++k) add_generated(k);
    for (int k = 0; k < count; ++k) {
      if (names != nullptr && names[k] != nullptr) {
        block_.add(names[k]);
        insert_if_indexed(present + k);
      } else {
        add_generated(present + k);
      }
    }
  } catch (...) {
    truncate(before);
    throw;
  }
}

void NameTable::add_generated(int position) {
  const long own = static_cast<long>(position) + 1;
  MadeUp text(letter_, own);
  if (find(text.text) >= 0) {
    long number = std::max(own + 1, next_generated_);
    for (text = MadeUp(letter_, number); find(text.text) >= 0; text = MadeUp(letter_, number)) ++number;
    next_generated_ = number + 1;
  }
  block_.add(text.text);
  insert_if_indexed(position);
}

void NameTable::truncate(int count) noexcept {
  if (count <= 0) {
    clear();
    return;
  }
  for (int k = size(); k-- > count;) {
    erase_if_indexed(k);
    const std::size_t end = block_.text.size();
    const std::size_t bytes = length(k) + 1;
    if (block_.offset.back() + bytes == end) {
      block_.text.resize(end - bytes);
    } else {
      waste_ += bytes;
    }
    block_.offset.pop_back();
  }
}

void NameTable::clear() noexcept {
  block_.text.clear();
  block_.offset.clear();
  waste_ = 0;
  next_generated_ = 0;
  drop_index();
}

void NameTable::rename(int present, int count, const int* positions, const char* const* names) {
  const bool named = !empty();
  if (!named) append(0, present, nullptr, true);
  try {
    rename_present(count, positions, names);
  } catch (...) {
    if (!named) clear();
    throw;
  }
}

void NameTable::rename_present(int count, const int* positions, const char* const* names) {
  std::size_t bytes = 0;
  for (int k = 0; k < count; ++k) bytes += std::string_view(names[k]).size() + 1;
  if (mostly_waste()) compact();
  const std::size_t needed = block_.text.size() + bytes;
  if (needed > block_.text.capacity()) block_.text.reserve(std::max(needed, 2 * block_.text.capacity()));
  for (int k = 0; k < count; ++k) {
    const int position = positions[k];
    erase_if_indexed(position);
    waste_ += length(position) + 1;
    const std::string_view text = names[k];
    block_.offset[static_cast<std::size_t>(position)] = block_.text.size();
    block_.text.insert(block_.text.end(), text.begin(), text.end());
    block_.text.push_back('\0');
    insert_if_indexed(position);
  }
}

void NameTable::renumber(std::span<const int> renumber) noexcept {
  if (empty()) return;
  int kept = 0;
  for (std::size_t k = 0; k < block_.offset.size(); ++k) {
    if (renumber[k] < 0) {
      waste_ += length(static_cast<int>(k)) + 1;
    } else {
      block_.offset[static_cast<std::size_t>(kept++)] = block_.offset[k];
    }
  }
  block_.offset.resize(static_cast<std::size_t>(kept));
  if (kept == 0) {
    clear();
  } else if (duplicates_) {
    drop_index();
  } else {
    for (int& slot : slots_) {
      if (slot >= 0) {
        const int now = renumber[static_cast<std::size_t>(slot)];
        slot = now >= 0 ? now : kErased;
      }
    }
  }
}

void NameTable::compact() {
  NameBlock fresh;
  fresh.text.reserve(block_.text.size() - waste_);
  fresh.offset.reserve(block_.offset.capacity());
  for (int k = 0; k < size(); ++k) fresh.add(view(k));
  block_ = std::move(fresh);
  waste_ = 0;
}

void NameTable::build_index() const {
  std::size_t slots = 16;
  while (slots < 2 * block_.size()) slots *= 2;
  slots_.assign(slots, kFree);
  used_slots_ = 0;
  duplicates_ = false;
  for (int k = 0; k < size(); ++k) insert(k);
}

/* Expects a free slot. Equal names share one entry, that of the lowest position. */
void NameTable::insert(int position) const {
  const std::string_view text = view(position);
  const std::size_t mask = slots_.size() - 1;
  std::size_t s = hash_of(text) & mask;
  for (; slots_[s] != kFree; s = (s + 1) & mask) {
    if (slots_[s] >= 0 && view(slots_[s]) == text) {
      slots_[s] = std::min(slots_[s], position);
      duplicates_ = true;
      return;
    }
  }
  slots_[s] = position;
  ++used_slots_;
}

void NameTable::insert_if_indexed(int position) noexcept {
  if (slots_.empty()) return;
  if (4 * (used_slots_ + 1) <= 3 * slots_.size()) {
    insert(position);
    return;
  }
  try {
    build_index();
  } catch (...) {
    drop_index();
  }
}

void NameTable::erase_if_indexed(int position) noexcept {
  if (slots_.empty()) return;
  if (duplicates_) {  // the entry may stand for other positions as well
    drop_index();
    return;
  }
  const std::string_view text = view(position);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t s = hash_of(text) & mask; slots_[s] != kFree; s = (s + 1) & mask) {
    if (slots_[s] == position) {
      slots_[s] = kErased;
      return;
    }
  }
}

void NameTable::drop_index() const noexcept {
  std::vector<int>().swap(slots_);
  used_slots_ = 0;
  duplicates_ = false;
}

NameBlock collect_names(char letter, int count, const char* const* names) {
  NameBlock block;
  if (names == nullptr) return block;
  std::size_t bytes = 0;
  for (int k = 0; k < count; ++k) {
    if (names[k] == nullptr) {
      NameTable table(letter);
      table.append(0, count, names);
      return table.release();
    }
    bytes += std::string_view(names[k]).size() + 1;
  }
  block.text.reserve(bytes);
  block.offset.reserve(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) block.add(names[k]);
  return block;
}

}  // namespace tovik::model
