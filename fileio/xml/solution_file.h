/* Solution and MIP-start files: small XML documents, written directly and parsed by Expat; and MIP starts as
 * plain text.
 *
 * Names of bytes that are no UTF-8 make the document declare iso-8859-1, where each byte is a character;
 * reading folds these characters back into bytes. A name with a control character that no document can hold
 * is left out; its index tells. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "env/solution.h"
#include "fileio/record/model_writer.h"

namespace tovik::fileio {

inline constexpr double kNoValue = 1e20;  // of an element that has none

/* Which columns of a solution are written: the values of TVK_PARAM_WRITELEVEL. */
enum class WriteLevel { all = 1, discrete = 2, nonzero = 3, discrete_nonzero = 4 };

struct SolutionReport {
  const Solution* solution;
  std::string name;  // of a solution of the pool, with its position there; empty: of none
  int index = -1;
  bool mixed_integer = false;
  int type = 0;            // 1 basic, 2 primal and dual values, 3 primal values
  int status = 0;          // solution status (TVK_STATUS_...) and its text
  std::int64_t nodes = 0;  // of a mixed-integer search
  std::string status_text;
  std::span<const int> column_status, row_status;       // empty without a basis
  std::vector<std::pair<const char*, double>> quality;  // names and values, in their order
  WriteLevel level = WriteLevel::all;
  bool all_digits = false;  // as many as read back as the same numbers, instead of 15
};

/* 1650 for a value that is not finite. */
int write_solution(const WriteSource& source, const SolutionReport& report, TextWriter& out);
/* Several solutions as one document; report(k) holds until the next call. */
int write_solutions(const WriteSource& source, WriteLevel level, int count,
                    const std::function<SolutionReport(int)>& report, TextWriter& out);
/* The same as MIP starts. */
int write_solutions_as_starts(const WriteSource& source, WriteLevel level, int count,
                              const std::function<SolutionReport(int)>& report, TextWriter& out);
/* MIP starts begin..end of the model. */
int write_starts(const WriteSource& source, int begin, int end, WriteLevel level, TextWriter& out);

/* One solution or MIP start of a file. */
struct SolutionFile {
  std::string name;
  int effort = 0;
  double objective = kNoValue;         // that the header states; NaN when that is no number
  WriteLevel level = WriteLevel::all;  // that the header states
  int status = 0;                      // solution status that the header states
  int unknown = 0;                     // elements that name no column (row) of the model
  /* One per column (row): kNoValue and -1 where the file says nothing. Those of rows are empty when the file
   * has no rows. Where several solutions are read each has `values`, and these are empty. */
  std::vector<double> x, dj, slack, pi;
  std::vector<int> column_status, row_status;
  SparseTerms values;  // of the columns that have one, by index
};

struct SolutionReading {
  bool rows = false;     // constraints count too
  bool several = false;  // the values of all solutions that have one, not all of just one
  int which = 0;         // that one, from 0
};

/* 1425, 1434, 1012 more values than kMaxEntries. `found` is the number of solutions in the file. Memory is bounded by the
 * model for one solution and by the values for several, whatever else the file holds. */
ReadFailure read_solutions(ByteSource& source, const model::Model& model, const SolutionReading& reading,
                           ReaderLog& log, std::vector<SolutionFile>& solutions, int& found);
/* MIP starts as text: "NAME start", records "column value", ENDATA. */
ReadFailure read_start_text(ByteSource& source, const model::Model& model, ReaderLog& log,
                            SolutionFile& solution);

/* '<' comes before any white space, and within the length that a line of text may have. */
bool looks_like_xml(PeekSource& source);

}  // namespace tovik::fileio
