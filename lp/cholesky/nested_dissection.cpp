#include <metis.h>

#include <cstdlib>
#include <limits>
#include <mutex>
#include <new>
#include <numeric>

#include "lp/cholesky/ordering.h"

namespace tovik::lp::cholesky {
namespace {

/* Graphs above these sizes are cut one separator at a time, so that a stop waits for one cut only. */
constexpr std::uint64_t kTicksPerEntry = 12;  // of a part, to cut it
constexpr std::size_t kWholeSize = 20000, kWholeEntries = 4000000;

/* The package seeds and draws from rand(), the one generator of the process, which belongs to the application. While it works
 * the generator has another state, and the application's sequence goes on afterwards as if nothing had been; a lock keeps two
 * threads from taking turns, which would make orders depend on time. (Where rand() and random() are one generator, as in the GNU
 * library. What is left: another thread of the application that calls rand() meanwhile draws from that state, too.) */
class Package {
 public:
  Package() : alone_(mutex()), before_(::initstate(1, state_, sizeof state_)) {}
  ~Package() { ::setstate(before_); }
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

 private:
  static std::mutex& mutex() {
    static std::mutex made;
    return made;
  }
  std::scoped_lock<std::mutex> alone_;
  char state_[128];
  char* before_;
};

void require(int status) {
  if (status != METIS_OK) throw std::bad_alloc();  // input is valid here: what is left is memory
}

/* Vertices of a part, and the graph that they span in the package's form. */
struct Part {
  std::vector<int> vertices;
  std::vector<idx_t> start, neighbour;
  int last = 0;  // the place behind the part's own in the order
};

class Dissection {
 public:
  Dissection(const Graph& graph, Control& control)
      : graph_(graph), control_(control), local_(graph.size, -1) {}

  std::vector<int> run() {
    order_.resize(graph_.size);
    Part whole;
    whole.vertices.resize(graph_.size);
    std::iota(whole.vertices.begin(), whole.vertices.end(), 0);
    whole.last = graph_.size;
    waiting_.push_back(std::move(whole));
    while (!waiting_.empty()) {
      if (control_.poll_clock() != Stop::none) return {};
      Part part = std::move(waiting_.back());
      waiting_.pop_back();
      span(part);
      control_.add_work(kTicksPerEntry * part.neighbour.size());
      if (part.vertices.size() <= kWholeSize && part.neighbour.size() <= kWholeEntries)
        order_whole(part);
      else
        cut(part);
    }
    return std::move(order_);
  }

 private:
  void span(Part& part) {
    for (std::size_t k = 0; k < part.vertices.size(); ++k) local_[part.vertices[k]] = static_cast<int>(k);
    part.start.assign(1, 0);
    for (const int v : part.vertices) {
      for (std::int64_t e = graph_.start[v]; e < graph_.start[v + 1]; ++e)
        if (const int other = local_[graph_.neighbour[e]]; other >= 0) part.neighbour.push_back(other);
      if (part.neighbour.size() > std::numeric_limits<idx_t>::max()) throw std::bad_alloc();
      part.start.push_back(static_cast<idx_t>(part.neighbour.size()));
    }
    for (const int v : part.vertices) local_[v] = -1;
  }

  void order_whole(Part& part) {
    idx_t n = static_cast<idx_t>(part.vertices.size());
    const int first = part.last - n;
    if (part.neighbour.empty()) {
      for (int k = 0; k < n; ++k) order_[first + k] = part.vertices[k];
      return;
    }
    std::vector<idx_t> order(n), place(n);
    const Package package;
    require(METIS_NodeND(&n, part.start.data(), part.neighbour.data(), nullptr, nullptr, order.data(),
                         place.data()));
    for (int k = 0; k < n; ++k) order_[first + k] = part.vertices[order[k]];
  }

  void cut(Part& part) {
    idx_t n = static_cast<idx_t>(part.vertices.size()), separator = 0;
    std::vector<idx_t> side(n);
    {
      const Package package;
      require(METIS_ComputeVertexSeparator(&n, part.start.data(), part.neighbour.data(), nullptr, nullptr,
                                           &separator, side.data()));
    }
    Part left, right;
    for (int k = 0; k < n; ++k)
      if (side[k] != 2) (side[k] == 0 ? left : right).vertices.push_back(part.vertices[k]);
    if (left.vertices.empty() || right.vertices.empty())
      return order_whole(part);  // such a graph is nearly dense
    int last = part.last;
    for (int k = 0; k < n; ++k)
      if (side[k] == 2) order_[--last] = part.vertices[k];
    right.last = last;
    left.last = last - static_cast<int>(right.vertices.size());
    waiting_.push_back(std::move(left));
    waiting_.push_back(std::move(right));
  }

  const Graph& graph_;
  Control& control_;
  std::vector<int> local_, order_;
  std::vector<Part> waiting_;
};

}  // namespace

std::vector<int> nested_dissection_order(const Graph& graph, Control& control) {
  return Dissection(graph, control).run();
}

}  // namespace tovik::lp::cholesky
