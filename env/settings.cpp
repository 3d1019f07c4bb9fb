#include "env/settings.h"

namespace tovik {

const std::string& Settings::text(int number) const {
  static const std::string kEmpty;
  const auto found = texts_.find(number);
  return found != texts_.end() ? found->second : kEmpty;
}

}  // namespace tovik
