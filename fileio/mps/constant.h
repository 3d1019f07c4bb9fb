/* The constant of the objective in MPS files, which have no place for it. */
#pragma once

#include "fileio/record/model_reader.h"

namespace tovik::fileio::mps {

/* When the last column is the one that a writer made out of the constant (called so, continuous, fixed at 1,
 * in the objective alone): adds its cost to the constant and drops it. */
void fold_constant_column(FileModel& model);

}  // namespace tovik::fileio::mps
