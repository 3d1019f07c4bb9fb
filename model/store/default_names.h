/* Names that a file writer generates for a family of items that has none; the model itself never receives
 * them. Name k (from 0) is the family's letter and k + 1; all lie in one block, each in as many bytes as the
 * longest needs. */
#pragma once

#include <cstddef>
#include <memory>

#include "env/error.h"

namespace tovik {
struct Environment;
}

namespace tovik::model {

struct NameFamily {
  char letter;
  const char* kind;  // word in the announcement
};

inline constexpr NameFamily kColumnFamily{'x', "column"};
inline constexpr NameFamily kRowFamily{'c', "row"};
inline constexpr NameFamily kSosFamily{'s', "SOS"};
inline constexpr NameFamily kQuadraticFamily{'q', "quadratic constraint"};
inline constexpr NameFamily kIndicatorFamily{'i', "indicator constraint"};
inline constexpr NameFamily kUserCutFamily{'u', "user cut"};
inline constexpr NameFamily kLazyFamily{'l', "lazy constraints"};

class DefaultNames {
 public:
  /* 1001 when the names do not fit into the largest block or there is no memory. */
  Status make(char letter, int count);
  const char* name(int k) const { return block_.get() + static_cast<std::size_t>(k) * width_; }
  /* Length of the longest name. */
  int longest() const { return width_ == 0 ? 0 : static_cast<int>(width_) - 1; }

 private:
  std::unique_ptr<char[]> block_;
  std::size_t width_ = 0;  // bytes for each name, with its terminating zero
};

/* Writes "Default %-6s names %c1, %c2 ... being created.\n" on the warning channel. */
void announce_default_names(Environment& env, NameFamily family);

/* Announces and makes the names of `count` > 0 items. */
Status make_default_names(Environment& env, NameFamily family, int count, DefaultNames& names);

}  // namespace tovik::model
