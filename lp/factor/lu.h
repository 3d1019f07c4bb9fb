/* Storage of one factored basis, shared by build, solves and update.
 *
 * Everything is numbered by slot. Slots 0..m-1 are the pivots of the build in elimination order: first the
 * logicals, then column singletons, row singletons and the kernel. So L is lower triangular (unit diagonal,
 * not stored) and U upper triangular in slot order, and a sweep runs through memory in sequence. The k-th
 * update since then (k = 0, 1, ...) retires the slot of the replaced column and gives its row the new slot m
 * + k, the last one in the order of U; no other entry of U is renumbered. With the row eta r of that update,
 * FTRAN between L and U does x[m+k] = x[old] - r'x,  x[old] = 0, which is again lower triangular in slot
 * order.
 *
 * A retired slot has length 0 and inverse pivot 0 in U. Entries of other lines that point at it are left in
 * place: whatever they add to its position is multiplied by 0 when the sweep gets there, so it is never
 * passed on. That makes an update cost no more than its spike and its eta, for wasted work bounded by the
 * length of the retired lines. */
#pragma once

#include <algorithm>
#include <vector>

namespace tovik::lp::factor {

struct Line {  // one row or column of L
  int start = 0;
  int length = 0;
};

struct PivotLine {  // one row or column of U off the diagonal, with the inverse of its pivot
  int start = 0;
  int length = 0;
  double inverse = 0.0;
};

struct File {  // entries of many lines; size only grows, used counts the entries in use
  std::vector<int> index;
  std::vector<double> value;
  int used = 0;

  void reserve(int entries) {
    if (static_cast<int>(index.size()) >= entries) return;
    const int size = entries + entries / 4;
    index.resize(size);
    value.resize(size);
  }
  /* The entries in use of another file; the rest of the room stays. */
  void copy(const File& other) {
    reserve(other.used);
    std::copy_n(other.index.begin(), other.used, index.begin());
    std::copy_n(other.value.begin(), other.used, value.begin());
    used = other.used;
  }
  void append(int i, double v) {
    index[used] = i;
    value[used++] = v;
  }
};

struct SlotLinks {
  int eta = -1;        // newest entry of the row etas in this column, chained through Etas::next
  int successor = -1;  // the slot that took over when this one was retired
};

struct Etas {                // the row etas by rows, with chains by columns
  std::vector<Line> line;    // per update
  std::vector<int> retired;  // per update: the slot it retired
  File file;
  std::vector<int> next;    // per entry: the older entry of the same column, or -1
  std::vector<int> update;  // per entry: the update it belongs to
};

/* What one update overwrote, so that it can be taken back: updates are undone in reverse order. Entries that
 * an update wrote behind the used part of a file, or behind the end of a line, need no record: they are out
 * of reach once ends are back where they were. */
struct UpdateRecord {
  int position = 0, retired = 0;  // position of the replaced column, and its slot until then
  PivotLine u_column, u_row;      // of the retired slot
  int u_row_capacity = 0;
  int u_columns_used = 0, u_rows_used = 0, etas_used = 0;
  struct Row {
    int slot;
    PivotLine line;
    int capacity;
  };
  struct Link {
    int slot, eta;
  };
  std::vector<Row> rows;    // rows of U that the spike extended
  std::vector<Link> links;  // newest eta entries that the row eta displaced
};

struct Lu {
  int rows = 0;          // m
  int updates = 0;       // since the build
  int update_limit = 0;  // slots are allocated for so many
  int logicals = 0;      // slots below hold logicals pivoted first
  int first_l = 0;       // slots below have neither a row nor a column in L

  std::vector<int> label;          // slot -> row of the pivot = position of its column in the basis
  std::vector<int> row_slot;       // row -> slot in L (never retired)
  std::vector<int> position_slot;  // position -> its slot in U at present

  std::vector<Line> l_column, l_row;  // per slot < m
  File l_columns, l_rows;
  std::vector<PivotLine> u_column, u_row;  // per slot < m + update_limit
  std::vector<int> u_row_capacity;
  File u_columns, u_rows;
  Etas etas;
  std::vector<SlotLinks> links;
  bool recording = false;             // updates append to `records`
  std::vector<UpdateRecord> records;  // of the updates since recording began, first `recorded` valid
  int recorded = 0;

  int slots() const { return rows + updates; }
  /* The factor of another, without its records: what is in use only, into memory that is there. */
  void copy(const Lu& other);
};

}  // namespace tovik::lp::factor
