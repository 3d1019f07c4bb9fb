/* The MPS reader: one pass over the bytes; sections in their order, each handled by a component of its
 * own. */
#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "fileio/mps/bounds.h"
#include "fileio/mps/columns.h"
#include "fileio/mps/constant.h"
#include "fileio/mps/families.h"
#include "fileio/mps/input.h"
#include "fileio/mps/rim.h"
#include "fileio/record/model_reader.h"
#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace mps {
namespace {

constexpr int kLineLimit = 65535;  // bytes; far more than any record needs

enum class Section {
  none,
  name,
  objsense,
  objname,
  refrow,
  rows,
  usercuts,
  lazycons,
  columns,
  rhs,
  ranges,
  bounds,
  sos,
  qmatrix,
  quadobj,
  qcmatrix,
  indicators,
  endata
};

/* In the order of a file. Sections of equal rank may change places. */
struct SectionWord {
  std::string_view word;
  Section section;
  int rank;
};

constexpr SectionWord kSections[] = {
    {"NAME", Section::name, 0},
    {"OBJSENSE", Section::objsense, 1},
    {"OBJNAME", Section::objname, 1},
    {"REFROW", Section::refrow, 1},
    {"ROWS", Section::rows, 2},
    {"USERCUTS", Section::usercuts, 3},
    {"LAZYCONS", Section::lazycons, 3},
    {"COLUMNS", Section::columns, 4},
    {"RHS", Section::rhs, 5},
    {"RANGES", Section::ranges, 6},
    {"BOUNDS", Section::bounds, 7},
    {"SOS", Section::sos, 8},
    {"QMATRIX", Section::qmatrix, 9},
    {"QUADOBJ", Section::quadobj, 9},
    {"QCMATRIX", Section::qcmatrix, 10},
    {"INDICATORS", Section::indicators, 11},
    {"ENDATA", Section::endata, 12},
};
constexpr int kRankRows = 2, kRankColumns = 4, kRankSets = 8;

class Reader {
 public:
  Reader(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model)
      : context_(log, model),
        blocks_(source),
        rows_(context_),
        columns_(context_, rows_),
        rhs_(context_, rows_, RimSection::Kind::rhs),
        ranges_(context_, rows_, RimSection::Kind::ranges),
        bounds_(context_, rows_),
        sets_(context_, rows_),
        quadratic_(context_, rows_),
        indicators_(context_, rows_) {
    reserve(options, source.expected_size());
  }

  ReadFailure run() {
    if (read_lines() && at_end()) {
      blocks_.drain();
      finish();
    }
    return std::move(context_.failure);
  }

 private:
  void reserve(const ReadOptions& options, std::size_t bytes);
  bool read_lines();
  bool read_block();
  bool read_columns(const char*& p, const char* end);
  bool scan(const char*& p, const char* end, Record& record);
  static bool begins_header(const char* line) {
    return static_cast<unsigned char>(*line) > ' ' && *line != '*';
  }
  bool header(const Record& record);
  bool data(const Record& record);
  bool enter(const SectionWord& word, const Record& record);
  bool problem_name(const Record& record);
  bool leave();
  bool check_place(const SectionWord& word, int line);
  bool unrecognized(int line);
  bool one_word(const Field& word, int line);
  bool sense(const Field& word, int line);
  bool close_rows(int line);
  void cut_names(Record& record);
  bool at_end();
  bool finish();

  Context context_;
  LineBlocks blocks_;
  RowDirectory rows_;
  ColumnSection columns_;
  RimSection rhs_, ranges_;
  BoundSection bounds_;
  SetSection sets_;
  QuadraticSection quadratic_;
  IndicatorSection indicators_;

