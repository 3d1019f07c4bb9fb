/* The numbers of L by supernodes, where they are made and where they stand.
 * In core      all in memory.
 * Out of core  those of the last supernodes, which are eliminated last and solved with last and first, in memory as far as that
 *              reaches; all before them in a file. A worker eliminates in a window of its own; consecutive panels share it
 *              and are written together when it is full.
 * Trust        a checksum by panel, made when it is finished and compared when it is read: what the system tells of a disk's
 *              errors late or never shows here. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "lp/cholesky/scratch_file.h"
#include "lp/cholesky/symbolic.h"

namespace tovik::lp::cholesky {

/* Room for numbers first .. first + count - 1 of all panels, at addresses that are the same modulo a cache line wherever it
 * is: BLAS sums in an order that depends on them. */
class PanelMemory {
 public:
  void allocate(std::int64_t count);  // whatever the first is
  double* at(std::int64_t first) const { return memory_.get() + first % kLine; }

 private:
  static constexpr std::int64_t kLine = 8;  // numbers
  struct Free {
    void operator()(double* memory) const;
  };
  std::unique_ptr<double[], Free> memory_;
};

class Panels {
 public:
  /* Who works on them, and what memory they may take. */
  struct Use {
    int workers = 1;                // worker 0 eliminates any panel,
    std::int64_t largest_task = 0;  // the others those up to that many numbers
    double work_memory = 0;   // bytes: all panels, or else what stays in memory with what is `beside` them
    std::int64_t beside = 0;  // bytes
  };

  Panels(const Symbolic& symbolic, const Use& use);

  const Storage& storage() const { return storage_; }

  /* Memory and file. Throws std::bad_alloc. */
  [[nodiscard]] State allocate(const std::string& directory);

  /* Before a factorization. */
  void restart();
  /* Where `worker` eliminates s; what it eliminated before may leave memory now. */
  [[nodiscard]] State begin(int s, int worker, double** panel);
  void finish(int s, const double* panel);
  /* After the last one of `worker`. */
  [[nodiscard]] State flush(int worker);

 private:
  friend class PanelReader;
  struct Window {
    PanelMemory memory;
    std::int64_t first = 0, used = 0;  // numbers: which part of all panels it holds
  };

  std::int64_t size(int s) const { return symbolic_.panel[s + 1] - symbolic_.panel[s]; }
  double* resident(int s) const {
    const std::int64_t first = symbolic_.panel[first_resident_];
    return resident_.at(first) + (symbolic_.panel[s] - first);
  }
  bool in_file(int s) const { return s < first_resident_; }
  std::int64_t window_size(int worker) const;  // numbers
  std::int64_t buffers() const;                // bytes of windows, and of blocks that are read
  void choose_residents();
  void make_blocks();
  [[nodiscard]] State load(int block, double* to) const;

  const Symbolic& symbolic_;
  const Use use_;
  Storage storage_;
  std::int64_t total_ = 0;            // bytes of all panels
  std::int64_t largest_in_file_ = 0;  // numbers of a panel
  int first_resident_ = 0;
  PanelMemory resident_;
  ScratchFile file_;
  std::vector<Window> windows_;
  std::vector<std::uint64_t> checksum_;  // by supernode that is in the file
  std::vector<int> block_;  // supernodes with which blocks that are read at once begin; the last one's end
};

/* Panels in the order of one forward and one backward solve: ascending, then descending. Blocks are read ahead by a thread of
 * its own into two buffers. panel() throws FileError. */
class PanelReader {
 public:
  explicit PanelReader(const Panels& panels);
  ~PanelReader();
  PanelReader(const PanelReader&) = delete;
  PanelReader& operator=(const PanelReader&) = delete;

  /* Valid until the next call. */
  const double* panel(int s) { return s >= panels_.first_resident_ ? panels_.resident(s) : from_file(s); }

 private:
  struct Ahead;

  const double* from_file(int s);

  const Panels& panels_;
  std::unique_ptr<Ahead> ahead_;  // null: all is in memory
};

}  // namespace tovik::lp::cholesky
