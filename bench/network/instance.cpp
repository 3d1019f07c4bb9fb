#include "bench/network/instance.h"

#include <sys/resource.h>

#include <cstdlib>
#include <ctime>

namespace bench {
namespace {

[[noreturn]] void fail(const char* what, const std::string& path) {
  std::fprintf(stderr, "%s: %s\n", what, path.c_str());
  std::exit(2);
}

template <class To, class From>
void write_column(std::FILE* file, const std::vector<Arc>& arcs, From Arc::*member) {
  std::vector<To> column;
  column.reserve(arcs.size());
  for (const Arc& arc : arcs) column.push_back(arc.*member);
  std::fwrite(column.data(), sizeof(To), column.size(), file);
}

}  // namespace

void write_instance(const Instance& instance, const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) fail("cannot write", path);
  const InstanceHeader header{static_cast<std::int32_t>(instance.supply.size()),
                              static_cast<std::int32_t>(instance.arcs.size())};
  std::fwrite(&header, sizeof header, 1, file);
  std::fwrite(instance.supply.data(), sizeof(std::int64_t), instance.supply.size(), file);
  for (const auto member : {&Arc::tail, &Arc::head, &Arc::cost, &Arc::capacity})
    write_column<std::int32_t>(file, instance.arcs, member);
  const bool failed = std::ferror(file) != 0;
  if (std::fclose(file) != 0 || failed) fail("cannot write", path);
}

InstanceReader::InstanceReader(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
  if (file_ == nullptr) fail("cannot read", path);
  fill(&header_, sizeof header_);
}

void InstanceReader::fill(void* to, std::size_t bytes) {
  if (std::fread(to, 1, bytes, file_) != bytes) fail("file ends early", "instance");
}

void print(const RunRecord& record) {
  std::printf("%d %.6f %lld %lld %.3f\n", record.optimal ? 1 : 0, record.seconds, record.pivots,
              record.objective, record.megabytes);
}

bool parse(const std::string& line, RunRecord& record) {
  int optimal = 0;
  const bool read = std::sscanf(line.c_str(), "%d %lf %lld %lld %lf", &optimal, &record.seconds,
                                &record.pivots, &record.objective, &record.megabytes) == 5;
  record.optimal = optimal == 1;
  return read;
}

double processor_seconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double peak_megabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

long long audited_cost(const std::string& path, const std::vector<std::int64_t>& flow) {
  InstanceReader reader(path);
  const auto [nodes, arcs] = reader.header();
  const auto at = [](std::int32_t k) { return static_cast<std::size_t>(k); };
  std::vector<std::int64_t> missing(at(nodes));
  long long cost = 0;
  reader.read_array<std::int64_t>(nodes, [&](std::int32_t v, std::int64_t s) { missing[at(v)] = s; });
  reader.read_array<std::int32_t>(arcs,
                                  [&](std::int32_t a, std::int32_t v) { missing[at(v)] -= flow[at(a)]; });
  reader.read_array<std::int32_t>(arcs,
                                  [&](std::int32_t a, std::int32_t v) { missing[at(v)] += flow[at(a)]; });
  reader.read_array<std::int32_t>(arcs, [&](std::int32_t a, std::int32_t c) { cost += c * flow[at(a)]; });
  reader.read_array<std::int32_t>(arcs, [&](std::int32_t a, std::int32_t capacity) {
    if (flow[at(a)] < 0 || flow[at(a)] > capacity) fail("flow beyond its bounds", path);
  });
  for (const std::int64_t amount : missing)
    if (amount != 0) fail("flow without balance", path);
  return cost;
}

}  // namespace bench
