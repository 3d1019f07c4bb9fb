#include "model/network/linear_model.h"

#include <utility>

#include "model/network/network.h"
#include "model/routines/changes.h"

namespace tovik::model {

namespace {

template <class T>
std::vector<T> copy_of(std::span<const T> values) {
  return {values.begin(), values.end()};
}

NameBlock copy_of(const NameTable& names) {
  std::vector<const char*> texts;
  texts.reserve(static_cast<std::size_t>(names.size()));
  for (int k = 0; k < names.size(); ++k) texts.push_back(names.name(k));
  return collect_names(' ', names.size(), texts.empty() ? nullptr : texts.data());
}

void collect_matrix(const Network& network, ModelData& data) {
  const std::span<const int> tail = network.tail(), head = network.head();
  data.start.reserve(tail.size() + 1);
  data.index.reserve(2 * tail.size());
  data.value.reserve(2 * tail.size());
  data.start.push_back(0);
  for (std::size_t a = 0; a < tail.size(); ++a) {
    if (tail[a] != head[a]) {
      data.index.insert(data.index.end(), {tail[a], head[a]});
      data.value.insert(data.value.end(), {1.0, -1.0});
    }
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
  }
}

}  // namespace

ModelData lp_of(const Network& network) {
  ModelData data;
  data.packed = true;
  data.objective_sense = network.objective_sense();
  data.objective = copy_of(network.cost());
  data.lower = copy_of(network.lower());
  data.upper = copy_of(network.upper());
  data.rhs = copy_of(network.supply());
  data.sense.assign(data.rhs.size(), 'E');
  collect_matrix(network, data);
  data.column_names = copy_of(network.arc_names());
  data.row_names = copy_of(network.node_names());
  return data;
}

Status copy_network_to_lp(Environment& env, Problem& problem, const NetworkProblem& network) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  ModelData data = lp_of(*network.network);
  data.problem_name = network.name;
  return load(env, problem, std::move(data));
}

}  // namespace tovik::model
