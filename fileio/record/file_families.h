/* What a file says in the form in which a model holds it. */
#pragma once

#include "fileio/record/model_reader.h"
#include "model/families/families.h"
#include "model/store/load.h"

namespace tovik::fileio {

/* The columns of `file` are the model's. Items without a name get one when others of their family have
 * names. */
model::Families families_of(const FileModel& file);

/* All of the file but the problem's name. */
model::ModelData data_of(FileModel&& file);

}  // namespace tovik::fileio
