/* Loading a whole model by move: the way of the file readers and of the copy routines.
 *
 * A reader fills a ModelData and hands it over; its vectors become the model's storage, so that loading needs
 * no second copy of the matrix and no allocation per name. With n columns and m rows: objective, lower,
 * upper: n;  types: n, or empty for a continuous problem; rhs, sense: m;  range: m, or empty when no row is
 * ranged (values of rows other than 'R' are ignored); start: n + 1 ascending positions, start[n] = entries;
 * index (rows), value: entries; column_names: n or empty;  row_names: m or empty. Entries equal to zero are
 * dropped and a row listed twice in one column is summed; a column's rows may come in any order. Bounds of
 * 1e20 and beyond become +-1e20. The families refer to the same columns. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "env/error.h"
#include "model/base/name_block.h"
#include "model/families/families.h"

namespace tovik {
struct Environment;
struct Problem;
}  // namespace tovik

namespace tovik::model {

struct ModelData {
  std::string problem_name;  // empty: the problem keeps its name
  std::string objective_name;
  std::string bounds_name;  // name of the bound set; empty: none
  int objective_sense = 1;  // 1 minimize, -1 maximize
  double objective_offset = 0;
  std::vector<double> objective, lower, upper;
  std::vector<char> types;
  std::vector<double> rhs, range;
  std::vector<char> sense;
  std::vector<std::int64_t> start;
  std::vector<int> index;
  std::vector<double> value;
  NameBlock column_names, row_names;
  Families families;      // filled by the add() of each; indices are columns
  bool packed = false;    // the matrix has no zeros and no row twice in a column: nobody need look
  int problem_type = -1;  // that the data belong to; -1: the one that they make
};

/* Replaces the model of `problem` and discards its solution and derived data; the problem becomes of the type
 * that the data tell, or make: mixed-integer with types, sets, indicators, cuts or lazy constraints,
 * quadratic or quadratically constrained with such data. 1023 for a problem of a fixed type. On failure the
 * problem stays as it was. */
Status load(Environment& env, Problem& problem, ModelData&& data);

}  // namespace tovik::model
