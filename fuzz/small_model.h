/* A model with names for the fuzz targets of files that speak about one. */
#pragma once

#include <string>

#include "model/store/load.h"

namespace tovik::fileio::fuzz {

/* Columns x0 .. x5 (some free, bounded, integer), rows r0 .. r3 of all senses. */
inline model::Model small_model() {
  model::ModelData data;
  data.start.push_back(0);
  for (int j = 0; j < 6; ++j) {
    data.objective.push_back(j);
    data.lower.push_back(j % 3 == 0 ? -1e20 : 0);
    data.upper.push_back(j % 2 == 0 ? 1e20 : 5);
    data.types.push_back(j < 3 ? 'C' : 'I');
    data.index.push_back(j % 4);
    data.value.push_back(1);
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
    data.column_names.add("x" + std::to_string(j));
  }
  for (int i = 0; i < 4; ++i) {
    data.rhs.push_back(i);
    data.range.push_back(i == 3 ? 2 : 0);
    data.sense.push_back("LGER"[i]);
    data.row_names.add("r" + std::to_string(i));
  }
  return model::Model(std::move(data));
}

}  // namespace tovik::fileio::fuzz
