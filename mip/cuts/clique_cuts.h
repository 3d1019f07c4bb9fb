/* Clique cuts: of literals that exclude each other pairwise at most one is true. Pairs come from the clique table; cliques are
 * sought among literals whose value is fractional, by the largest sum of values ("An exact algorithm for the maximum
 * clique problem", Oper. Res. Letters 9 (1990), with limits), and extended by literals of value 0. */
#pragma once

#include <vector>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class CliqueCuts : public Plugin {
 public:
  const char* name() const override { return "clique"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  struct Vertex {
    Literal literal;
    double value;
  };
  void find_vertices(const Worker& worker, std::span<const double> x);
  void find_neighbours(const CliqueTable& table);
  bool are_adjacent(std::size_t a, std::size_t b) const {
    return (neighbours_[a * words_ + b / 64] >> (b % 64) & 1) != 0;
  }
  void grow(std::vector<std::size_t>& clique, double value, const std::vector<std::size_t>& candidates);
  void extend(const CliqueTable& table, std::vector<Literal>& literals);

  std::vector<Vertex> vertices_;           // by falling value
  std::vector<std::uint64_t> neighbours_;  // bits, a row of words_ a vertex
  std::size_t words_ = 0;
  std::vector<int> vertex_of_;  // by literal, -1: none
  std::vector<std::size_t> best_;
  double best_value_ = 0;
  std::int64_t work_ = 0;
  int steps_ = 0;
};

}  // namespace tovik::mip
