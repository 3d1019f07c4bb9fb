#include "lp/presolve_record/reduced_problem.h"

#include <algorithm>
#include <utility>

#include "model/store/load.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

model::NameBlock kept_names(const model::NameTable& names, const std::vector<int>& kept) {
  model::NameBlock block;
  if (names.empty()) return block;
  for (const int k : kept) block.add(names.name(k));
  return block;
}

double stored(double bound) {
  return std::clamp(bound, -model::kInfinity, model::kInfinity);
}

void add_row(model::ModelData& data, double lower, double upper) {
  const bool ranged = lower > -kInf && upper < kInf && lower < upper;
  data.sense.push_back(lower == upper ? 'E' : ranged ? 'R' : upper < kInf ? 'L' : 'G');
  data.rhs.push_back(stored(data.sense.back() == 'L' ? upper : lower));
  data.range.push_back(ranged ? upper - lower : 0.0);
}

model::ModelData data_of(const model::Model& original, const Presolved& presolved) {
  const LpData& lp = presolved.reduction.lp;
  model::ModelData data;
  data.objective_name = original.objective_name();
  data.objective_sense = presolved.sign < 0 ? -1 : 1;
  data.objective_offset = presolved.sign * lp.offset + 0.0;
  for (int j = 0; j < lp.num_columns(); ++j) {
    data.objective.push_back(presolved.sign * lp.cost[j] + 0.0);
    data.lower.push_back(stored(lp.lower[j]));
    data.upper.push_back(stored(lp.upper[j]));
  }
  for (int i = 0; i < lp.num_rows(); ++i) add_row(data, lp.row_lower[i], lp.row_upper[i]);
  data.start.assign(lp.matrix.start.begin(), lp.matrix.start.end());
  data.index = lp.matrix.index;
  data.value = lp.matrix.value;
  data.column_names = kept_names(original.column_names(), presolved.reduction.column_map);
  data.row_names = kept_names(original.row_names(), presolved.reduction.row_map);
  return data;
}

}  // namespace

Status reduced_problem(Environment& env, Problem& problem, Presolved& presolved, Problem** reduced) {
  *reduced = nullptr;
  if (presolved.all_removed()) return {};
  if (presolved.reduced == nullptr) {
    auto made = std::make_unique<Problem>(env);
    made->name = problem.name;
    if (const Status s = model::load(env, *made, data_of(*problem.model, presolved)); !s.ok()) return s;
    made->use.changing = true;
    made->use.owner = &problem.use;
    presolved.reduced = std::move(made);
  }
  *reduced = presolved.reduced.get();
  return {};
}

}  // namespace tovik::lp::run
