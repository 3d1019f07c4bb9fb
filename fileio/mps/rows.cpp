#include "fileio/mps/rows.h"
#include "include/tovik.h"

namespace tovik::fileio::mps {

namespace {

char sense_of(const Field& field) {
  const char letter = field.upper(0);
  const bool known = letter == 'N' || letter == 'E' || letter == 'L' || letter == 'G';
  return field.length == 1 && known ? letter : '\0';
}

}  // namespace

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
    return context_.fail(
        sense_of(sense_field) != '\0' ? TVK_ERROR_LINE_NO_ROW_NAME : TVK_ERROR_LINE_NO_ROW_SENSE,
        record.line);
  }
  const char sense = sense_of(sense_field);
  if (sense == '\0') return context_.fail(TVK_ERROR_LINE_NO_ROW_SENSE, record.line);
  if (sense == 'N' && kind != RowKind::linear) return context_.fail(TVK_ERROR_LINE_LAZY_OR_CUT, record.line);
  return add(name, sense, kind);
}

bool RowDirectory::add(const Field& name, char sense, RowKind kind) {
  FileModel& model = context_.model;
  if (static_cast<std::int64_t>(row_keys_.size() + free_row_keys_.size()) >= kMaxEntries)
    return context_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_ROWS));
  const std::uint64_t key = RowIndex::key_of(name);
  if (sense == 'N') {
    free_rows_.append(name.view());
    free_row_keys_.push_back(key);
    return true;
  }
  const int id = model.rows.append(name.view());
  row_keys_.push_back(key);
  model.sense.push_back(sense);
  if (kind != RowKind::linear) mark(id, kind);
  return true;
}

void RowDirectory::mark(std::int32_t id, RowKind kind) {
  kinds_.resize(static_cast<std::size_t>(context_.model.rows.size()), RowKind::linear);
  kinds_[static_cast<std::size_t>(id)] = kind;
}

bool RowDirectory::close(int line) {
  Duplicates repeats(TVK_ERROR_MORE_ROW_REPEATS);
  for (const std::int32_t id : index_.build(row_keys_, free_row_keys_))
    repeats.add(ReadFailure::about(TVK_ERROR_ROW_REPEATS, text_of(id)));
  if (repeats.any()) return repeats.report(context_);
  row_keys_ = {};
  free_row_keys_ = {};
  free_rows_.index_appended();
  context_.model.rows.index_appended();
  if (free_rows_.size() == 0) return context_.fail(TVK_ERROR_LINE_NO_OBJECTIVE_ROW, line);
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
