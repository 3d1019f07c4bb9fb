#include "lp/cholesky/team.h"

#include <chrono>
#include <system_error>

#include "lp/cholesky/flush_to_zero.h"

namespace tovik::lp::cholesky {

Team::Team(int workers) {
  for (int worker = 1; worker < workers; ++worker) {
    try {
      threads_.emplace_back(&Team::follow, this, worker);
    } catch (const std::system_error&) {
      break;  // the machine has no more threads to give: fewer do the same work
    }
  }
}

Team::~Team() {
  {
    const std::scoped_lock lock(mutex_);
    closing_ = true;
  }
  begun_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool Team::take(int& piece) {
  const std::scoped_lock lock(mutex_);
  if (next_ >= pieces_) return false;
  piece = next_++;
  return true;
}

void Team::run(int pieces, const Piece& work, const Idle& idle) {
  if (threads_.empty() || pieces <= 1) {
    for (int piece = 0; piece < pieces; ++piece) work(piece, 0);
    return;
  }
  {
    const std::scoped_lock lock(mutex_);
    work_ = &work;
    pieces_ = unfinished_ = pieces;
    next_ = 0;
  }
  begun_.notify_all();
  int done = 0;
  for (int piece = 0; take(piece); ++done) work(piece, 0);
  std::unique_lock lock(mutex_);
  unfinished_ -= done;
  while (unfinished_ > 0) {
    ended_.wait_for(lock, std::chrono::milliseconds(100), [&] { return unfinished_ == 0; });
    if (unfinished_ == 0) break;
    lock.unlock();
    idle();
    lock.lock();
  }
  pieces_ = 0;
}

void Team::follow(int worker) {
  const FlushToZero flush;
  std::unique_lock lock(mutex_);
  while (true) {
    begun_.wait(lock, [&] { return closing_ || next_ < pieces_; });
    if (closing_) return;
    const Piece& work = *work_;
    while (next_ < pieces_) {
      const int piece = next_++;
      lock.unlock();
      work(piece, worker);
      lock.lock();
      if (--unfinished_ == 0) ended_.notify_one();
    }
  }
}

}  // namespace tovik::lp::cholesky
