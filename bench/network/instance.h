/* One minimum-cost flow problem of whole numbers, its file, and what a run on it says. Knows neither solver, so that each
 * of the two programs sees the same data.
 *
 * - File: the header, then supply (64 bits a node), tail, head, cost, capacity (32 bits an arc each), in the machine's own
 *   order. Lower bounds are zero; arcs are sorted by tail. Files live as long as one comparison.
 * - Reading: array by array through `read_array`, which converts on the way, so that no program holds the data twice. */
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

struct Arc {
  std::int32_t tail, head, cost, capacity;
};

struct Instance {
  std::vector<std::int64_t> supply;  // by node
  std::vector<Arc> arcs;
};

struct InstanceHeader {
  std::int32_t nodes = 0, arcs = 0;
};

void write_instance(const Instance& instance, const std::string& path);

/* Opens at the header; exits with a message where the file cannot be read. */
class InstanceReader {
 public:
  explicit InstanceReader(const std::string& path);
  ~InstanceReader() { std::fclose(file_); }
  InstanceReader(const InstanceReader&) = delete;
  InstanceReader& operator=(const InstanceReader&) = delete;

  const InstanceHeader& header() const { return header_; }
  /* The next `count` numbers of the file's type From, each handed to put(k, value). */
  template <class From, class Put>
  void read_array(std::int32_t count, Put&& put) {
    From chunk[4096];
    for (std::int32_t k = 0; k < count;) {
      const std::int32_t wanted = count - k < 4096 ? count - k : 4096;
      fill(chunk, sizeof(From) * static_cast<std::size_t>(wanted));
      for (std::int32_t i = 0; i < wanted; ++i) put(k++, chunk[i]);
    }
  }

 private:
  void fill(void* to, std::size_t bytes);
  std::FILE* file_;
  InstanceHeader header_;
};

/* What a run tells: one line on its standard output. */
struct RunRecord {
  bool optimal = false;
  double seconds = 0;  // of the processor, for the solve alone
  long long pivots = -1;
  long long objective = 0;
  double megabytes = 0;  // largest resident size up to the end of the solve
};

void print(const RunRecord& record);
bool parse(const std::string& line, RunRecord& record);

double processor_seconds();
double peak_megabytes();

/* Exact cost of a flow of whole numbers; exits with a message where the flow breaks a bound or a balance. */
long long audited_cost(const std::string& path, const std::vector<std::int64_t>& flow);

}  // namespace bench
