/* Threads that share the pieces of one job after another. The calling thread is worker 0 and works too.
 * Order   run() by one thread at a time. Which worker does which piece is not determined; pieces must not care.
 * Errors  what a piece throws ends the program: pieces catch their own. */
#pragma once

#include <condition_variable>
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
  void follow(int worker);
  bool take(int& piece);

  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable begun_, ended_;
  const Piece* work_ = nullptr;
  int pieces_ = 0, next_ = 0, unfinished_ = 0;
  bool closing_ = false;
};

}  // namespace tovik::lp::cholesky
