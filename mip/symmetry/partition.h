/* An ordered partition of the vertices of a coloured graph, refined until it is equitable: two vertices of one cell see every cell
 * by the same coefficients.
 *
 * - Cells are intervals of order(); a cell is known by its first position. They are split only, and the parts stay where the cell
 *   was, so that backtrack() puts them together again.
 * - refine() takes splitters from a worklist ("An n log n algorithm for minimizing states in a finite automaton", Hopcroft 1971: of
 *   the parts of a cell the largest need not become one). What a vertex sees of a splitter is a sum of 64 bits over its edges;
 *   where two sums are equal by chance a cell stays coarser than it could be, which does not depend on the names of vertices.
 * - Trace: what refine() does is written down along the first path of a search; later refinements compare what they do with it from
 *   where they stand, and end early where it differs: no automorphism maps one to the other.
 * - Cost: ticks(), edges and vertices looked at. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mip/symmetry/coloured_graph.h"

namespace tovik::mip {

class Partition {
 public:
  /* By colour, not refined. */
  explicit Partition(const ColouredGraph& graph);

  std::span<const int> order() const { return order_; }
  std::span<const int> cell(int first) const {
    return std::span(order_).subspan(static_cast<std::size_t>(first),
                                     static_cast<std::size_t>(length_[first]));
  }
  int cell_of(int vertex) const { return cell_[vertex]; }
  int length(int first) const { return length_[first]; }

  /* The vertex becomes a cell of its own in front of the rest of its cell. */
  void individualize(int vertex);
  /* False where it differs from the trace; then only backtrack() may follow. */
  bool refine();

  /* From now on refine() compares with the trace, from here. */
  void follow_trace(std::size_t from) {
    trace_at_ = from;
    compares_ = true;
  }
  /* Where it is written, or compared with. */
  std::size_t trace_position() const { return compares_ ? trace_at_ : trace_.size(); }

  struct Split {
    int from, at;  // cell and its part, both as first positions
  };
  std::span<const Split> splits() const { return splits_; }
  void backtrack(std::size_t splits);

  std::int64_t ticks() const { return ticks_; }

 private:
  bool note(std::uint64_t event);
  void look_from(int splitter);
  bool split_touched();
  bool split_cell(std::size_t begin, std::size_t end);
  void cut_off(int first, int at);
  void queue(int first);
  void forget();

  const ColouredGraph& graph_;
  std::vector<int> order_, place_, cell_, length_;
  std::vector<Split> splits_;
  std::vector<int> queue_;
  std::size_t next_queued_ = 0;
  std::vector<char> is_queued_, is_touched_;
  std::vector<std::uint64_t> sight_;  // by vertex: what it sees of the splitter
  std::vector<int> touched_;
  std::vector<std::uint64_t> trace_;
  std::size_t trace_at_ = 0;
  bool compares_ = false;
  std::uint64_t seen_by_single_ = 0;  // of the present splitter, all cells of one vertex together
  std::int64_t ticks_ = 0;
};

}  // namespace tovik::mip
