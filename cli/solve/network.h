/* A network file through the network simplex: flows of the arcs, potentials of the nodes. */
#pragma once

#include "cli/solve/solve.h"

namespace tovik::cli {

/* A network file, the method left open or "network", and no option that needs the linear problem of the network. */
bool is_solved_as_network(const SolveContext& context, const std::string& file);

/* Fills the outcome: nodes are its rows, arcs its columns. LibraryError, bad_alloc. */
void solve_network(const SolveContext& context, const std::string& file, Outcome& outcome, Stage& stage);

}  // namespace tovik::cli
