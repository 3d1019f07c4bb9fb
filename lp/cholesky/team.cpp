#include "lp/cholesky/team.h"

#include <chrono>
#include <system_error>

#include "lp/cholesky/flush_to_zero.h"

namespace tovik::lp::cholesky {
namespace {

constexpr int kLooks = 1000;  // before sleeping

void pause() {
#if defined(__x86_64__)
  __builtin_ia32_pause();
#else
  std::this_thread::yield();
#endif
}

template <class Condition>
bool comes_soon(const Condition& condition) {
  for (int look = 0; look < kLooks; ++look) {
    if (condition()) return true;
    pause();
  }
  return false;
}

}  // namespace

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

void Team::run(int pieces, const Piece& work, const Idle& idle) {
  if (threads_.empty() || pieces <= 1) {
    for (int piece = 0; piece < pieces; ++piece) work(piece, 0);
    return;
  }
  const std::uint32_t job = job_of(ticket_) + 1;
  {
    const std::scoped_lock lock(mutex_);
    ticket_ = ticket_ | kNoPiece;  // nobody takes a piece of the last job for one of this
    work_ = &work;
    pieces_ = pieces;
    unfinished_ = pieces;
    ticket_ = static_cast<Ticket>(job) << kPieceBits;
  }
  begun_.notify_all();
  work_at(job, 0);
  const auto is_over = [&] { return unfinished_ == 0; };
  if (comes_soon(is_over)) return;
  std::unique_lock lock(mutex_);
  while (!ended_.wait_for(lock, std::chrono::milliseconds(100), is_over)) {
    lock.unlock();
    idle();
    lock.lock();
  }
}

/* Work and pieces are those of `job` if the ticket is still of it after they were read. */
void Team::work_at(std::uint32_t job, int worker) {
  Ticket ticket = ticket_;
  while (true) {
    const Piece* const work = work_;
    const int pieces = pieces_;
    if (job_of(ticket) != job || piece_of(ticket) >= pieces) return;
    if (!ticket_.compare_exchange_weak(ticket, ticket + 1)) continue;
    (*work)(piece_of(ticket), worker);
    if (--unfinished_ == 0 && worker != 0) {
      { const std::scoped_lock lock(mutex_); }
      ended_.notify_one();
    }
    ticket = ticket_;
  }
}

void Team::follow(int worker) {
  const FlushToZero flush;
  std::uint32_t seen = 0;
  const auto is_called = [&] { return closing_ || job_of(ticket_) != seen; };
  while (true) {
    if (!comes_soon(is_called)) {
      std::unique_lock lock(mutex_);
      begun_.wait(lock, is_called);
    }
    if (closing_) return;
    seen = job_of(ticket_);
    work_at(seen, worker);
  }
}

}  // namespace tovik::lp::cholesky
