/* What stands in a SAV file, and the way between files, models and the data that a model is loaded from.
 *
 * A problem with all its data comes back as it was: types, names, bits of numbers, the order of entries. */
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "fileio/stream/output.h"
#include "fileio/stream/stream.h"
#include "model/store/load.h"
#include "model/store/model.h"

namespace tovik::fileio {

struct SavVectors {
  std::vector<std::int64_t> start;  // one more than vectors, or empty without any
  std::vector<int> index;
  std::vector<double> value;
  std::size_t size() const { return start.empty() ? 0 : start.size() - 1; }
};

struct SavRows {
  SavVectors terms;
  std::vector<double> rhs;
  std::vector<char> sense;
  std::vector<char> names;
};

/* Each term of row k at start[k] .. start[k + 1] - 1; column <= other. */
struct SavProducts {
  std::vector<std::int64_t> start;
  std::vector<int> column, other;
  std::vector<double> value;
};

/* Beyond the model: where an optimization may go on. Every array is empty when the file does not hold it. */
struct SavState {
  std::vector<char> column_status, row_status;
  std::vector<double> primal, row_primal, dual, row_dual;  // starting values
  std::vector<int> norm_head;                              // column j, or -i - 1 for row i
  std::vector<double> dual_norms;
  std::vector<std::int64_t> counts;  // of the solution, in the order of Count
  std::vector<double> numbers;       // objective, gap of the proof of infeasibility
  std::vector<double> x, slack, pi, dj, ray, farkas;
  enum Count {
    kStatus,
    kMethod,
    kHasBasis,
    kPrimalFeasible,
    kDualFeasible,
    kIterations,
    kPhase1,
    kBarrier,
    kPrimalPushes,
    kPrimalExchanges,
    kDualPushes,
    kDualExchanges,
    kFactorizations,
    kCounts
  };
  static constexpr std::size_t kNumbers = 2;
};

/* The arrays of a file. Names: texts one after another, each with its terminating zero. */
struct SavFile {
  std::vector<std::int64_t> sizes;  // columns, rows, entries, problem type, objective sense
  std::vector<double> offset;       // one number
  std::vector<char> problem_name, objective_name, bounds_name;  // not terminated
  std::vector<double> objective, lower, upper;
  std::vector<char> types, column_names;
  std::vector<double> rhs, range;
  std::vector<char> sense, row_names;
  SavVectors matrix;
  SavVectors sets;
  std::vector<char> set_types, set_names;
  SavRows indicators, user_cuts, lazy_constraints, quadratic_rows;
  std::vector<int> switches;               // column of each indicator constraint
  std::vector<char> complemented;          // 1: holds while that column is 0
  SavProducts products;                    // of the quadratic rows
  std::vector<int> form_column, form_row;  // of the matrix Q of the objective, row >= column, ascending
  std::vector<double> form_value;
  std::vector<int> order_column, order_priority, order_direction;
  SavVectors starts;
  std::vector<int> start_efforts;
  std::vector<char> start_names;
  SavState state;

  std::size_t columns() const { return static_cast<std::size_t>(sizes[0]); }
  std::size_t rows() const { return static_cast<std::size_t>(sizes[1]); }
  int problem_type() const { return static_cast<int>(sizes[3]); }
};

/* Reads a file and checks that its contents fit together, so that model_data() may be called. 0, or 1560 it
 * does not begin like a SAV file, 1561 it ends too early, 1563 it is of a later version, damaged, or
 * contradicts itself. */
int read_sav(ByteSource& source, SavFile& file);

/* The second half of read_sav: 0 or 1563. */
int check_sav(const SavFile& file);

/* The data of a checked file, ready to be loaded. Takes the large arrays out of it; its state stays. */
model::ModelData model_data(SavFile&& file);

/* Views of arrays of SavState. */
struct SavStateView {
  std::span<const int> column_status, row_status;
  std::span<const double> primal, row_primal, dual, row_dual;
  std::span<const int> norm_head;
  std::span<const double> dual_norms;
  std::span<const std::int64_t> counts;
  std::span<const double> numbers, x, slack, pi, dj, ray, farkas;
};

struct SavSource {
  const model::Model& model;
  int problem_type;
  std::string_view problem_name;
  SavStateView state;
};

/* False when the sink does not take all of it. */
bool write_sav(const SavSource& source, ByteSink& sink);

}  // namespace tovik::fileio
