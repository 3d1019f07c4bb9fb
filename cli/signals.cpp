#include "cli/signals.h"

#include <unistd.h>
#include <csignal>
#include <cstdlib>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace tovik::cli {

namespace {

/* What a signal handler may touch: lock-free words and a pipe. */
volatile int terminate_flag_word = 0;
std::atomic<int> signals_seen{0};
int wake_pipe[2] = {-1, -1};
static_assert(std::atomic<int>::is_always_lock_free);

constexpr int kInterrupted = 130;
constexpr char kStop = 's', kQuit = 'q';

void on_signal(int) {
  const int seen = signals_seen.fetch_add(1) + 1;
  terminate_flag_word = 1;
  if (seen >= 3) _exit(kInterrupted);
  [[maybe_unused]] const ssize_t written = write(wake_pipe[1], &kStop, 1);
}

}  // namespace

struct Signals::Watcher {
  std::function<int()> on_interrupt;
  std::atomic<bool> exit_on_first{false};
  std::thread thread;

  void run() {
    char word = 0;
    while (read(wake_pipe[0], &word, 1) == 1 && word != kQuit) {
      if (signals_seen >= 2 || exit_on_first) _exit(on_interrupt());
    }
  }
};

Signals::Signals(std::function<int()> on_interrupt)
    : watcher_(new Watcher{std::move(on_interrupt), false, {}}) {
  if (pipe(wake_pipe) != 0) {
    delete watcher_;
    throw std::runtime_error("no pipe for signals");
  }
  watcher_->thread = std::thread([watcher = watcher_] { watcher->run(); });
  struct sigaction action {};
  action.sa_handler = on_signal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

Signals::~Signals() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  [[maybe_unused]] const ssize_t written = write(wake_pipe[1], &kQuit, 1);
  watcher_->thread.join();
  delete watcher_;
  close(wake_pipe[0]);
  close(wake_pipe[1]);
}

volatile int* Signals::terminate_flag() const {
  return &terminate_flag_word;
}

Signals::ExitOnFirstSignal::ExitOnFirstSignal(Signals& signals) : signals_(signals) {
  signals_.watcher_->exit_on_first = true;
}

Signals::ExitOnFirstSignal::~ExitOnFirstSignal() {
  signals_.watcher_->exit_on_first = false;
}

}  // namespace tovik::cli
