/* What a file says beyond rows, columns and column types, in the form in which a model holds it. */
#pragma once

#include "fileio/model_reader.h"
#include "model/families.h"

namespace tovik::fileio {

/* The columns of `file` are the model's. Items without a name get one when others of their family have names.
 */
model::Families families_of(const FileModel& file);

}  // namespace tovik::fileio
