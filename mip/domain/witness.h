/* A solution that is known beforehand, to find out who cuts it off: for tests. */
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tovik::mip {

struct Witness {
  std::vector<double> x;  // of the problem; empty: none
  /* Is told the rule, the kind of cut, or the reason of the bound. */
  std::function<void(const std::string&)> complain;

  bool is_watched() const { return !x.empty() && complain != nullptr; }
};

}  // namespace tovik::mip
