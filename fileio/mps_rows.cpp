#include "fileio/mps_rows.h"

namespace tovik::fileio::mps {

namespace {

constexpr std::size_t kFirstEntries = 1024;

char sense_of(const Field& field) {
  const char letter = field.upper(0);
  const bool known = letter == 'N' || letter == 'E' || letter == 'L' || letter == 'G';
  return field.length == 1 && known ? letter : '\0';
}

}  // namespace

RowDirectory::RowDirectory(Context& context) : context_(context) {
  entries_.resize(kFirstEntries);
  mask_ = kFirstEntries - 1;
  shift_ = 64u - static_cast<unsigned>(std::countr_zero(kFirstEntries));
}

/* The lowest byte is 0, which no name of up to eight bytes can have. */
std::uint64_t RowDirectory::key_of_long(const Field& name) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;
  std::uint64_t h = name.length * kMultiplier;
  const char* p = name.text;
  std::uint32_t left = name.length;
  for (; left >= 8; left -= 8, p += 8) {
    h = (h ^ detail::load_word(p)) * kMultiplier;
    h ^= h >> 29;
  }
  if (left > 0) {
    h = (h ^ detail::low_bytes(detail::load_word(p), left)) * kMultiplier;
    h ^= h >> 29;
  }
  return (h << 8) | (std::uint64_t{1} << 63);
}

bool RowDirectory::record(const Record& record, RowKind kind) {
  Field sense_field = record.field[0], name = record.field[1];
  const bool free_fits = record.count == 2 && !cards_;
  Record card;
  if (!free_fits && scan_fixed(record, card) && card.field[2].empty() && sense_of(card.field[0]) != '\0' &&
      !card.field[1].empty()) {
    sense_field = card.field[0];
    name = card.field[1];
    cards_ = cards_ || name.view().find(' ') != std::string_view::npos;
  } else if (record.count < 2) {
    return context_.fail(sense_of(sense_field) != '\0' ? 1486 : 1453, record.line);
  }
  const char sense = sense_of(sense_field);
  if (sense == '\0') return context_.fail(1453, record.line);
  if (sense == 'N' && kind != RowKind::linear) return context_.fail(1438, record.line);
  return add(name, sense, kind);
}

bool RowDirectory::add(const Field& name, char sense, RowKind kind) {
  FileModel& model = context_.model;
  if (find(name) != nullptr) {
    repeats_.add(ReadFailure::about(1445, name.view()));
    return true;
  }
  if (static_cast<std::int64_t>(used_) >= kMaxEntries) return context_.fail(ReadFailure::plain(1431));
  std::int32_t id;
  if (sense == 'N') {
    id = -1 - free_rows_.intern(name.view()).id;
  } else {
    id = model.rows.intern(name.view()).id;
    model.sense.push_back(sense);
    if (kind != RowKind::linear) mark(id, kind);
  }
  if (2 * (used_ + 1) > entries_.size()) grow();
  insert(name.length <= 8 ? name.word : key_of_long(name), id);
  ++used_;
  return true;
}

void RowDirectory::mark(std::int32_t id, RowKind kind) {
  kinds_.resize(static_cast<std::size_t>(context_.model.rows.size()), RowKind::linear);
  kinds_[static_cast<std::size_t>(id)] = kind;
}

void RowDirectory::insert(std::uint64_t key, std::int32_t id) {
  std::size_t i = slot_of(key);
  while (entries_[i].key != 0) i = (i + 1) & mask_;
  entries_[i].key = key;
  entries_[i].id = id;
}

void RowDirectory::grow() {
  std::vector<Entry> old(2 * entries_.size());
  old.swap(entries_);
  mask_ = entries_.size() - 1;
  --shift_;
  for (const Entry& entry : old)
    if (entry.key != 0) insert(entry.key, entry.id);
}

bool RowDirectory::close(int line) {
  if (repeats_.any()) return repeats_.report(context_);
  if (free_rows_.size() == 0) return context_.fail(1476, line);
  int chosen = 0;
  if (!wanted_objective_.empty()) {
    chosen = free_rows_.find(wanted_objective_);
    if (chosen == NameTable::kNone) {
      context_.log.warn("Warning:  Specified objective '%.255s' not found.\n", wanted_objective_.c_str());
      chosen = 0;
    }
  }
  objective_ = -1 - chosen;
  FileModel& model = context_.model;
  model.objective_name = free_rows_.name(chosen);
  std::string line_text = "Selected objective  name:  " + model.objective_name;
  const int deleted = free_rows_.size() - 1;
  if (deleted == 1) line_text += "  [1 free row deleted]";
  if (deleted > 1) line_text += "  [" + std::to_string(deleted) + " free rows deleted]";
  context_.log.result(line_text + "\n");
  const std::size_t rows = static_cast<std::size_t>(model.rows.size());
  model.rhs.assign(rows, 0.0);
  model.range.assign(rows, 0.0);
  if (!kinds_.empty()) kinds_.resize(rows, RowKind::linear);
  return true;
}

}  // namespace tovik::fileio::mps
