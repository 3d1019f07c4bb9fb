#include "mip/run/space_map.h"

namespace tovik::mip::run {

std::vector<double> SpaceMap::user_point(std::span<const double> searched) const {
  return {searched.begin(), searched.begin() + user_};
}

std::vector<double> SpaceMap::searched_point(std::span<const double> user) const {
  std::vector<double> point(user.begin(), user.end());
  point.resize(static_cast<std::size_t>(searched_), 0.0);
  return point;
}

}  // namespace tovik::mip::run
