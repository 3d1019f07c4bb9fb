#include "fileio/name_table.h"

#include <cstring>
#include <utility>

namespace tovik::fileio {
namespace {

std::uint64_t load(const char* p, std::size_t n) {
  std::uint64_t word = 0;
  std::memcpy(&word, p, n);
  return word;
}

/* Multiply-and-fold over 8-byte words; names are short, so one to three rounds. */
std::uint32_t hash_of(std::string_view name) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15ULL;
  std::uint64_t h = name.size() * kMultiplier;
  const char* p = name.data();
  std::size_t left = name.size();
  for (; left >= 8; left -= 8, p += 8) {
    h = (h ^ load(p, 8)) * kMultiplier;
    h ^= h >> 32;
  }
  if (left != 0) {
    h = (h ^ load(p, left)) * kMultiplier;
    h ^= h >> 32;
  }
  h *= kMultiplier;
  return static_cast<std::uint32_t>(h >> 32);
}

}  // namespace

NameTable::NameTable() : begin_(1, 0), slots_(64, Slot{0, kNone}) {}

std::size_t NameTable::slot_of(std::string_view wanted, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = hash & mask;
  while (slots_[i].id != kNone && (slots_[i].hash != hash || name(slots_[i].id) != wanted))
    i = (i + 1) & mask;
  return i;
}

int NameTable::find(std::string_view wanted) const {
  return slots_[slot_of(wanted, hash_of(wanted))].id;
}

NameTable::Interned NameTable::intern(std::string_view wanted) {
  const std::uint32_t hash = hash_of(wanted);
  std::size_t i = slot_of(wanted, hash);
  if (slots_[i].id != kNone) return {slots_[i].id, false};
  if (begin_.size() * 2 > slots_.size()) {
    grow(slots_.size() * 2);
    i = slot_of(wanted, hash);
  }
  const int id = size();
  text_.insert(text_.end(), wanted.begin(), wanted.end());
  text_.push_back('\0');
  begin_.push_back(text_.size());
  slots_[i] = {hash, id};
  return {id, true};
}

void NameTable::reserve(int count) {
  std::size_t slots = slots_.size();
  while (slots < 2 * static_cast<std::size_t>(count) + 2) slots *= 2;
  if (slots != slots_.size()) grow(slots);
  begin_.reserve(static_cast<std::size_t>(count) + 1);
}

model::NameBlock NameTable::release() {
  begin_.pop_back();
  return {std::move(text_), std::move(begin_)};
}

void NameTable::grow(std::size_t slots) {
  std::vector<Slot> wider(slots, Slot{0, kNone});
  const std::size_t mask = slots - 1;
  for (const Slot& slot : slots_) {
    if (slot.id == kNone) continue;
    std::size_t i = slot.hash & mask;
    while (wider[i].id != kNone) i = (i + 1) & mask;
    wider[i] = slot;
  }
  slots_.swap(wider);
}

}  // namespace tovik::fileio
