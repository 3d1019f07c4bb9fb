/* A network as plain data, to copy into a network object and to read back from one. */
#pragma once

#include <tovik.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/describe_problem.h"

namespace support {

struct NetworkArrays {
  int sense = 1;
  std::vector<double> supply;
  std::vector<int> tail, head;
  std::vector<double> cost, lower, upper;
  std::vector<std::string> node_names, arc_names;  // one for each, or empty
  bool operator==(const NetworkArrays&) const = default;

  int nodes() const { return static_cast<int>(supply.size()); }
  int arcs() const { return static_cast<int>(tail.size()); }
  void add_arc(int from, int to, double c, double low, double high) {
    tail.push_back(from);
    head.push_back(to);
    cost.push_back(c);
    lower.push_back(low);
    upper.push_back(high);
  }
};

/* "min", a line "NAME SUPPLY" for each node and "NAME TAIL HEAD COST [LOWER,UPPER]" for each arc; a missing
 * name is "-". */
inline std::string describe(const NetworkArrays& net) {
  const auto name = [](const std::vector<std::string>& names, std::size_t k) {
    return names.empty() ? std::string("-") : names[k];
  };
  std::ostringstream text;
  text << (net.sense == 1 ? "min\n" : "max\n");
  for (std::size_t i = 0; i < net.supply.size(); ++i)
    text << name(net.node_names, i) << ' ' << number(net.supply[i]) << '\n';
  for (std::size_t a = 0; a < net.tail.size(); ++a) {
    text << name(net.arc_names, a) << ' ' << net.tail[a] << ' ' << net.head[a] << ' ' << number(net.cost[a])
         << " [" << number(net.lower[a]) << ',' << number(net.upper[a]) << "]\n";
  }
  return text.str();
}

/* The pointers that the routines take; null for no names. */
class NamePointers {
 public:
  explicit NamePointers(const std::vector<std::string>& names) {
    for (const std::string& name : names) pointers_.push_back(const_cast<char*>(name.c_str()));
  }
  char** get() { return pointers_.empty() ? nullptr : pointers_.data(); }

 private:
  std::vector<char*> pointers_;
};

inline int copy(ConstEnvHandle env, NetProbHandle net, const NetworkArrays& data) {
  NamePointers nodes(data.node_names), arcs(data.arc_names);
  return TVKNETcopynet(env, net, data.sense, data.nodes(), data.supply.data(), nodes.get(), data.arcs(),
                       data.tail.data(), data.head.data(), data.cost.data(), data.lower.data(),
                       data.upper.data(), arcs.get());
}

inline std::vector<std::string> network_names(ConstEnvHandle env, ConstNetProbHandle net,
                                              int (*query)(ConstEnvHandle, ConstNetProbHandle, char**, char*,
                                                           int, int*, int, int),
                                              int count) {
  int surplus = 0;
  if (query(env, net, nullptr, nullptr, 0, &surplus, 0, count - 1) != 1207) return {};
  std::vector<char> store(static_cast<std::size_t>(-surplus));
  std::vector<char*> pointers(static_cast<std::size_t>(count));
  EXPECT_EQ(query(env, net, pointers.data(), store.data(), -surplus, &surplus, 0, count - 1), 0);
  return {pointers.begin(), pointers.end()};
}

inline NetworkArrays read_back(ConstEnvHandle env, ConstNetProbHandle net) {
  NetworkArrays data;
  const int nodes = TVKNETgetnumnodes(env, net), arcs = TVKNETgetnumarcs(env, net);
  data.sense = TVKNETgetobjsen(env, net);
  data.supply.resize(static_cast<std::size_t>(nodes));
  for (auto* values : {&data.cost, &data.lower, &data.upper}) values->resize(static_cast<std::size_t>(arcs));
  for (auto* ends : {&data.tail, &data.head}) ends->resize(static_cast<std::size_t>(arcs));
  EXPECT_EQ(TVKNETgetsupply(env, net, data.supply.data(), 0, nodes - 1), 0);
  EXPECT_EQ(TVKNETgetarcends(env, net, data.tail.data(), data.head.data(), 0, arcs - 1), 0);
  EXPECT_EQ(TVKNETgetobj(env, net, data.cost.data(), 0, arcs - 1), 0);
  EXPECT_EQ(TVKNETgetlb(env, net, data.lower.data(), 0, arcs - 1), 0);
  EXPECT_EQ(TVKNETgetub(env, net, data.upper.data(), 0, arcs - 1), 0);
  data.node_names = network_names(env, net, TVKNETgetnodename, nodes);
  data.arc_names = network_names(env, net, TVKNETgetarcname, arcs);
  return data;
}

}  // namespace support
