#include "mip/run/search_columns.h"

#include <algorithm>

#include "mip/run/node_problem.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

double stored(double bound) {
  return std::clamp(bound, -model::kInfinity, model::kInfinity);
}

}  // namespace

lp::verify::Limits SearchColumns::node_bounds(int j) const {
  const int k = searched(j);
  if (k < 0) return global_bounds(j);
  const Domain& domain = scene_.search().worker().domain;
  return {stored(domain.lower(k)), stored(domain.upper(k))};
}

/* Takes the trail back in a copy of the bounds. */
void SearchColumns::go_to_root() const {
  const Domain& domain = scene_.search().worker().domain;
  lower_.assign(domain.lower().begin(), domain.lower().end());
  upper_.assign(domain.upper().begin(), domain.upper().end());
  const std::span<const BoundMove> trail = domain.trail();
  for (std::size_t k = trail.size(); k-- > 0;) {
    (trail[k].side == Side::lower ? lower_ : upper_)[trail[k].column] = trail[k].before;
  }
}

lp::verify::Limits SearchColumns::global_bounds(int j) const {
  const int k = searched(j);
  if (k < 0) {
    const model::Model& model = *scene_.problem.model;
    return {model.lower()[j], model.upper()[j]};
  }
  if (lower_.empty()) go_to_root();
  return {stored(lower_[k]), stored(upper_[k])};
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
  const int k = searched(j);
  const std::vector<Priority>& all = scene_.search().global().problem.priorities;
  return k < 0 || all.empty() ? Priority{} : all[k];
}

double SearchColumns::pseudo_cost(int j, Direction direction) const {
  const int k = searched(j);
  const Global& global = scene_.search().global();
  return k < 0 || global.problem.is_integer[k] == 0 ? 0.0 : global.pseudo_costs.gain(k, direction);
}

}  // namespace tovik::mip::run
