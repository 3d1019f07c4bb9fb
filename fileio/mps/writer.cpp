/* The MPS writer. Each row becomes an L, E or G row (ranged ones with a RANGES record that gives back their
 * range value), each column its non-zero coefficients, and a BOUNDS record stands wherever a reader would
 * otherwise take another bound. */
#include <cmath>
#include <string>

#include "fileio/mps/names.h"
#include "fileio/record/model_writer.h"
#include "fileio/record/special_rows.h"
#include "fileio/stream/number_text.h"
#include "include/tovik.h"
#include "model/store/default_names.h"

namespace tovik::fileio {
namespace mps {

bool MpsNameRules::acceptable(std::string_view name) const {
  if (name.empty() || name == "'MARKER'") return false;
  for (const char c : name) {
    if (static_cast<unsigned char>(c) <= ' ') return false;
  }
  return true;
}

std::string MpsNameRules::legal(std::string_view name) const {
  std::string text(name);
  for (char& c : text) {
    if (static_cast<unsigned char>(c) <= ' ') c = '_';
  }
  return text;
}

namespace {

constexpr std::string_view kRhsSet = "rhs", kRangeSet = "rng", kBoundSet = "bnd";
constexpr int kShortField = 12, kLongField = 23;

class Writer {
 public:
  Writer(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out)
      : source_(source),
        model_(source.model),
        families_(source.model.families()),
        options_(options),
        log_(log),
        out_(out),
        special_(families_, model_.num_columns()) {}

  int run() {
    name_everything();
    write_head();
    write_rows();
    write_columns();
    write_rhs();
    write_ranges();
    write_bounds();
    write_sets();
    write_quadratic_objective();
    write_quadratic_rows();
    write_indicators();
    out_.put("ENDATA\n");
    return finite_ ? 0 : TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
  }

 private:
  void name_everything();
  void name_rows(bool& rewritten);
  WriterNames names_of(const model::NameTable& table, const model::NameFamily& family, int count);
  void append_names(std::vector<std::string_view>& all, const model::NameTable& table,
                    const model::NameFamily& family, int count);
  void write_head();
  void write_rows();
  void write_row(std::string_view name, char sense);
  void write_special_rows(int begin, int end);
  void write_columns();
  void write_column(int j);
  void write_constant();
  void write_marker(bool begin);
  void write_rhs();
  void write_ranges();
  void write_bounds();
  void write_bounds_of(int j);
  void write_sets();
  void write_quadratic_objective();
  void write_quadratic_rows();
  void write_indicators();

  void pair(std::string_view before, std::string_view name, double value);
  void record(std::string_view first, std::string_view second, double value);
  void bound(std::string_view type, int j, double value);
  void bound(std::string_view type, int j);
  char* number(char* to, double value);

  char type_of(int j) const {
    const auto types = model_.column_types();
    return types.empty() ? 'C' : types[static_cast<std::size_t>(j)];
  }
  std::string_view special_name(int k) const { return rows_[model_.num_rows() + k]; }
  static bool is_integer(char type) { return type == 'I' || type == 'B' || type == 'N'; }
  bool in_section(std::string_view header, bool& open) {
    if (!open) out_.put(header);
    open = true;
    return true;
  }

