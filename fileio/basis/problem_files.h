/* Basis, vector and priority-order files of a problem. What a basis or vector file says comes back as a
 * start; the problem changes only by read_order_file().
 *
 * Codes of writing: those of write_file() and of the writer; of reading 1423, 1219 for a model without names,
 * and those of the reader. */
#pragma once

#include "env/error.h"
#include "env/problem.h"

namespace tovik::fileio {

/* 1262 without a basis. */
Status write_basis_file(Environment& env, const Problem& problem, const char* name);
Status read_basis_file(Environment& env, const Problem& problem, const char* name, Start& start);

/* 1556 without a solution. */
Status write_vector_file(Environment& env, const Problem& problem, const char* name);
/* 1556 for a file without values. */
Status read_vector_file(Environment& env, const Problem& problem, const char* name, Start& start);

/* 3016 without an order. */
Status write_order_file(Environment& env, const Problem& problem, const char* name);
Status read_order_file(Environment& env, Problem& problem, const char* name);

}  // namespace tovik::fileio
