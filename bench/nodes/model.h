/* The linear relaxation of a model file, in plain data, as every engine of the benchmark gets it.
 * Read through the public header and turned into a minimization, once a model. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "lp/base/lp_data.h"

namespace bench {

struct Model {
  std::string name;
  tovik::lp::LpData lp;
  tovik::lp::Matrix by_rows;  // the transpose of lp.matrix
  std::vector<char> integer;  // by column
  std::vector<int> integer_columns() const;
};

/* False when the file cannot be read or has columns that are neither continuous nor integer. */
bool read_model(const std::string& file, Model& model);

inline constexpr double kIntegral = 1e-6;  // a value so near to an integer is one

double fraction(double value);  // distance from the nearest integer

/* Integer columns with a fractional value, by index. */
std::vector<int> fractional_columns(const Model& model, std::span<const double> x);

}  // namespace bench
