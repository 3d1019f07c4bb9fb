/* From the stored model to the search's plain data.
 *
 * The first columns are the model's, in its order; behind them stand slacks of indicator constraints. The first rows are
 * the model's; behind them stand the rows of the indicators and the lazy constraints. User cuts stand
 * apart. */
#pragma once

#include "mip/domain/problem.h"
#include "model/store/model.h"

namespace tovik::mip::run {

/* rounded: a bound of an integer column was no integer, by more than the larger of integrality and 1e-9. */
Problem build_problem(const model::Model& model, double integrality, bool* rounded);

}  // namespace tovik::mip::run
