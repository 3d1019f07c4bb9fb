#include "lp/presolve/crush_types.h"

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {

void substitute(LinearForm& form, int s, double a, double beta, const View& rest) {
  std::vector<double>& g = form.coefficients;
  if (g[s] == 0) return;
  const double factor = g[s] / a;
  g[s] = 0;
  form.constant += factor * beta;
  for (int k = 0; k < rest.length; ++k) {
    double& other = g[rest.index[k]];
    if (rest.index[k] != s) other = moved(other, -factor * rest.value[k]);
  }
}

}  // namespace tovik::lp::presolve
