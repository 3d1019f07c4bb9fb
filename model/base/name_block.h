/* Names of one family (columns or rows) as readers collect them: all texts one after another in a single
 * character block, each with its terminating zero, and the offset of each. No allocation per name; moves into
 * a model as it is. */
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tovik::model {

struct NameBlock {
  std::vector<char> text;
  std::vector<std::size_t> offset;  // offset[k]: first character of name k in text

  std::size_t size() const { return offset.size(); }
  bool empty() const { return offset.empty(); }
  const char* name(std::size_t k) const { return text.data() + offset[k]; }
  /* Appends a name (without zeros inside). On bad_alloc the block is as before. */
  void add(std::string_view name) {
    const std::size_t at = text.size();
    offset.push_back(at);
    try {
      text.insert(text.end(), name.size() + 1, '\0');
    } catch (...) {
      offset.pop_back();
      throw;
    }
    name.copy(text.data() + at, name.size());
  }
};

}  // namespace tovik::model
