#include "model/network/query.h"

#include <algorithm>
#include <cstdint>

#include "model/routines/surplus.h"

namespace tovik::model {

Status get_node_arcs(Environment& env, const Network& network, const Range& range, const ArcOutput& out) {
  if (Status s = check_range(env, range.routine, range.begin, range.end, network.num_nodes()); !s.ok())
    return s;
  const Incidence& incidence = network.incidence();
  std::int64_t found = 0;
  if (is_size_query(out.space, out.surplus)) {
    for (int node = range.begin; node <= range.end; ++node) {
      found += incidence.degree(node);
      if (out.begin != nullptr) out.begin[node - range.begin] = 0;
    }
    return report_size(found, out.surplus);
  }
  if (out.count == nullptr || out.begin == nullptr || out.arcs == nullptr || out.surplus == nullptr)
    return TVK_ERROR_NULL_POINTER;
  for (int node = range.begin; node <= range.end; ++node) {
    const std::span<const int> arcs = incidence.arcs_of(node);
    out.begin[node - range.begin] = static_cast<int>(found);
    const std::int64_t size = static_cast<std::int64_t>(arcs.size());
    const std::int64_t fitting = std::clamp<std::int64_t>(out.space - found, 0, size);
    std::copy_n(arcs.begin(), fitting, out.arcs + (fitting > 0 ? found : 0));
    found += size;
  }
  *out.count = static_cast<int>(std::min<std::int64_t>(found, std::max(out.space, 0)));
  return report_surplus(found, out.space, out.surplus);
}

}  // namespace tovik::model
