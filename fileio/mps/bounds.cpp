#include "fileio/mps/bounds.h"

#include <cmath>

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio::mps {

namespace {

constexpr double kFreeBelow = -1e17;     // a lower bound below it makes the column free
constexpr double kNonzeroUpper = 1e-10;  // upper bounds of semi-continuous columns up to it count as zero
constexpr double kSemicontinuousLower = 1.0;

BoundType bound_type(const Field& field) {
  if (field.length != 2) return BoundType::none;
  switch (field.upper(0) << 8 | field.upper(1)) {
    case 'U' << 8 | 'P':
      return BoundType::up;
    case 'U' << 8 | 'I':
      return BoundType::ui;
    case 'L' << 8 | 'O':
      return BoundType::lo;
    case 'L' << 8 | 'I':
      return BoundType::li;
    case 'F' << 8 | 'X':
      return BoundType::fx;
    case 'F' << 8 | 'R':
      return BoundType::fr;
    case 'M' << 8 | 'I':
      return BoundType::mi;
    case 'P' << 8 | 'L':
      return BoundType::pl;
    case 'B' << 8 | 'V':
      return BoundType::bv;
    case 'S' << 8 | 'C':
      return BoundType::sc;
    default:
      return BoundType::none;
  }
}

bool needs_value(BoundType type) {
  return type != BoundType::fr && type != BoundType::mi && type != BoundType::pl && type != BoundType::bv;
}

bool is_number(const Field& field) {
  double value;
  ParseError why;
  return !field.empty() && read_number(field, Infinite::accepted, value, why);
}

double folded(double value) {
  return value >= kInfinity ? kInfinity : value <= -kInfinity ? -kInfinity : value;
}

}  // namespace

bool BoundSection::record(const Record& record) {
  Line line;
  Bound bound;
  ParseError why;
  bool taken = false;
  if (rows_.reading_cards()) {
    taken = read_card(record, line, bound, why);
    if (!taken) {
      ParseError ignored;
      taken = read_free(record, line, bound, why.code != 0 ? ignored : why);
    }
  } else {
    taken = read_free(record, line, bound, why);
    if (!taken) {
      ParseError ignored;
      taken = read_card(record, line, bound, ignored);
      const auto blank = [](const Field& name) { return name.view().find(' ') != std::string_view::npos; };
      if (taken && (blank(line.set) || blank(line.column))) rows_.read_cards();
    }
  }
  if (!taken) return why.report(context_, record.line);
  if (!bound.counts) {
    set_.skip(context_);
    return true;
  }
  set_.choose(context_, line.set);
  if (bound.empty_value) context_.empty_number_read();
  return apply(bound, record.line);
}

bool BoundSection::read_card(const Record& record, Line& line, Bound& bound, ParseError& why) {
  Record card;
  if (!scan_fixed(record, card)) return false;
  bound.type = bound_type(card.field[0]);
  if (bound.type == BoundType::none) {
    why = card.field[0].empty() ? ParseError{TVK_ERROR_LINE_NO_BOUND_TYPE, Field{}}
                                : ParseError{TVK_ERROR_LINE_BOUND_TYPE, card.field[0]};
    return false;
  }
  line = {card.field[0], card.field[1], card.field[2], card.field[3]};
  return resolve(line, bound, why);
}

bool BoundSection::read_free(const Record& record, Line& line, Bound& bound, ParseError& why) {
  bound.type = bound_type(record.field[0]);
  if (bound.type == BoundType::none) {
    // A line that begins where the set name belongs lacks its type.
    const bool missing = record.field[0].text - record.begin >= 4;
    why = missing ? ParseError{TVK_ERROR_LINE_NO_BOUND_TYPE, Field{}}
                  : ParseError{TVK_ERROR_LINE_BOUND_TYPE, record.field[0]};
    return false;
  }
  if (record.count > 4) {
    why = {TVK_ERROR_LINE_NUMBER_CONVERSION, rest_of_line(record, record.field[3].text)};
    return false;
  }
  line = {};
  line.type = record.field[0];
  if (!split_free(record, bound.type, line)) {
    why = {TVK_ERROR_LINE_NOT_A_COLUMN, Field{}};
    return false;
  }
  return resolve(line, bound, why);
}

/* The set name, and the value where the type needs none, may be absent: with three fields the columns' names
 * decide. */
bool BoundSection::split_free(const Record& record, BoundType type, Line& line) {
  const auto& field = record.field;
  if (record.count < 2) return false;
  if (record.count == 4) {
    line.set = field[1];
    line.column = field[2];
    line.value = field[3];
  } else if (record.count == 2) {
    line.column = field[1];
  } else {
    const bool number_last = is_number(field[2]);
    const bool name_last = !number_last || find_column(field[2]) >= 0;
    const bool unnamed = needs_value(type) ? number_last && (!name_last || find_column(field[1]) >= 0)
                                           : number_last && !name_last;
    line.set = unnamed ? Field{} : field[1];
    line.column = unnamed ? field[1] : field[2];
    line.value = unnamed ? field[2] : Field{};
  }
  return true;
}

bool BoundSection::resolve(const Line& line, Bound& bound, ParseError& why) {
  bound.counts = set_.counts(line.set);
  if (!bound.counts) return true;
  bound.column = find_column(line.column);
  if (bound.column < 0) {
    why = {TVK_ERROR_LINE_NOT_A_COLUMN, line.column};
    return false;
  }
  bound.value = 0;
  bound.empty_value = needs_value(bound.type) && line.value.empty();
  if (!needs_value(bound.type) || line.value.empty()) return true;
  return read_number(line.value, Infinite::accepted, bound.value, why);
}

int BoundSection::find_column(const Field& name) {
  const NameTable& columns = context_.model.columns;
  if (last_ + 1 < columns.size() && columns.name(last_ + 1) == name.view()) return ++last_;
  if (last_ >= 0 && columns.name(last_) == name.view()) return last_;
  const int found = columns.find(name.view());
  if (found >= 0) last_ = found;
  return found;
}

bool BoundSection::mark_given(std::size_t column, unsigned which, int line) {
  if ((given_[column] & which) != 0)
    return context_.fail(
        which == kUpper ? TVK_ERROR_LINE_REPEATED_UPPER_BOUND : TVK_ERROR_LINE_REPEATED_LOWER_BOUND, line);
  given_[column] = static_cast<unsigned char>(given_[column] | which);
  return true;
}

bool BoundSection::mark_both_given(std::size_t column, int code, int line) {
  if (given_[column] != 0) return context_.fail(code, line);
  given_[column] = kLower | kUpper;
  return true;
}

void BoundSection::set_type(std::size_t column, char type) {
  FileModel& model = context_.model;
  if (model.types.empty()) model.types.assign(model.lower.size(), 'C');
  model.types[column] = type;
}

bool BoundSection::apply(const Bound& bound, int line) {
  FileModel& model = context_.model;
  if (given_.empty()) given_.assign(model.lower.size(), 0);
  const auto j = static_cast<std::size_t>(bound.column);
  const double value = folded(bound.value);
  switch (bound.type) {
    case BoundType::up:
    case BoundType::ui:
    case BoundType::sc:
    case BoundType::pl:
      if (!mark_given(j, kUpper, line)) return false;
      model.upper[j] = bound.type == BoundType::pl ? kInfinity : value;
      if (bound.type == BoundType::ui) set_type(j, 'I');
      if (bound.type == BoundType::sc) set_type(j, type_of(j) == 'C' || type_of(j) == 'S' ? 'S' : 'N');
      return true;
    case BoundType::lo:
    case BoundType::li:
    case BoundType::mi:
      if (!mark_given(j, kLower, line)) return false;
      model.lower[j] = bound.type == BoundType::mi ? -kInfinity : value;
      if (bound.type == BoundType::li) set_type(j, type_of(j) == 'S' || type_of(j) == 'N' ? 'N' : 'I');
      return true;
    case BoundType::fx:
      if (!mark_both_given(j, TVK_ERROR_LINE_FX_AFTER_BOUND, line)) return false;
      model.lower[j] = model.upper[j] = value;
      return true;
    case BoundType::fr:
      if (!mark_both_given(j, TVK_ERROR_LINE_FR_AFTER_BOUND, line)) return false;
      model.lower[j] = -kInfinity;
      model.upper[j] = kInfinity;
      return true;
    case BoundType::bv:
      if (!mark_both_given(j, TVK_ERROR_LINE_BV_AFTER_BOUND, line)) return false;
      model.lower[j] = 0;
      model.upper[j] = 1;
      set_type(j, 'B');
      return true;
    case BoundType::none:
      break;
  }
  return true;
}

void BoundSection::close() {
  note_unbounded_integers();
  for (std::size_t j = 0; j < given_.size(); ++j) {
    if (given_[j] == 0) continue;
    if (given_[j] != (kLower | kUpper)) finalize(j);
    if (!context_.model.types.empty()) check_integrality(j);
  }
  const auto report_suppressed = [this](const WarningLimit& cap, const char* what) {
    if (cap.suppressed() > 0) context_.log.warn("%d %s warnings not printed.\n", cap.suppressed(), what);
  };
  report_suppressed(free_, "Column-free");
  report_suppressed(minus_infinity_, "Minus-infinity");
  report_suppressed(fixed_, "Column-fixed");
  report_suppressed(semicontinuous_, "semi-continuous bound");
  report_suppressed(integrality_, "Bound-integrality");
}

/* A column with one bound given. */
void BoundSection::finalize(std::size_t j) {
  FileModel& model = context_.model;
  ReaderLog& log = context_.log;
  const char* name = model.columns.c_str(static_cast<int>(j));
  const char* set = set_.name().c_str();
  if ((given_[j] & kUpper) == 0) {
    if (model.lower[j] < kFreeBelow && free_.admit())
      log.warn("Warning:  Column '%s' in bound '%s' is Free.\n", name, set);
  } else if (model.upper[j] < 0) {
    model.lower[j] = -kInfinity;
    if (minus_infinity_.admit()) {
      log.warn("Warning:  Lower bound on column '%s' in bound '%s'\n", name, set);
      log.warning("          changed to minus infinity.\n");
    }
  } else if (model.upper[j] == 0) {
    if (fixed_.admit()) log.warn("Warning:  Column '%s' in bound '%s' is Fixed.\n", name, set);
  } else if ((type_of(j) == 'S' || type_of(j) == 'N') && model.upper[j] > kNonzeroUpper) {
    model.lower[j] = kSemicontinuousLower;
    if (semicontinuous_.admit())
      log.warn(
          "Warning:  Lower bound of 1.0 assumed for semi-continuous column \n"
          "          '%s' in bound '%s'\n",
          name, set);
  }
}

/* Integer columns of markers without any bound: here they have no upper one, elsewhere it is 1. */
void BoundSection::note_unbounded_integers() {
  WarningLimit cap;
  const std::vector<char>& types = context_.model.types;
  for (std::size_t j = 0; j < types.size(); ++j) {
    if (types[j] != 'I' || (!given_.empty() && given_[j] != 0) || !cap.admit()) continue;
    context_.log.note("Note:  Integer column '" +
                      std::string(context_.model.columns.name(static_cast<int>(j))) +
                      "' has no bounds in the file; other programs read an upper bound of 1.\n");
  }
  if (cap.suppressed() > 0)
    context_.log.note("Note:  ... and " + std::to_string(cap.suppressed()) +
                      " more integer columns without bounds.\n");
}

void BoundSection::check_integrality(std::size_t j) {
  const FileModel& model = context_.model;
  if (type_of(j) == 'C' || type_of(j) == 'S') return;
  for (const double bound : {model.lower[j], model.upper[j]}) {
    if (bound == std::floor(bound)) continue;
    if (integrality_.admit())
      context_.log.warn("Warning:  Non-integral bound value %g for integer column '%.255s'.\n", bound,
                        model.columns.c_str(static_cast<int>(j)));
  }
}

}  // namespace tovik::fileio::mps
