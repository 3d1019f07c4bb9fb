#include "param/registry.h"

#include <algorithm>
#include <array>

#include "param/engines_rows.h"
#include "param/general_rows.h"
#include "param/mip_rows.h"

namespace tovik::param {

namespace {

struct Block {
  int first;
  int last;
};

constexpr std::array<Block, 5> kBlocks = {
    {{1001, 1127}, {2000, 2139}, {3001, 3034}, {4001, 4010}, {5001, 5005}}};
constexpr std::uint64_t kLookupWork = 2 * kBlocks.size() + 1;

constexpr size_t kRows = rows::kGeneral.size() + rows::kMip.size() + rows::kEngines.size();

constexpr std::array<Entry, kRows> join_rows() {
  std::array<Entry, kRows> all;
  auto end = std::copy(rows::kGeneral.begin(), rows::kGeneral.end(), all.begin());
  end = std::copy(rows::kMip.begin(), rows::kMip.end(), end);
  std::copy(rows::kEngines.begin(), rows::kEngines.end(), end);
  return all;
}

constexpr std::array<Entry, kRows> kTable = join_rows();
constexpr Entry kUnregistered{};

constexpr int kPositions = [] {
  int count = 0;
  for (const Block& block : kBlocks) count += block.last - block.first + 1;
  return count;
}();

/* Position of a number over all blocks, or -1. */
constexpr int position(int number) {
  int before = 0;
  for (const Block& block : kBlocks) {
    if (number >= block.first && number <= block.last) return before + number - block.first;
    before += block.last - block.first + 1;
  }
  return -1;
}

constexpr std::array<short, static_cast<size_t>(kPositions)> kRowAt = [] {
  std::array<short, static_cast<size_t>(kPositions)> row_at{};
  row_at.fill(-1);
  for (size_t row = 0; row < kRows; ++row) {
    row_at[static_cast<size_t>(position(kTable[row].number))] = static_cast<short>(row);
  }
  return row_at;
}();

constexpr size_t count_of(bool hidden, Type type) {
  return static_cast<size_t>(std::count_if(
      kTable.begin(), kTable.end(), [=](const Entry& e) { return e.hidden == hidden && e.type == type; }));
}

constexpr size_t kNamed =
    count_of(false, Type::integer) + count_of(false, Type::real) + count_of(false, Type::text);

/* Rows of the named entries in the order of their names. */
constexpr std::array<short, kNamed> kByName = [] {
  std::array<short, kNamed> order{};
  size_t used = 0;
  for (size_t row = 0; row < kRows; ++row) {
    if (!kTable[row].hidden) order[used++] = static_cast<short>(row);
  }
  std::sort(order.begin(), order.end(), [](short a, short b) {
    return std::string_view(kTable[static_cast<size_t>(a)].name) <
           std::string_view(kTable[static_cast<size_t>(b)].name);
  });
  return order;
}();

constexpr bool kAscending =
    std::adjacent_find(kTable.begin(), kTable.end(),
                       [](const Entry& a, const Entry& b) { return a.number >= b.number; }) == kTable.end();

/* Published sizes of callers' buffers hold for every row. */
constexpr bool kFitsBuffers = std::all_of(kTable.begin(), kTable.end(), [](const Entry& e) {
  return std::string_view(e.name).size() < TVK_PARAM_NAME_MAX &&
         std::string_view(e.description).size() + std::string_view(kUnusedNote).size() < TVK_PARAM_DESC_MAX;
});

static_assert(kRows == 286 && kNamed == 153);
static_assert(count_of(false, Type::integer) == 116 && count_of(false, Type::real) == 36);
static_assert(count_of(true, Type::integer) == 106 && count_of(true, Type::real) == 25 &&
              count_of(true, Type::text) == 2);
static_assert(kAscending && kFitsBuffers);

}  // namespace

std::span<const Entry> entries() {
  return kTable;
}

void count_table_scan(Environment& env) {
  env.add_work(kLookupWork + static_cast<std::uint64_t>(kPositions));
}

const Entry* locate(Environment& env, int number) {
  env.add_work(kLookupWork);
  const int at = position(number);
  if (at < 0) return nullptr;
  const short row = kRowAt[static_cast<size_t>(at)];
  return row < 0 ? &kUnregistered : &kTable[static_cast<size_t>(row)];
}

const Entry* find_name(std::string_view name) {
  const auto name_of = [](short row) { return std::string_view(kTable[static_cast<size_t>(row)].name); };
  const auto at = std::lower_bound(kByName.begin(), kByName.end(), name,
                                   [&](short row, std::string_view wanted) { return name_of(row) < wanted; });
  if (at == kByName.end() || name_of(*at) != name) return nullptr;
  return &kTable[static_cast<size_t>(*at)];
}

int maximum(const Entry& entry) {
  switch (entry.ceiling) {
    case Ceiling::constant:
      break;
    case Ceiling::threads:
      return thread_limit();
    case Ceiling::threads_less_one:
      return thread_limit() - 1;
  }
  return entry.int_maximum;
}

}  // namespace tovik::param
