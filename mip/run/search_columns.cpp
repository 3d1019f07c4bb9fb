#include "mip/run/search_columns.h"

#include <algorithm>
#include <utility>

#include "mip/run/node_problem.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

double stored(double bound) {
  return std::clamp(bound, -model::kInfinity, model::kInfinity);
}

}  // namespace

lp::verify::Limits SearchColumns::shown(const std::vector<Box>& boxes, int j) const {
  double lower = boxes[j].lower, upper = boxes[j].upper;
  if (scene_.in_user_space) {
    lower = std::max(lower, scene_.whole.given().lp.lower[j]);
    upper = std::min(upper, scene_.whole.given().lp.upper[j]);
  }
  return {stored(lower), stored(upper)};
}

std::vector<SearchColumns::Box> SearchColumns::in_space(std::vector<Box> searched) const {
  return scene_.in_user_space ? scene_.spaces.user_bounds(std::move(searched)) : searched;
}

std::vector<SearchColumns::Box> SearchColumns::boxes_of_node() const {
  const Domain& domain = scene_.search().worker().domain;
  std::vector<Box> boxes;
  for (std::size_t j = 0; j < domain.lower().size(); ++j) {
    boxes.push_back({domain.lower()[j], domain.upper()[j]});
  }
  return boxes;
}

/* Takes the trail back in a copy of the bounds. */
std::vector<SearchColumns::Box> SearchColumns::boxes_of_root() const {
  std::vector<Box> boxes = boxes_of_node();
  const std::span<const BoundMove> trail = scene_.search().worker().domain.trail();
  for (std::size_t k = trail.size(); k-- > 0;) {
    Box& box = boxes[trail[k].column];
    (trail[k].side == Side::lower ? box.lower : box.upper) = trail[k].before;
  }
  return boxes;
}

lp::verify::Limits SearchColumns::node_bounds(int j) const {
  if (node_boxes_.empty()) node_boxes_ = in_space(boxes_of_node());
  return shown(node_boxes_, j);
}

lp::verify::Limits SearchColumns::global_bounds(int j) const {
  if (root_boxes_.empty()) root_boxes_ = in_space(boxes_of_root());
  return shown(root_boxes_, j);
}

bool SearchColumns::is_integer(int j) const {
  const char t = type(j);
  return t == 'B' || t == 'I' || t == 'N';
}

char SearchColumns::type(int j) const {
  if (scene_.in_user_space) {
    const std::span<const char> types = scene_.problem.model->column_types();
    return types.empty() ? 'C' : types[j];
  }
  if (types_.empty()) types_ = column_types(scene_.search().global().problem);
  return types_[j];
}

Priority SearchColumns::priority(int j) const {
  const std::vector<Priority>& all = scene_.shown().priorities;
  return all.empty() ? Priority{} : all[j];
}

double SearchColumns::pseudo_cost(int j, Direction direction) const {
  const int k = searched(j);
  const Global& global = scene_.search().global();
  return k < 0 || global.problem.is_integer[k] == 0 ? 0.0 : global.pseudo_costs.gain(k, direction);
}

}  // namespace tovik::mip::run
