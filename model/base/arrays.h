/* Parallel arrays that grow together: a record's values by row, column, node or arc. */
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tovik::model {

/* Room for `more` values that are to come, with geometric growth. */
template <class T>
void reserve_more(std::vector<T>& to, int more) {
  const std::size_t size = to.size() + static_cast<std::size_t>(more);
  if (size > to.capacity()) to.reserve(std::max(size, to.capacity() + to.capacity() / 2));
}

/* Appends `count` values from a caller's array, or `fallback` where there is none. */
template <class T>
void append_values(std::vector<T>& to, const T* values, int count, T fallback) {
  reserve_more(to, count);
  if (values != nullptr) {
    to.insert(to.end(), values, values + count);
  } else {
    to.resize(to.size() + static_cast<std::size_t>(count), fallback);
  }
}

}  // namespace tovik::model
