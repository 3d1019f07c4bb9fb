/* Dense elimination of the first columns of a front.
 * Panel   front x width numbers by columns, its lower trapezoid used: on entry assembled, on return L below the unit diagonal,
 *         and D on the diagonal (0 where a pivot is infinite).
 * Square  (front - width)^2, lower triangle: receives minus what the eliminated columns take away from the rest.
 * Sizes of all products depend on the front alone, so that digits do not depend on the number of workers. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "lp/cholesky/cholesky.h"
#include "lp/cholesky/pulse.h"
#include "lp/cholesky/team.h"

namespace tovik::lp::cholesky {

/* What a worker keeps from front to front. */
struct Workspace {
  std::vector<double> scaled;  // kTile * widest: L D, transposed for products
  std::vector<int> run;        // largest front: see assembly
  std::int64_t replaced = 0;
  double smallest_pivot = 0, largest_pivot = 0;  // 0: none yet
};

inline constexpr int kTile = 256;  // most columns of one product

class FrontElimination {
 public:
  struct Front {
    double* panel;
    int rows, width;
    const signed char* signs;  // of its columns; nullptr: all +1
    double* inverse;           // of its pivots
  };
  /* `team` may be nullptr; then `worker` does everything. */
  FrontElimination(const Front& front, const Pivoting& pivoting, std::vector<Workspace>& workspaces,
                   int worker, Team* team, Pulse& pulse)
      : front_(front),
        pivoting_(pivoting),
        workspaces_(workspaces),
        worker_(worker),
        team_(team),
        pulse_(pulse) {}

  void eliminate_panel() { eliminate(0, front_.width); }
  /* `add` is called for columns begin .. end - 1 of the square once they are there: (begin, end, worker). */
  template <class Add>
  void update_square(double* square, const Add& add) {
    const int below = front_.rows - front_.width, tile = tile_of(below);
    const double work = front_.width;
    share((below + tile - 1) / tile, work * below * below, [&](int piece, int worker) {
      if (pulse_.stopped()) return;
      const int first = piece * tile, last = std::min(first + tile, below);
      update_square_columns(square, first, last, worker);
      add(first, last, worker);
    });
  }
  /* Pieces by the team where they are worth it: (piece, worker). */
  template <class Work>
  void share(int pieces, double operations, const Work& work) {
    if (team_ != nullptr && team_->workers() > 1 && operations > kWorthSharing)
      team_->run(pieces, work, [this] { pulse_.look(); });
    else
      for (int piece = 0; piece < pieces; ++piece) work(piece, worker_);
  }

 private:
  static constexpr double kWorthSharing = 1e6;  // operations
  static int tile_of(int rows);
  void update_square_columns(double* square, int first, int last, int worker);
  double* at(int row, int column) const {
    return front_.panel + row + static_cast<std::int64_t>(column) * front_.rows;
  }
  void eliminate(int begin, int end);
  void eliminate_leaf(int begin, int end);
  void pivot(int column);
  void update(int begin, int middle, int end);
  void scale_rows(int first, int last, int begin, int end, double* scaled) const;

  Front front_;
  const Pivoting& pivoting_;
  std::vector<Workspace>& workspaces_;
  int worker_;
  Team* team_;
  Pulse& pulse_;
};

}  // namespace tovik::lp::cholesky
