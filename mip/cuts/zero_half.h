/* Zero-half cuts ("{0,1/2}-Chvatal-Gomory cuts", Math. Programming 74 (1996); "Algorithms to separate {0,1/2}-Chvatal-Gomory
 * cuts", Algorithmica 55 (2009)): integral rows are added with weights 1/2 so that the side becomes a half and few
 * coefficients do. Only parities matter: a row is the set of its columns with odd coefficient that are not at a bound, the
 * parity of its side once those at a bound are shifted away, and its slack. Elimination modulo 2 looks for odd sides with
 * little slack; the sum of rows it names is then rounded like any other. */
#pragma once

#include <span>
#include <vector>

#include "mip/cuts/rounding.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

class ZeroHalfCuts : public Plugin {
 public:
  const char* name() const override { return "zero half"; }
  Verdict call(Worker& worker, const Moment& moment) override;

 private:
  struct ParityRow {
    std::vector<int> odd;   // columns, ascending
    std::vector<int> rows;  // of the relaxation, ascending
    double slack;           // of the sum, and what eliminated columns add to it
    bool odd_side;
    bool is_in = true;
  };
  void read_rows(const Worker& worker);
  bool read_row(const Worker& worker, int i, ParityRow* row) const;
  double loss(const ParityRow& row) const;
  void eliminate(const Worker& worker, std::int64_t budget);
  void eliminate_column(int column);
  void add_to(ParityRow& row, const ParityRow& other);
  void keep_if_violated(const ParityRow& row);
  bool make_cut(Worker& worker, const std::vector<int>& rows, RowSum& sum, Rounding& rounding) const;

  std::vector<ParityRow> rows_;
  std::vector<double> distance_;  // of a column from its nearest bound
  std::vector<std::vector<int>> found_;
  std::int64_t work_ = 0;
};

}  // namespace tovik::mip
