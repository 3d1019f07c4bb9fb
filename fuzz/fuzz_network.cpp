/* Feeds bytes to the reader of network files and checks what it promises about its result, and that the
 * result written and read again is the same. Seeds: tests/fileio/corpus/network. */
#include <algorithm>
#include <string>

#include "fileio/network/file.h"
#include "fuzz/reader_harness.h"
#include "tests/support/text_sink.h"

using namespace tovik::fileio;
using fuzz::require;
using tovik::model::Network;
using tovik::model::NetworkData;

namespace {

void check_names(const tovik::model::NameBlock& names, std::size_t count) {
  require(names.empty() || names.size() == count);
  for (std::size_t k = 0; k < names.size(); ++k)
    require(std::string_view(names.name(k)).size() <= kMaxNameLength);
}

void check(const NetworkData& data) {
  const std::size_t nodes = data.supply.size(), arcs = data.tail.size();
  require(data.head.size() == arcs && data.cost.size() == arcs && data.lower.size() == arcs &&
          data.upper.size() == arcs);
  const auto inside = [nodes](int node) { return node >= 0 && static_cast<std::size_t>(node) < nodes; };
  const auto finite = [](double value) { return std::isfinite(value); };
  require(std::ranges::all_of(data.tail, inside) && std::ranges::all_of(data.head, inside));
  require(std::ranges::all_of(data.supply, finite) && std::ranges::all_of(data.cost, finite));
  require(std::ranges::all_of(data.lower, finite) && std::ranges::all_of(data.upper, finite));
  check_names(data.node_names, nodes);
  check_names(data.arc_names, arcs);
}

bool same_names(const tovik::model::NameTable& one, const tovik::model::NameTable& other) {
  if (one.size() != other.size()) return false;
  for (int k = 0; k < one.size(); ++k)
    if (std::string_view(one.name(k)) != other.name(k)) return false;
  return true;
}

void check_round_trip(const Network& network, std::string_view title) {
  support::TextSink sink;
  TextWriter out(sink);
  require(write_network(network, title, out) == 0 && out.close());
  MemorySource source(sink.text);
  fuzz::SilentLog log;
  NetworkData again_data;
  require(!read_network(source, {}, log, again_data));
  require(again_data.problem_name == title);
  const Network again(std::move(again_data));
  require(again.objective_sense() == network.objective_sense());
  require(std::ranges::equal(again.supply(), network.supply()) &&
          std::ranges::equal(again.tail(), network.tail()) &&
          std::ranges::equal(again.head(), network.head()) &&
          std::ranges::equal(again.cost(), network.cost()) &&
          std::ranges::equal(again.lower(), network.lower()) &&
          std::ranges::equal(again.upper(), network.upper()));
  require(same_names(again.node_names(), network.node_names()) &&
          same_names(again.arc_names(), network.arc_names()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::SlowSource source({reinterpret_cast<const char*>(bytes), size});
  fuzz::SilentLog log;
  NetworkData data;
  ReadOptions options;
  options.line_buffer = 1024;
  const ReadFailure failure = read_network(source, options, log, data);
  if (failure) {
    require(
        failure.code == TVK_ERROR_SIZE_LIMITS_TOO_LARGE ||
        (failure.code >= TVK_ERROR_NETWORK_FILE_INCONSISTENT && failure.code <= TVK_ERROR_NETWORK_FILE_END));
    return 0;
  }
  check(data);
  const std::string title = data.problem_name;
  check_round_trip(Network(std::move(data)), title);
  return 0;
}
