/* Turns one sparse vector of a caller into one that the model may hold. Returns a view of the caller's arrays
 * when they are clean, else of scratch arrays that the next call overwrites. */
#pragma once

#include <vector>

#include "model/base/vector_file.h"

namespace tovik::model {

class EntryPacker {
 public:
  /* No zeros, no index twice: such values are summed. */
  VectorView pack(const int* index, const double* value, int count);
  /* No index twice: the last value counts. Order and zeros stay. */
  VectorView keep_last(const int* index, const double* value, int count);

 private:
  bool has_duplicates();
  void merge_duplicates();

  std::vector<int> index_, sorted_;
  std::vector<double> value_;
};

}  // namespace tovik::model
