#include "mip/run/space_map.h"

#include <utility>

namespace tovik::mip::run {

int SpaceMap::searched_columns() const {
  return search_.stages().empty() ? given_ : search_.stages().back()->problem.num_columns();
}

int SpaceMap::searched_column(int user) const {
  if (search_.stages().empty()) return user;
  if (stages_placed_ != search_.stages().size()) {
    place_.assign(static_cast<std::size_t>(user_), -1);
    for (int j = 0; j < searched_columns(); ++j) {
      if (const int own = user_column(j); own >= 0) place_[own] = j;
    }
    stages_placed_ = search_.stages().size();
  }
  return place_[user];
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

std::vector<SpaceMap::Box> SpaceMap::user_bounds(std::vector<Box> searched) const {
  std::vector<Box> boxes = std::move(searched);
  for (std::size_t k = search_.stages().size(); k-- > 0;) {
    boxes = search_.stages()[k]->postsolve.expand_bounds(boxes);
  }
  boxes.resize(static_cast<std::size_t>(user_));
  return boxes;
}

LinearForm SpaceMap::crush(LinearForm user) const {
  for (const std::unique_ptr<Presolved>& stage : search_.stages()) {
    user = stage->postsolve.crush(user).value();
  }
  return user;
}

}  // namespace tovik::mip::run
