/* Network files as routines see them: opening, messages, and the network or problem that takes the data. */
#include "fileio/network/file.h"

#include <utility>

#include "fileio/record/channel_log.h"
#include "fileio/record/recording_log.h"
#include "fileio/record/writer_names.h"
#include "fileio/stream/write_file.h"
#include "include/tovik.h"
#include "model/network/linear_model.h"

namespace tovik::fileio {
namespace {

Status read_data(Environment& env, ByteSource& source, const char* name, model::NetworkData& data,
                 ReadReport& report) {
  ChannelLog channels(env);
  RecordingLog log(channels, report);
  const ReadFailure failure = read_network(source, {}, log, data);
  if (const Status s = close_source(env, source, bool(failure), name); !s.ok()) return s;
  if (failure) return report_failure(env, failure);
  env.add_work(data.supply.size() + data.tail.size());
  return {};
}

model::NameBlock numbered_names(char letter, int count) {
  const WriterNames names = WriterNames::generated(letter, count);
  model::NameBlock block;
  block.offset.reserve(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) block.add(names[k]);
  return block;
}

}  // namespace

Status read_network_file(Environment& env, NetworkProblem& problem, const char* name) {
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_for_reading(env, {name, ".net"}, source); !status.ok()) return status;
  model::NetworkData data;
  ReadReport report;
  if (const Status status = read_data(env, *source, name, data, report); !status.ok()) return status;
  std::string title = std::move(data.problem_name);
  if (title.empty()) title = name;
  problem.network = std::make_unique<model::Network>(std::move(data));
  problem.structure_changed();
  problem.name.swap(title);
  return {};
}

Status read_network_problem(Environment& env, Problem& problem, ByteSource& source, const char* name) {
  model::NetworkData data;
  ReadReport report;
  if (const Status status = read_data(env, source, name, data, report); !status.ok()) return status;
  model::ModelData lp = model::lp_of(model::Network(std::move(data)));
  lp.problem_name = name;
  if (lp.row_names.empty()) lp.row_names = numbered_names('n', static_cast<int>(lp.rhs.size()));
  if (lp.column_names.empty()) lp.column_names = numbered_names('a', static_cast<int>(lp.objective.size()));
  const Status status = model::load(env, problem, std::move(lp));
  if (status.ok()) problem.read_report = std::move(report);
  return status;
}

Status write_network_file(Environment& env, const NetworkProblem& problem, const char* name) {
  const model::Network& network = *problem.network;
  env.add_work(static_cast<std::uint64_t>(network.num_nodes()) +
               static_cast<std::uint64_t>(network.num_arcs()));
  return write_file(env, name, [&](TextWriter& out) { return write_network(network, problem.name, out); });
}

}  // namespace tovik::fileio
