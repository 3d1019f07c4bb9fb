/* Optimizations by a simplex that begins at the basis of the network in the problem. */
#pragma once

#include "env/problem.h"
#include "lp/run/optimizer.h"

namespace tovik::lp::run {

/* From problem to stored answer. */
Status run_from_network(Environment& env, Problem& problem, Method simplex);

/* The same without presolve, of data that were looked at. */
Status start_from_network_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm);

/* What the argument of TVKhybnetopt means; 1292 for what is no such argument. */
Status resolve_simplex(int argument, Method* method);

}  // namespace tovik::lp::run
