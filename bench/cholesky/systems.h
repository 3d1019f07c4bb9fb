/* Positive definite systems to factorize. */
#pragma once

#include <string>
#include <vector>

#include "lp/cholesky/cholesky.h"

namespace bench {

struct System {
  std::string name;
  tovik::lp::cholesky::Pattern pattern;
  std::vector<double> values;
};

/* A T A' + I of the model's matrix with T between 0.1 and 10; an empty system if the file cannot be read. */
System system_of_model(const std::string& file);

/* The Laplacian of a grid, shifted. */
System grid(int a, int b, int c);

}  // namespace bench
