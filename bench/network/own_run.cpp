#include "bench/network/own_run.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include "lp/base/control.h"
#include "lp/network/solve.h"

namespace bench {
namespace {

using namespace tovik::lp;
using namespace tovik::lp::network;

class Patience : public Control {
 public:
  void log(const char*) override {}
  void flush() override {}
  void add_work(std::uint64_t) override {}
  double seconds() override { return 0; }
  Stop poll() override { return Stop::none; }
  Stop poll_clock() override { return Stop::none; }
  Stop iteration_callback(const ProgressSource&) override { return Stop::none; }
};

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

}  // namespace

RunRecord run_own(const std::string& path, FlowPricing pricing) {
  std::vector<double> supply, cost, lower, upper;
  std::vector<int> tail, head;
  {
    InstanceReader reader(path);
    const auto [nodes, arcs] = reader.header();
    supply.resize(at(nodes));
    for (std::vector<double>* values : {&cost, &lower, &upper}) values->resize(at(arcs));
    for (std::vector<int>* values : {&tail, &head}) values->resize(at(arcs));
    reader.read_array<std::int64_t>(nodes,
                                    [&](int v, std::int64_t s) { supply[at(v)] = static_cast<double>(s); });
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t v) { tail[at(a)] = v; });
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t v) { head[at(a)] = v; });
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t c) { cost[at(a)] = c; });
    reader.read_array<std::int32_t>(arcs, [&](int a, std::int32_t c) { upper[at(a)] = c; });
  }
  Patience control;
  FlowOptions options;
  options.pricing = pricing;
  RunRecord record;
  const double begin = processor_seconds();
  const FlowAnswer answer = solve({supply, tail, head, cost, lower, upper}, {}, options, control, nullptr);
  record.seconds = processor_seconds() - begin;
  record.megabytes = peak_megabytes();
  record.optimal = answer.outcome == Outcome::optimal;
  record.pivots = answer.iterations;
  if (!record.optimal) return record;
  std::vector<std::int64_t> flow(answer.flow.size());
  for (std::size_t a = 0; a < flow.size(); ++a) {
    flow[a] = static_cast<std::int64_t>(answer.flow[a]);
    if (static_cast<double>(flow[a]) != answer.flow[a]) {
      std::fprintf(stderr, "flow %.17g is no whole number\n", answer.flow[a]);
      std::exit(2);
    }
  }
  record.objective = audited_cost(path, flow);
  if (static_cast<double>(record.objective) != answer.objective) record.optimal = false;
  return record;
}

}  // namespace bench
