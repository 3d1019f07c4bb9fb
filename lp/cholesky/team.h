/* Threads that share the pieces of one job after another. The calling thread is worker 0 and works too.
 * Order   run() by one thread at a time. Which worker does which piece is not determined; pieces must not care.
 * Waiting jobs follow each other closely: who waits for the next one, or for the last piece, looks for it some ten microseconds
 *         long before it sleeps.
 * Errors  what a piece throws ends the program: pieces catch their own. */
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tovik::lp::cholesky {

class Team {
 public:
  using Piece = std::function<void(int piece, int worker)>;
  using Idle = std::function<void()>;

  explicit Team(int workers);
  ~Team();
  Team(const Team&) = delete;
  Team& operator=(const Team&) = delete;

  int workers() const { return static_cast<int>(threads_.size()) + 1; }
  /* Pieces begin in ascending order. While worker 0 has nothing left to do, `idle` is called some ten times a second. */
  void run(int pieces, const Piece& work, const Idle& idle);

 private:
  /* Pieces of which job are to be had: its number above, the next piece below. One word, so that nobody takes a piece of a
   * job whose work it has not read. */
  using Ticket = std::uint64_t;
  static constexpr int kPieceBits = 32;
  static constexpr Ticket kNoPiece = 0x7fffffff;
  static std::uint32_t job_of(Ticket ticket) { return static_cast<std::uint32_t>(ticket >> kPieceBits); }
  static int piece_of(Ticket ticket) { return static_cast<int>(ticket & 0xffffffffU); }

  void follow(int worker);
  void work_at(std::uint32_t job, int worker);

  std::vector<std::thread> threads_;
  std::atomic<Ticket> ticket_ = 0;
  std::atomic<const Piece*> work_ = nullptr;
  std::atomic<int> pieces_ = 0, unfinished_ = 0;
  std::atomic<bool> closing_ = false;
  std::mutex mutex_;  // for those who sleep
  std::condition_variable begun_, ended_;
};

}  // namespace tovik::lp::cholesky
