/* What a model reader is: a function from bytes and options to a FileModel, with warnings on the way and one
 * failure at most. Readers know no environment and no problem object; the dispatch opens the file, prints,
 * and loads.
 *
 *   ReadFailure read_lp(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model);
 *
 * A reader that fails leaves `model` in a state that may only be destroyed. */
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "fileio/record/name_table.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio {

/* Limit of everything that a file may make a reader allocate: the entries of any list (rows, columns,
 * coefficients, bounds ...). */
inline constexpr std::int64_t kMaxEntries = 524999999;
inline constexpr std::size_t kMaxNameLength = 255;  // longer names are cut with a warning
inline constexpr int kMaxWarningsOfAKind = 20;
inline constexpr double kInfinity = 1e20;

/* The first failure of a read. The arguments fill the conversions of the code's message, in order: line
 * numbers and counts as int, characters as char, names as text. */
struct ReadFailure {
  enum class Arguments { none, i, ii, s, ss, sss, is, iss, ic, icc };
  int code = 0;  // 0: no failure
  Arguments arguments = Arguments::none;
  int first = 0, second = 0;  // line (and second line, or a limit)
  char letter = 0, letter2 = 0;
  std::string text, text2, text3;
  std::vector<ReadFailure> more;  // further lines to print behind this one's; the read's code is this one's
  explicit operator bool() const { return code != 0; }

  static ReadFailure plain(int code);
  static ReadFailure at(int code, int line);
  static ReadFailure at(int code, int line, int other);
  static ReadFailure at(int code, int line, char letter);
  static ReadFailure at(int code, int line, char letter, char letter2);
  static ReadFailure at(int code, int line, std::string_view text);
  static ReadFailure at(int code, int line, std::string_view text, std::string_view text2);
  static ReadFailure about(int code, std::string_view text);
  static ReadFailure about(int code, std::string_view text, std::string_view text2);
  static ReadFailure about(int code, std::string_view text, std::string_view text2, std::string_view text3);
};

/* Receives whole lines with their line feed, in the order in which they arise. */
class ReaderLog {
 public:
  virtual ~ReaderLog() = default;
  virtual void warning(std::string_view text) = 0;  // the warning channel
  virtual void result(std::string_view text) = 0;   // the results channel
  /* A warning after which text of the file is missing in the model: what is solved is not what was written. */
  virtual void dropped(std::string_view text) { warning(text); }
  /* What is no fault but may mean something else to other programs: no channel is told. */
  virtual void note(std::string_view) {}
  /* Formats by the printf rules, whatever the length. */
  void warn(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void warn_dropped(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void print(const char* format, ...) __attribute__((format(printf, 2, 3)));
};

/* Counts the warnings of one kind: the first 20 may be printed. */
class WarningLimit {
 public:
  bool admit() {
    if (seen_ != std::numeric_limits<int>::max()) ++seen_;  // stays there
    return seen_ <= kMaxWarningsOfAKind;
  }
  int suppressed() const { return seen_ > kMaxWarningsOfAKind ? seen_ - kMaxWarningsOfAKind : 0; }

 private:
  int seen_ = 0;
};

struct ReadOptions {
  /* First capacities, as the caller's settings give them; never more than a hint. */
  std::int64_t expected_rows = 100, expected_columns = 100, expected_nonzeros = 500;
  std::size_t line_buffer = LineReader::kDefaultBuffer;  // bytes, at least 1024
  /* LP format: a row's right-hand side ends it on its line; the arrow of an indicator constraint is not
   * looked for on the next one. For input that comes line by line from a person. */
  bool rows_end_with_line = false;
};

/* A sparse row or column of its own: parallel vectors. */
struct SparseTerms {
  std::vector<int> index;
  std::vector<double> value;
};

struct QuadraticTerm {
  int column, other;
  double value;  // coefficient of x[column] * x[other] in the function itself, each pair once
};

struct NamedRow {
  std::string name;
  SparseTerms terms;
  char sense;  // 'L', 'E', 'G'
  double rhs;
};

struct QuadraticRow {
  NamedRow linear;
  std::vector<QuadraticTerm> quadratic;
};

struct IndicatorRow {
  NamedRow row;
  int column;
  bool active_at_one;
};

struct SpecialOrderedSet {
  std::string name;
  char type;            // '1' or '2'
  SparseTerms members;  // columns and weights
};

/* Everything that a model file can say. Column-wise; infinite bounds are +-1e20. */
struct FileModel {
  std::string problem_name;
  std::string objective_name;
  int objective_sense = 1;  // 1 minimize, -1 maximize
  double objective_offset = 0;
  std::vector<double> objective, lower, upper;  // one per column
  std::vector<char> types;                      // one per column, or empty when the file declares none
  std::vector<double> rhs, range;               // one per row; range 0 unless the sense is 'R'
  std::vector<char> sense;                      // 'L', 'E', 'G', 'R' (rhs <= ax <= rhs + range)
  std::vector<std::int64_t> start;              // columns + 1 entries
  std::vector<int> index;
  std::vector<double> value;
  NameTable columns, rows;

  // Families beyond rows, columns and column types.
  std::vector<QuadraticTerm> quadratic_objective;
  std::vector<QuadraticRow> quadratic_rows;
  std::vector<IndicatorRow> indicators;
  std::vector<SpecialOrderedSet> sets;
  std::vector<NamedRow> lazy_constraints, user_cuts;
};

ReadFailure read_lp(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model);
ReadFailure read_mps(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model);

}  // namespace tovik::fileio
