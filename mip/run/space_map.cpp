#include "mip/run/space_map.h"

namespace tovik::mip::run {

int SpaceMap::searched_columns() const {
  return search_.stages().empty() ? given_ : search_.stages().back()->problem.num_columns();
}

int SpaceMap::user_column(int searched) const {
  int column = searched;
  for (std::size_t k = search_.stages().size(); k-- > 0;) {
    column = search_.stages()[k]->postsolve.column_map()[column];
  }
  return column < user_ ? column : -1;
}

std::vector<double> SpaceMap::user_point(std::span<const double> searched) const {
  std::vector<double> point = search_.expand(searched);
  point.resize(static_cast<std::size_t>(user_));
  return point;
}

std::vector<double> SpaceMap::searched_point(std::span<const double> user) const {
  std::vector<double> point(user.begin(), user.end());
  point.resize(static_cast<std::size_t>(given_), 0.0);
  return search_.crush(point);
}

}  // namespace tovik::mip::run