  const WriteSource& source_;
  const model::Model& model_;
  const model::Families& families_;
  const WriteOptions& options_;
  ReaderLog& log_;
  TextWriter& out_;
  SpecialRows special_;
  WriterNames columns_, sets_;
  WriterNames rows_;  // all rows: those of the matrix, then the special ones
  std::vector<WriterNames> made_up_;
  std::string objective_;
  int markers_ = 0;
  bool bounds_open_ = false;
  bool finite_ = true;
};

void announce(ReaderLog& log, const model::NameFamily& family) {
  log.warn("Default %-6s names %c1, %c2 ... being created.\n", family.kind, family.letter, family.letter);
}

WriterNames Writer::names_of(const model::NameTable& table, const model::NameFamily& family, int count) {
  if (options_.generic_names || count == 0) return WriterNames::generated(family.letter, count);
  WriterNames names = WriterNames::from(table, family.letter, count, MpsNameRules());
  if (names.origin() == WriterNames::Origin::generated) announce(log_, family);
  return names;
}

void Writer::append_names(std::vector<std::string_view>& all, const model::NameTable& table,
                          const model::NameFamily& family, int count) {
  if (count == 0) return;
  const bool own = !options_.generic_names && !table.empty();
  if (!own) made_up_.push_back(WriterNames::generated(family.letter, count));
  if (!own && !options_.generic_names) announce(log_, family);
  for (int k = 0; k < count; ++k) all.push_back(own ? std::string_view(table.name(k)) : made_up_.back()[k]);
}

/* Rows of all kinds share one set of names in the file. */
void Writer::name_rows(bool& rewritten) {
  std::vector<std::string_view> all;
  all.reserve(static_cast<std::size_t>(model_.num_rows() + special_.size()));
  const model::Families& f = families_;
  append_names(all, model_.row_names(), model::kRowFamily, model_.num_rows());
  append_names(all, f.quadratic_rows.names(), model::kQuadraticFamily, f.quadratic_rows.size());
  append_names(all, f.indicators.names(), model::kIndicatorFamily, f.indicators.size());
  append_names(all, f.user_cuts.names(), model::kUserCutFamily, f.user_cuts.size());
  append_names(all, f.lazy_constraints.names(), model::kLazyFamily, f.lazy_constraints.size());
  const int count = static_cast<int>(all.size());
  rows_ = WriterNames::from(std::move(all), model::kRowFamily.letter, count, MpsNameRules());
  rewritten = rewritten || rows_.origin() == WriterNames::Origin::rewritten;
}

void Writer::name_everything() {
  columns_ = names_of(model_.column_names(), model::kColumnFamily, model_.num_columns());
  bool rewritten = columns_.origin() == WriterNames::Origin::rewritten;
  name_rows(rewritten);
  sets_ = names_of(families_.sets.names(), model::kSosFamily, families_.sets.size());
  rewritten = rewritten || sets_.origin() == WriterNames::Origin::rewritten;
  const std::string& own = model_.objective_name();
  objective_ = own.empty() || options_.generic_names ? "obj" : single_name(own, MpsNameRules(), rewritten);
  objective_ = distinct_name(objective_, rows_);
  if (rewritten) log_.warning("Warning:  Output names have been modified to conform to MPS format.\n");
}

char* Writer::number(char* to, double value) {
  char text[kNumberText];
  finite_ = finite_ && std::isfinite(value);
  const char* end =
      options_.long_numbers ? write_shortest(text, value) : write_fitting(text, value, kShortField);
  const int length = static_cast<int>(end - text);
  const int width = length <= kShortField ? kShortField : kLongField;
  for (int blanks = width - length; blanks > 0; --blanks) *to++ = ' ';
  return copy_text(to, {text, static_cast<std::size_t>(length)});
}

void Writer::pair(std::string_view before, std::string_view name, double value) {
  char* p = copy_text(copy_text(out_.room(kMaxNameLength + 64), before), name);
  p = copy_text(number(copy_text(p, "  "), value), "\n");
  out_.advance_to(p);
}

void Writer::record(std::string_view first, std::string_view second, double value) {
  char* p = copy_text(copy_text(out_.room(2 * kMaxNameLength + 64), "    "), first);
  p = copy_text(copy_text(copy_text(p, "  "), second), "  ");
  p = copy_text(number(p, value), "\n");
  out_.advance_to(p);
}

void Writer::bound(std::string_view type, int j) {
  in_section("BOUNDS\n", bounds_open_);
  char* p = out_.room(kMaxNameLength + 64);
  *p++ = ' ';
  p = copy_text(copy_text(copy_text(p, type), " "), kBoundSet);
  p = copy_text(copy_text(copy_text(p, "  "), columns_[j]), "\n");
  out_.advance_to(p);
}

void Writer::bound(std::string_view type, int j, double value) {
  in_section("BOUNDS\n", bounds_open_);
  char* p = out_.room(kMaxNameLength + 64);
  *p++ = ' ';
  p = copy_text(copy_text(copy_text(p, type), " "), kBoundSet);
  p = copy_text(copy_text(copy_text(p, "  "), columns_[j]), "  ");
  p = copy_text(number(p, value), "\n");
  out_.advance_to(p);
}

void Writer::write_head() {
  out_.put("NAME          ");
  out_.put(title(source_.name));
  out_.put('\n');
  if (model_.objective_sense() < 0) out_.put("OBJSENSE\n    MAX\n");
}

/* The sense that a row has in the file, where ranges are separate. */
char file_sense(char sense, double range) {
  if (sense != 'R') return sense;
  return range >= 0 ? 'G' : 'L';
}

void Writer::write_row(std::string_view name, char sense) {
  char* p = out_.room(kMaxNameLength + 16);
  *p++ = ' ';
  *p++ = sense;
  p = copy_text(copy_text(copy_text(p, "  "), name), "\n");
  out_.advance_to(p);
}

void Writer::write_special_rows(int begin, int end) {
  for (int k = begin; k < end; ++k) write_row(special_name(k), special_[k].sense);
}

void Writer::write_rows() {
  out_.put("ROWS\n");
  write_row(objective_, 'N');
  const auto sense = model_.sense();
  const auto range = model_.range();
  for (int i = 0; i < model_.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    write_row(rows_[i], file_sense(sense[at], range[at]));
  }
  write_special_rows(0, special_.first_user_cut());
  if (!families_.user_cuts.empty()) out_.put("USERCUTS\n");
  write_special_rows(special_.first_user_cut(), special_.first_lazy());
  if (!families_.lazy_constraints.empty()) out_.put("LAZYCONS\n");
  write_special_rows(special_.first_lazy(), special_.size());
}

void Writer::write_marker(bool begin) {
  out_.print("    MARK%04d  'MARKER'                 '%s'\n", markers_++, begin ? "INTORG" : "INTEND");
}

void Writer::write_columns() {
  out_.put("COLUMNS\n");
  constexpr int kAhead = 4;  // columns by which the names of their rows are sent for, twice that their places
  bool integer = false;
  const int columns = model_.num_columns();
  for (int j = 0; j < columns; ++j) {
    if (j + 2 * kAhead < columns) rows_.prefetch_places(model_.column(j + 2 * kAhead));
    if (j + kAhead < columns) rows_.prefetch_texts(model_.column(j + kAhead));
    if (is_integer(type_of(j)) != integer) {
      integer = !integer;
      write_marker(integer);
    }
    write_column(j);
  }
  if (integer) write_marker(false);
  if (model_.objective_offset() != 0) write_constant();
}

/* A column without any entry is stated by a zero in the objective. */
void Writer::write_column(int j) {
  const model::ColumnView column = model_.column(j);
  const double cost = model_.objective()[static_cast<std::size_t>(j)];
  const std::string_view name = columns_[j];
  const model::VectorView special = special_.column(j);
  if (cost != 0 || column.count + special.count == 0) record(name, objective_, cost);
  for (int k = 0; k < column.count; ++k) record(name, rows_[column.index[k]], column.value[k]);
  for (int k = 0; k < special.count; ++k) record(name, special_name(special.index[k]), special.value[k]);
}

void Writer::write_constant() {
  const std::string name = distinct_name(std::string(kConstantColumn), columns_);
  record(name, objective_, model_.objective_offset());
  log_.warn("Warning:  Constant of the objective written as column '%s' fixed at 1.\n", name.c_str());
}

void Writer::write_rhs() {
  bool open = false;
  const auto rhs = model_.rhs();
  for (int i = 0; i < model_.num_rows(); ++i) {
    const double value = rhs[static_cast<std::size_t>(i)];
    if (value == 0 || !in_section("RHS\n", open)) continue;
    record(kRhsSet, rows_[i], value);
  }
  for (int k = 0; k < special_.size(); ++k) {
    if (special_[k].rhs == 0 || !in_section("RHS\n", open)) continue;
    record(kRhsSet, special_name(k), special_[k].rhs);
  }
}

void Writer::write_ranges() {
  bool open = false;
  const auto sense = model_.sense();
  const auto range = model_.range();
  for (int i = 0; i < model_.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (sense[at] != 'R' || !in_section("RANGES\n", open)) continue;
    record(kRangeSet, rows_[i], std::fabs(range[at]));
  }
}

void Writer::write_bounds() {
  for (int j = 0; j < model_.num_columns(); ++j) write_bounds_of(j);
  if (model_.objective_offset() == 0) return;
  in_section("BOUNDS\n", bounds_open_);
  out_.put(" FX bnd  " + distinct_name(std::string(kConstantColumn), columns_) + "             1\n");
}

/* Where a record tells the upper bound, one tells the lower bound too unless it is 0 and stays so: readers
 * move a lower bound that is not stated. An integer column without bounds says so, because other readers take it for
 * one between 0 and 1. A binary column with bounds of its own counts as one between 0 and 1
 * unless it is fixed; a fixed one is written as a fixed integer column. */
void Writer::write_bounds_of(int j) {
  const auto at = static_cast<std::size_t>(j);
  const double lower = model_.lower()[at], upper = model_.upper()[at];
  const char type = type_of(j);
  const bool semicontinuous = type == 'S' || type == 'N';
  if (type == 'B' && (lower < upper || lower > upper)) return bound("BV", j);
  if (semicontinuous) {
    if (lower <= -kInfinity) {
      bound("MI", j);
    } else {
      bound("LO", j, lower);
    }
    return bound("SC", j, upper);
  }
  if (lower == upper) return bound("FX", j, lower);
  if (lower <= -kInfinity && upper >= kInfinity) return bound("FR", j);
  if (lower <= -kInfinity) {
    bound("MI", j);
  } else if (lower != 0 || upper <= 0) {
    bound("LO", j, lower);
  }
  if (!(upper >= kInfinity))
    bound("UP", j, upper);
  else if (type == 'I' && lower == 0)
    bound("PL", j);
}

void Writer::write_sets() {
  if (families_.sets.empty()) return;
  out_.put("SOS\n");
  for (int k = 0; k < families_.sets.size(); ++k) {
    out_.put(families_.sets.type()[static_cast<std::size_t>(k)] == '1' ? " S1 " : " S2 ");
    out_.put(sets_[k]);
    out_.put('\n');
    const model::VectorView members = families_.sets.members(k);
    for (int m = 0; m < members.count; ++m) pair("    ", columns_[members.index[m]], members.value[m]);
  }
}

/* The matrix of x'Qx / 2, both halves. */
void Writer::write_quadratic_objective() {
  if (families_.quadratic_objective.empty()) return;
  out_.put("QMATRIX\n");
  for (int j = 0; j < model_.num_columns(); ++j) {
    const model::VectorView column = families_.quadratic_objective.column(j);
    for (int k = 0; k < column.count; ++k) record(columns_[j], columns_[column.index[k]], column.value[k]);
  }
}

/* The matrix of x'Qx, both halves. */
void Writer::write_quadratic_rows() {
  for (int k = 0; k < families_.quadratic_rows.size(); ++k) {
    out_.put("QCMATRIX   ");
    out_.put(special_name(k));
    out_.put('\n');
    for (const model::QuadraticTerm& term : families_.quadratic_rows.terms(k)) {
      const std::string_view name = columns_[term.column], other = columns_[term.other];
      const bool square = term.column == term.other;
      record(name, other, square ? term.value : term.value / 2);
      if (!square) record(other, name, term.value / 2);
    }
  }
}

void Writer::write_indicators() {
  const model::Indicators& indicators = families_.indicators;
  if (indicators.empty()) return;
  out_.put("INDICATORS\n");
  for (int k = 0; k < indicators.size(); ++k) {
    const int column = indicators.column()[static_cast<std::size_t>(k)];
    out_.put(" IF ");
    out_.put(special_name(special_.first_indicator() + k));
    pair("  ", columns_[column], indicators.complemented(k) ? 0 : 1);
  }
}

}  // namespace
}  // namespace mps

int write_mps(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out) {
  return mps::Writer(source, options, log, out).run();
}

}  // namespace tovik::fileio
