/* The numbers of L by supernodes, where they are made and where they stand.
 * In core      all in memory.
 * Out of core  in a file, but the largest stay where the buffers that they need would take more memory than they do, and those
 *              of the last supernodes as far as the memory reaches. A worker eliminates in a window of its own; panels that
 *              follow each other share it and are written together when it is full.
 * Trust        a checksum by panel, made when it is finished and compared when it is read: what the system tells of a disk's
 *              errors late or never shows here. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "lp/cholesky/scratch_file.h"
#include "lp/cholesky/symbolic.h"

namespace tovik::lp::cholesky {

/* Room for the numbers at places first .. first + count - 1, at addresses that are the same modulo a cache line wherever it is:
 * BLAS sums in an order that depends on them. */
class PanelMemory {
 public:
  static constexpr std::int64_t kLine = 8;  // numbers

  void allocate(std::int64_t count);  // whatever the first is
  double* at(std::int64_t first) const { return memory_.get() + first % kLine; }

 private:
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
    std::int64_t first = 0, used = 0;  // numbers: which part of the file it holds
  };
  struct Block {  // what is read at once
    int begin, end;
    std::int64_t first, last;  // places
  };

  std::int64_t size(int s) const { return symbolic_.panel[s + 1] - symbolic_.panel[s]; }
  double* resident(int s) const { return resident_.at(0) + place_[s]; }
  std::int64_t window_size(int worker) const;  // numbers
  std::int64_t buffers() const;                // bytes of windows, and of blocks that are read
  double needed() const { return static_cast<double>(kept_ + buffers() + use_.beside); }
  void keep(int s);
  void choose_residents();
  void give_places();
  [[nodiscard]] State load(const Block& block, double* to) const;

  const Symbolic& symbolic_;
  const Use use_;
  Storage storage_;
  std::int64_t kept_ = 0;                           // bytes of panels in memory
  std::int64_t largest_in_file_ = 0;                // numbers; no panel there is larger
  std::vector<bool> in_file_;                       // by supernode
  std::vector<std::int64_t> place_;                 // in memory or in the file, symbolic.panel modulo a line
  std::int64_t file_size_ = 0, resident_size_ = 0;  // numbers
  std::vector<Block> blocks_;
  PanelMemory resident_;
  ScratchFile file_;
  std::vector<Window> windows_;
  std::vector<std::uint64_t> checksum_;  // by supernode
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
  const double* panel(int s) { return panels_.in_file_[s] ? from_file(s) : panels_.resident(s); }

 private:
  struct Ahead;

  const double* from_file(int s);

  const Panels& panels_;
  std::unique_ptr<Ahead> ahead_;  // null: all is in memory
};

}  // namespace tovik::lp::cholesky