  Section section_ = Section::none;
  int rank_ = -1;  // the highest rank met
  int line_ = 0;
  bool ended_ = false, rows_seen_ = false, columns_seen_ = false, sense_given_ = false;
  bool word_seen_ = false;  // of a section that consists of one word
  WarningLimit truncated_;
};

/* Room for a usual file of that size, so that long lists need not move; what stays unused is never
 * touched. */
void Reader::reserve(const ReadOptions& options, std::size_t bytes) {
  constexpr std::size_t kBytesPerEntry = 32, kBytesPerColumn = 64, kBytesPerName = 8;
  const auto room = [&](std::int64_t expected, std::size_t bytes_each) {
    const std::size_t wanted =
        std::max(static_cast<std::size_t>(std::max<std::int64_t>(expected, 0)), bytes / bytes_each);
    return std::min(wanted, static_cast<std::size_t>(kMaxEntries));
  };
  FileModel& model = context_.model;
  const std::size_t columns = room(options.expected_columns, kBytesPerColumn);
  const std::size_t entries = room(options.expected_nonzeros, kBytesPerEntry);
  model.columns.reserve_text(columns, columns * kBytesPerName);
  model.objective.reserve(columns);
  model.start.reserve(columns + 1);
  model.index.reserve(entries);
  model.value.reserve(entries);
}

bool Reader::read_lines() {
  while (!ended_ && blocks_.next())
    if (!read_block()) return false;
  if (!blocks_.line_too_long()) return true;
  return context_.fail(ReadFailure::at(TVK_ERROR_LINE_TOO_LONG, line_ + 1, kLineLimit));
}

bool Reader::read_block() {
  Record record;
  const char* p = blocks_.begin();
  const char* const end = blocks_.end();
  while (p != end && !ended_) {
    if (section_ == Section::columns) {
      if (!read_columns(p, end)) return false;
      if (p == end) break;
    }
    if (!scan(p, end, record)) return false;
    if (record.count == 0) continue;
    if (begins_header(record.begin) ? !header(record) : !data(record)) return false;
  }
  return true;
}

/* Cuts one line into fields; none for a comment. */
bool Reader::scan(const char*& p, const char* end, Record& record) {
  if (line_ < std::numeric_limits<int>::max()) ++line_;
  record.line = line_;
  if (*p == '*') {
    p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p))) + 1;
    record.count = 0;
    return true;
  }
  p = scan_free(p, record) + 1;
  if (p - record.begin > kLineLimit)
    return context_.fail(ReadFailure::at(TVK_ERROR_LINE_TOO_LONG, line_, kLineLimit));
  if (record.overlong) cut_names(record);
  return true;
}

/* Lines of COLUMNS up to the next header. Some lines are cut ahead of the one that is stored, so that the
 * index entries of their rows arrive from memory in the meantime. */
bool Reader::read_columns(const char*& p, const char* end) {
  std::array<Record, 32> batch;
  while (p != end && !begins_header(p)) {
    std::size_t lines = 0;
    while (lines < batch.size() && p != end && !begins_header(p)) {
      Record& record = batch[lines];
      if (!scan(p, end, record)) return false;
      if (record.count == 0) continue;
      columns_.prefetch(record);
      ++lines;
    }
    for (std::size_t k = 0; k < lines; ++k)
      if (!columns_.record(batch[k])) return false;
  }
  return true;
}

/* Names that are too long are cut; a number may have any length. */
void Reader::cut_names(Record& record) {
  const int kept = record.count < Record::kMaxFields ? record.count : Record::kMaxFields;
  for (int k = 0; k < kept; ++k) {
    Field& field = record.field[static_cast<std::size_t>(k)];
    double value;
    if (field.length <= kMaxNameLength || parse_whole_number(field.text, field.end(), value)) continue;
    if (truncated_.admit())
      context_.log.warn("Warning, line %d:  '%s' truncated.\n", record.line,
                        std::string(field.view()).c_str());
    field.length = kMaxNameLength;
  }
}

bool Reader::header(const Record& record) {
  for (const SectionWord& word : kSections)
    if (record.field[0].is_keyword(word.word)) return enter(word, record);
  return unrecognized(record.line);
}

/* What was expected in place of an unknown or impossible section. */
bool Reader::unrecognized(int line) {
  if (rank_ < 0) return context_.fail(TVK_ERROR_LINE_NO_NAME_SECTION, line);
  if (!rows_seen_) return context_.fail(TVK_ERROR_LINE_NO_ROWS_SECTION, line);
  if (!columns_seen_) return context_.fail(TVK_ERROR_LINE_NO_COLUMNS_SECTION, line);
  return context_.fail(rank_ < kRankSets    ? TVK_ERROR_LINE_EXPECTED_BOUND_SECTIONS
                       : rank_ == kRankSets ? TVK_ERROR_LINE_EXPECTED_QMATRIX
                                            : TVK_ERROR_LINE_EXPECTED_ENDATA,
                       line);
}

/* A section out of its order is read with a warning as long as its meaning does not depend on the order. */
bool Reader::check_place(const SectionWord& word, int line) {
  if (rank_ < 0 && word.section != Section::name) return context_.fail(TVK_ERROR_LINE_NO_NAME_SECTION, line);
  if (word.rank > kRankRows && !rows_seen_) return context_.fail(TVK_ERROR_LINE_NO_ROWS_SECTION, line);
  if (word.rank > kRankColumns && !columns_seen_)
    return context_.fail(TVK_ERROR_LINE_NO_COLUMNS_SECTION, line);
  if (word.section == Section::ranges && rank_ > word.rank)
    return context_.fail(TVK_ERROR_LINE_RANGES_OUT_OF_ORDER, line);
  const bool shapes_rows = word.section == Section::objname || word.section == Section::refrow ||
                           (word.rank >= kRankRows && word.rank <= kRankColumns);
  if (shapes_rows && columns_seen_) return unrecognized(line);
  const bool second_objective = word.section == Section::qmatrix || word.section == Section::quadobj;
  if (second_objective && quadratic_.has_objective())
    return context_.fail(TVK_ERROR_LINE_EXPECTED_ENDATA, line);
  const bool repeats = word.section == section_ && word.section != Section::qcmatrix;
  if (word.rank < rank_ || repeats)
    context_.log.warn("Warning, line %d:  %s section illegal or out of order.\n", line,
                      std::string(word.word).c_str());
  return true;
}

