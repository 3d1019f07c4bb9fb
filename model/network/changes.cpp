#include "model/network/changes.h"

#include <cstdint>
#include <string>
#include <utility>

#include "model/base/deletions.h"
#include "model/routines/check.h"

namespace tovik::model {

namespace {

IndexRule nodes_of(const Network& network) {
  return {'n', network.num_nodes()};
}
IndexRule arcs_of(const Network& network) {
  return {'a', network.num_arcs()};
}

/* As a linear model every arc has two entries; a network that would be too large as such is so here. */
Status check_size(const Environment& env, std::int64_t nodes, std::int64_t arcs) {
  const bool fits =
      nodes <= env.size_limits[0] && arcs <= env.size_limits[1] && 2 * arcs <= env.size_limits[2];
  return fits ? Status() : Status(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
}

Status check_ends(Environment& env, IndexRule nodes, int count, const int* tail, const int* head) {
  if (Status s = check_safe_indices(env, nodes, count, tail); !s.ok()) return s;
  return check_safe_indices(env, nodes, count, head);
}

Status check_content(Environment& env, const NewNodes& nodes) {
  if (Status s = check_numbers(env, nodes.count, nodes.supply); !s.ok()) return s;
  return check_names(env, nodes.count, nodes.names);
}

Status check_content(Environment& env, const NewArcs& arcs) {
  for (const double* values : {arcs.cost, arcs.lower, arcs.upper}) {
    if (Status s = check_numbers(env, arcs.count, values); !s.ok()) return s;
  }
  return check_names(env, arcs.count, arcs.names);
}

bool lacks_ends(const NewArcs& arcs) {
  return arcs.count > 0 && (arcs.tail == nullptr || arcs.head == nullptr);
}

/* Deletes the marked items and writes the new positions of the others. */
template <class Delete>
Status delete_set(int count, int* delstat, Delete&& delete_marked) {
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  if (any_marked(delstat, count))
    delete_marked(std::span<const int>(delstat, static_cast<std::size_t>(count)));
  write_new_positions(delstat, count);
  return {};
}

}  // namespace

Status copy_network(Environment& env, NetworkProblem& problem, int sense, const NewNodes& nodes,
                    const NewArcs& arcs) {
  if (Status s = check_count({nodes.count, arcs.count}); !s.ok()) return s;
  if (lacks_ends(arcs)) return TVK_ERROR_NULL_POINTER;
  if (Status s = check_size(env, nodes.count, arcs.count); !s.ok()) return s;
  if (checking(env)) {
    if (Status s = check_objective_sense(sense); !s.ok()) return s;
    if (Status s = check_content(env, nodes); !s.ok()) return s;
    if (Status s = check_content(env, arcs); !s.ok()) return s;
  }
  if (Status s = check_ends(env, {'n', nodes.count}, arcs.count, arcs.tail, arcs.head); !s.ok()) return s;
  auto fresh = std::make_unique<Network>();
  fresh->set_objective_sense(sense < 0 ? -1 : 1);
  fresh->add_nodes(nodes.count, nodes.supply, nodes.names);
  fresh->add_arcs(arcs);
  problem.network = std::move(fresh);
  problem.structure_changed();
  return {};
}

Status add_nodes(Environment& env, NetworkProblem& problem, const NewNodes& nodes) {
  Network& network = *problem.network;
  if (Status s = check_count({nodes.count}); !s.ok()) return s;
  if (nodes.count == 0) return {};
  const std::int64_t total = std::int64_t{network.num_nodes()} + nodes.count;
  if (Status s = check_size(env, total, network.num_arcs()); !s.ok()) return s;
  if (checking(env)) {
    if (Status s = check_content(env, nodes); !s.ok()) return s;
  }
  network.add_nodes(nodes.count, nodes.supply, nodes.names);
  problem.structure_changed();
  return {};
}

Status add_arcs(Environment& env, NetworkProblem& problem, const NewArcs& arcs) {
  Network& network = *problem.network;
  if (Status s = check_count({arcs.count}); !s.ok()) return s;
  if (arcs.count == 0) return {};
  if (lacks_ends(arcs)) return TVK_ERROR_NULL_POINTER;
  const std::int64_t total = std::int64_t{network.num_arcs()} + arcs.count;
  if (Status s = check_size(env, network.num_nodes(), total); !s.ok()) return s;
  if (checking(env)) {
    if (Status s = check_content(env, arcs); !s.ok()) return s;
  }
  if (Status s = check_ends(env, nodes_of(network), arcs.count, arcs.tail, arcs.head); !s.ok()) return s;
  network.add_arcs(arcs);
  problem.structure_changed();
  return {};
}

Status delete_nodes(Environment& env, NetworkProblem& problem, int begin, int end) {
  Network& network = *problem.network;
  if (Status s = check_range(env, "TVKNETdelnodes", begin, end, network.num_nodes()); !s.ok()) return s;
  if (begin > end) return {};
  network.delete_nodes(begin, end);
  problem.structure_changed();
  return {};
}

Status delete_arcs(Environment& env, NetworkProblem& problem, int begin, int end) {
  Network& network = *problem.network;
  if (Status s = check_range(env, "TVKNETdelarcs", begin, end, network.num_arcs()); !s.ok()) return s;
  if (begin > end) return {};
  network.delete_arcs(begin, end);
  problem.structure_changed();
  return {};
}

Status delete_node_set(NetworkProblem& problem, int* delstat) {
  Network& network = *problem.network;
  return delete_set(network.num_nodes(), delstat, [&](auto marks) {
    network.delete_marked_nodes(marks);
    problem.structure_changed();
  });
}

Status delete_arc_set(NetworkProblem& problem, int* delstat) {
  Network& network = *problem.network;
  return delete_set(network.num_arcs(), delstat, [&](auto marks) {
    network.delete_marked_arcs(marks);
    problem.structure_changed();
  });
}

Status change_supply(Environment& env, NetworkProblem& problem, const ValueChanges& changes) {
  Network& network = *problem.network;
  if (Status s = check_changes(env, changes, nodes_of(network)); !s.ok()) return s;
  for (int k = 0; k < changes.count; ++k) network.set_supply(changes.indices[k], changes.values[k]);
  if (changes.count > 0) problem.values_changed();
  return {};
}

Status change_costs(Environment& env, NetworkProblem& problem, const ValueChanges& changes) {
  Network& network = *problem.network;
  if (Status s = check_changes(env, changes, arcs_of(network)); !s.ok()) return s;
  for (int k = 0; k < changes.count; ++k) network.set_cost(changes.indices[k], changes.values[k]);
  if (changes.count > 0) problem.values_changed();
  return {};
}

Status change_arc_bounds(Environment& env, NetworkProblem& problem, const BoundChanges& changes) {
  Network& network = *problem.network;
  if (Status s = check_changes(env, changes, arcs_of(network)); !s.ok()) return s;
  for (int k = 0; k < changes.count; ++k) {
    const int arc = changes.indices[k];
    const char which = changes.which[k];
    if (which == 'L' || which == 'B') {
      if (const auto value = new_lower_bound(env, changes.bounds[k])) network.set_lower(arc, *value);
    }
    if (which == 'U' || which == 'B') {
      if (const auto value = new_upper_bound(env, changes.bounds[k])) network.set_upper(arc, *value);
    }
  }
  if (changes.count > 0) problem.values_changed();
  return {};
}

Status change_arc_ends(Environment& env, NetworkProblem& problem, const EndChanges& changes) {
  Network& network = *problem.network;
  if (Status s = check_count({changes.count}); !s.ok()) return s;
  if (changes.count == 0) return {};
  if (changes.indices == nullptr || changes.tail == nullptr || changes.head == nullptr)
    return TVK_ERROR_NULL_POINTER;
  if (Status s = check_safe_indices(env, arcs_of(network), changes.count, changes.indices); !s.ok()) return s;
  const Status ends = check_ends(env, nodes_of(network), changes.count, changes.tail, changes.head);
  if (!ends.ok()) return ends;
  for (int k = 0; k < changes.count; ++k)
    network.set_ends(changes.indices[k], changes.tail[k], changes.head[k]);
  problem.structure_changed();
  return {};
}

Status change_node_names(Environment& env, NetworkProblem& problem, const NameChanges& changes) {
  Network& network = *problem.network;
  const Status checked = check_renames(env, changes, nodes_of(network));
  if (!checked.ok() || changes.count == 0) return checked;
  network.rename_nodes(changes.count, changes.indices, changes.names);
  return {};
}

Status change_arc_names(Environment& env, NetworkProblem& problem, const NameChanges& changes) {
  Network& network = *problem.network;
  const Status checked = check_renames(env, changes, arcs_of(network));
  if (!checked.ok() || changes.count == 0) return checked;
  network.rename_arcs(changes.count, changes.indices, changes.names);
  return {};
}

Status change_network_name(NetworkProblem& problem, const char* name) {
  if (name == nullptr) return TVK_ERROR_NULL_POINTER;
  std::string(name).swap(problem.name);
  return {};
}

}  // namespace tovik::model
