#include "fileio/record/name_table.h"

#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "model/base/name_hash.h"

namespace tovik::fileio {
namespace {

/* Bytes as a number, the first one lowest. */
template <class Word>
Word load_low_first(const char* p) {
  Word word;
  std::memcpy(&word, p, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = sizeof word == 8 ? static_cast<Word>(__builtin_bswap64(word))
                            : static_cast<Word>(__builtin_bswap32(word));
  }
  return word;
}

/* Up to eight bytes as a number, the first one lowest, zero behind the end; n >= 1. */
std::uint64_t load(const char* p, std::size_t n) {
  if (n >= 8) return load_low_first<std::uint64_t>(p);
  if (n >= 4) {
    return load_low_first<std::uint32_t>(p) |
           static_cast<std::uint64_t>(load_low_first<std::uint32_t>(p + n - 4)) << (8 * (n - 4));
  }
  const auto byte = [p](std::size_t i) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(p[i])) << (8 * i);
  };
  return byte(0) | byte(n / 2) | byte(n - 1);
}

}  // namespace

NameTable::NameTable() : begin_(1, 0), slots_(64) {
  model::ensure_hash_key();
}

/* Eight bytes at a time; names are short, so one to three rounds. */
NameTable::Key NameTable::key_of(std::string_view name) {
  const char* p = name.data();
  std::size_t left = name.size();
  const std::uint64_t word = left == 0 ? 0 : load(p, left);
  std::uint64_t h = model::mix_hash(name.size(), word);
  while (left > 8) {
    left -= 8;
    p += 8;
    h = model::mix_hash(h, load(p, left));
  }
  return {word, static_cast<std::uint32_t>(h >> 32 & ~1ULL) | static_cast<std::uint32_t>(name.size() <= 8)};
}

inline bool NameTable::holds(const Slot& slot, const Key& key, std::string_view wanted) const {
  if (slot.word != key.word || slot.hash != key.hash || slot.id == kNone) return false;
  return (key.hash & 1) != 0 || name(slot.id) == wanted;
}

std::size_t NameTable::slot_of(std::string_view wanted, const Key& key) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = key.hash / 2 & mask;
  while (slots_[i].id != kNone && !holds(slots_[i], key, wanted)) i = (i + 1) & mask;
  return i;
}

int NameTable::find(std::string_view wanted) const {
  return slots_[slot_of(wanted, key_of(wanted))].id;
}

NameTable::Interned NameTable::intern(std::string_view wanted, const Key& key) {
  std::size_t i = slot_of(wanted, key);
  const bool added = slots_[i].id == kNone;
  if (added) {
    if (begin_.size() * 2 > slots_.size()) {
      grow(slots_.size() * 2);
      i = slot_of(wanted, key);
    }
    slots_[i] = {key.word, key.hash, add_text(wanted)};
    indexed_ = slots_[i].id + 1;
  }
  return {slots_[i].id, added};
}

int NameTable::add_text(std::string_view name) {
  text_.insert(text_.end(), name.begin(), name.end());
  text_.push_back('\0');
  begin_.push_back(text_.size());
  return size() - 1;
}

int NameTable::append(std::string_view name) {
  return add_text(name);
}

void NameTable::reserve_text(std::size_t names, std::size_t bytes) {
  begin_.reserve(names + 1);
  text_.reserve(bytes);
}

std::vector<int> NameTable::index_appended() {
  constexpr int kAhead = 16;  // slots are fetched this many names ahead
  std::vector<int> repeats;
  reserve(size());
  std::array<Key, kAhead> keys{};
  const int end = size();
  for (int ahead = indexed_; ahead < end + kAhead; ++ahead) {
    const int id = ahead - kAhead;
    Key& key = keys[static_cast<std::size_t>(ahead % kAhead)];
    if (id >= indexed_) {
      Slot& slot = slots_[slot_of(name(id), key)];
      if (slot.id == kNone) {
        slot = {key.word, key.hash, id};
      } else {
        repeats.push_back(id);
      }
    }
    if (ahead >= end) continue;
    key = key_of(name(ahead));
    prefetch(key);
  }
  indexed_ = end;
  return repeats;
}

void NameTable::reserve(int count) {
  std::size_t slots = slots_.size();
  while (slots < 2 * static_cast<std::size_t>(count) + 2) slots *= 2;
  if (slots != slots_.size()) grow(slots);
  begin_.reserve(static_cast<std::size_t>(count) + 1);
}

/* The slots behind the freed one move up as far as their own places allow, so that no search ends early. */
void NameTable::remove_last() {
  const std::size_t mask = slots_.size() - 1;
  const std::string_view last = name(size() - 1);
  std::size_t hole = slot_of(last, key_of(last));
  for (std::size_t i = (hole + 1) & mask; slots_[i].id != kNone; i = (i + 1) & mask) {
    const std::size_t home = slots_[i].hash / 2 & mask;
    if (((i - home) & mask) < ((i - hole) & mask)) continue;
    slots_[hole] = slots_[i];
    hole = i;
  }
  slots_[hole] = Slot{};
  text_.resize(begin_[begin_.size() - 2]);
  begin_.pop_back();
  indexed_ = size();
}

model::NameBlock NameTable::release() {
  begin_.pop_back();
  return {std::move(text_), std::move(begin_)};
}

void NameTable::grow(std::size_t slots) {
  Slots wider(slots);
  const std::size_t mask = slots - 1;
  for (const Slot& slot : slots_) {
    if (slot.id == kNone) continue;
    std::size_t i = slot.hash / 2 & mask;
    while (wider[i].id != kNone) i = (i + 1) & mask;
    wider[i] = slot;
  }
  slots_.swap(wider);
}

}  // namespace tovik::fileio
