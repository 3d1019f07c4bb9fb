/* What the sections of the MPS reader share: the model under construction, the log, the failure that ended
 * the read, and the small conversions that every section needs. */
#pragma once

#include <string_view>

#include "fileio/mps/fields.h"
#include "fileio/record/model_reader.h"

namespace tovik::fileio::mps {

struct Context {
  Context(ReaderLog& reader_log, FileModel& file_model) : log(reader_log), model(file_model) {}

  ReaderLog& log;
  FileModel& model;
  ReadFailure failure;
  bool warned_empty_number = false;

  /* Each notes the failure and returns false, so that a section writes `return context.fail(...)`. */
  bool fail(ReadFailure what) {
    failure = std::move(what);
    return false;
  }
  bool fail(int code, int line) { return fail(ReadFailure::at(code, line)); }
  bool fail(int code, int line, std::string_view text) { return fail(ReadFailure::at(code, line, text)); }

  void empty_number_read() {
    if (!warned_empty_number) log.warning("Warning:  Empty numeric fields read as zeros.\n");
    warned_empty_number = true;
  }
};

/* Repeated names: the first ones are reported one by one, the others by their number; the read fails with the
 * first. */
class Duplicates {
 public:
  /* closing_code: the code of the message with the number of those not reported, or 0. */
  explicit Duplicates(int closing_code) : closing_code_(closing_code) {}
  bool any() const { return reported_.code != 0; }
  void add(ReadFailure repeat);
  bool report(Context& context);

 private:
  int closing_code_;
  ReadFailure reported_;
  WarningLimit cap_;
};

/* What stopped the interpretation of a line; code 0 when nothing did. */
struct ParseError {
  int code = 0;
  Field at;
  bool report(Context& context, int line) const { return context.fail(code, line, at.view()); }
};

enum class Infinite { refused, accepted };

/* The number that a field holds. With Infinite::accepted also "inf" and "infinity", either case, signed or
 * not, as +-1e20. False, with 1434 or 1435 in `why`, for anything else. */
bool read_number(const Field& field, Infinite infinite, double& value, ParseError& why);

/* How a line may be taken. A free line lacks no number; `lenient` also lets the last number be absent. A set
 * name may be absent where the section has sets. */
enum class Reading { free, fixed, lenient };
enum class Naming { required, optional };

/* A line of COLUMNS, RHS or RANGES: a name and one or two pairs of row and value. */
struct Pairs {
  Reading reading = Reading::free;
  Field name;
  int count = 0;
  std::array<Field, 2> row, value;
};

/* False when the shape of the line does not fit the reading. The record is a free one; a fixed reading cuts
 * it anew. */
bool split_pairs(const Record& record, Reading reading, Naming naming, Pairs& pairs);

/* True when a card reading of these pairs shows a name with a blank. */
bool has_blank_name(const Pairs& pairs);

/* What to say of a line that has too few or too many fields for any reading. */
ParseError wrong_field_count(const Record& record);

/* The readings of a line in the order in which they are tried: card layout first once names with blanks were
 * met. */
inline constexpr std::array<Reading, 3> kFreeFirst = {Reading::free, Reading::fixed, Reading::lenient};
inline constexpr std::array<Reading, 3> kFixedFirst = {Reading::fixed, Reading::free, Reading::lenient};

/* Tries the readings of a line until `attempt(pairs, error)` takes one. False when none is, with the most
 * telling error in `why`. */
template <class Attempt>
bool try_readings(const Record& record, bool cards_first, Naming naming, Attempt&& attempt, Pairs& pairs,
                  ParseError& why) {
  why = {};
  for (const Reading reading : cards_first ? kFixedFirst : kFreeFirst) {
    ParseError error;
    if (!split_pairs(record, reading, naming, pairs)) continue;
    if (attempt(pairs, error)) return true;
    if (why.code == 0) why = error;
  }
  if (why.code == 0) why = wrong_field_count(record);
  return false;
}

}  // namespace tovik::fileio::mps