bool Reader::enter(const SectionWord& word, const Record& record) {
  if (!check_place(word, record.line) || !leave()) return false;
  const bool again = rank_ >= 0 && word.section == Section::name;
  section_ = word.section;
  rank_ = std::max(rank_, word.rank);
  word_seen_ = false;
  switch (section_) {
    case Section::name:
      return again || record.count == 1 || problem_name(record);
    case Section::objsense:
    case Section::objname:
    case Section::refrow:
      return record.count == 1 || one_word(record.field[1], record.line);
    case Section::rows:
      rows_seen_ = true;
      return true;
    case Section::columns:
      columns_seen_ = true;
      return close_rows(record.line) && columns_.open(record.line);
    case Section::qmatrix:
      return quadratic_.open(QuadraticSection::Kind::full_objective, record);
    case Section::quadobj:
      return quadratic_.open(QuadraticSection::Kind::half_objective, record);
    case Section::qcmatrix:
      return quadratic_.open(QuadraticSection::Kind::row, record);
    case Section::endata:
      ended_ = true;
      return true;
    default:
      return true;
  }
}

bool Reader::problem_name(const Record& record) {
  const std::string_view name = rest_of_line(record, record.field[1].text).view();
  if (name.find('\0') != std::string_view::npos) return context_.fail(TVK_ERROR_BAD_CHARACTER, record.line);
  context_.model.problem_name.assign(name);
  return true;
}

/* Completes the section that ends. */
bool Reader::leave() {
  switch (section_) {
    case Section::columns:
      return columns_.close();
    case Section::qmatrix:
    case Section::quadobj:
    case Section::qcmatrix:
      return quadratic_.close();
    default:
      return true;
  }
}

bool Reader::close_rows(int line) {
  if (!sense_given_) context_.log.result("Selected objective sense:  MINIMIZE\n");
  return rows_.close(line);
}

bool Reader::sense(const Field& word, int line) {
  const bool maximize = word.is_keyword("MAX");
  if (!maximize && !word.is_keyword("MIN"))
    return context_.fail(TVK_ERROR_LINE_OBJECTIVE_SENSE, line, word.view());
  context_.model.objective_sense = maximize ? -1 : 1;
  context_.log.print("Specified objective sense: %s\n", maximize ? "MAXIMIZE" : "MINIMIZE");
  sense_given_ = true;
  return true;
}

bool Reader::data(const Record& record) {
  switch (section_) {
    case Section::none:
      return context_.fail(TVK_ERROR_LINE_NO_NAME_SECTION, record.line);
    case Section::rows:
      return rows_.record(record, RowKind::linear);
    case Section::usercuts:
      return rows_.record(record, RowKind::user_cut);
    case Section::lazycons:
      return rows_.record(record, RowKind::lazy_constraint);
    case Section::rhs:
      return rhs_.record(record);
    case Section::ranges:
      return ranges_.record(record);
    case Section::bounds:
      return bounds_.record(record);
    case Section::sos:
      return sets_.record(record);
    case Section::qmatrix:
    case Section::quadobj:
    case Section::qcmatrix:
      return quadratic_.record(record);
    case Section::indicators:
      return indicators_.record(record);
    default:
      break;
  }
  if (section_ == Section::name || word_seen_) return unrecognized(record.line);
  return one_word(record.field[0], record.line);
}

/* Of a section that consists of one word, on the header line or on the line behind it. */
bool Reader::one_word(const Field& word, int line) {
  word_seen_ = true;
  if (section_ == Section::objname) rows_.name_objective(word);
  if (section_ == Section::refrow) columns_.name_reference_row(word);
  return section_ != Section::objsense || sense(word, line);
}

bool Reader::at_end() {
  if (!columns_seen_) return unrecognized(std::max(line_, 1));
  if (ended_) return true;
  context_.log.warn("Warning, line %d:  'ENDATA' missing.\n", line_);
  return leave();
}

bool Reader::finish() {
  if (!rhs_.close() || !ranges_.close()) return false;
  bounds_.close();
  indicators_.close();
  if (truncated_.suppressed() > 0)
    context_.log.warn("%d truncation warning messages not printed.\n", truncated_.suppressed());
  extract_special_rows(context_.model, rows_.kinds(), quadratic_.rows_in_order(),
                       indicators_.rows_in_order());
  fold_constant_column(context_.model);
  return true;
}

}  // namespace
}  // namespace mps

ReadFailure read_mps(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model) {
  return mps::Reader(source, options, log, model).run();
}

}  // namespace tovik::fileio
