#include "fileio/stream/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>

namespace tovik::fileio {
namespace {

/* What the child starts with. */
class SpawnSetup {
 public:
  SpawnSetup(int input, int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    connect(input, STDIN_FILENO, O_RDONLY);
    connect(output, STDOUT_FILENO, O_WRONLY);
    connect(-1, STDERR_FILENO, O_WRONLY);
    sigset_t none, defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &defaults);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;
  ~SpawnSetup() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  /* -1 when the program cannot be started. */
  pid_t start(char* const* arguments) const {
    const char* const folders = std::getenv("PATH");
    std::string path = std::string("PATH=") + (folders != nullptr ? folders : "/usr/bin:/bin");
    char* environment[] = {path.data(), nullptr};
    pid_t child = -1;
    const int code = posix_spawnp(&child, arguments[0], &actions_, &attributes_, arguments, environment);
    return code == 0 ? child : -1;
  }

 private:
  void connect(int from, int to, int flags) {
    if (from >= 0) {
      posix_spawn_file_actions_adddup2(&actions_, from, to);
    } else {
      posix_spawn_file_actions_addopen(&actions_, to, "/dev/null", flags, 0);
    }
  }

  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

/* Holds back, in this thread, a signal that a write may raise beside its error: at a closed pipe, or at the
 * largest size that a file may have. */
class BlockedSignal {
 public:
  explicit BlockedSignal(int signal) {
    sigemptyset(&signal_);
    sigaddset(&signal_, signal);
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, signal) == 1;
    if (!was_pending_) pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  ~BlockedSignal() {
    if (was_pending_) return;
    const int code = errno;
    if (raised_) {
      const timespec at_once{};
      while (sigtimedwait(&signal_, nullptr, &at_once) < 0 && errno == EINTR) {
      }
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    errno = code;
  }
  BlockedSignal(const BlockedSignal&) = delete;
  BlockedSignal& operator=(const BlockedSignal&) = delete;
  void note_raised() { raised_ = true; }

 private:
  sigset_t signal_, before_;
  bool was_pending_ = false, raised_ = false;
};

Descriptor above_standard(Descriptor end) {
  if (!end.valid() || end.get() > STDERR_FILENO) return end;
  return Descriptor(::fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

bool Descriptor::close() {
  return number_ < 0 || ::close(std::exchange(number_, -1)) == 0 || errno == EINTR;
}

Descriptor open_descriptor(const char* name, int flags, mode_t mode) {
  int number;
  do {
    number = ::open(name, flags | O_CLOEXEC, mode);
  } while (number < 0 && errno == EINTR);
  return above_standard(Descriptor(number));
}

Pipe make_pipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return Pipe{Descriptor(), Descriptor()};
  Pipe made{Descriptor(ends[0]), Descriptor(ends[1])};
  made.reading = above_standard(std::move(made.reading));
  made.writing = above_standard(std::move(made.writing));
  return made;
}

ssize_t read_some(int descriptor, char* buffer, std::size_t capacity) {
  ssize_t count;
  do {
    count = ::read(descriptor, buffer, capacity);
  } while (count < 0 && errno == EINTR);
  return count;
}

bool write_all(int descriptor, const char* bytes, std::size_t count) {
  BlockedSignal pipe(SIGPIPE), size(SIGXFSZ);
  while (count != 0) {
    const ssize_t written = ::write(descriptor, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      if (written < 0 && errno == EPIPE) pipe.note_raised();
      if (written < 0 && errno == EFBIG) size.note_raised();
      return false;
    }
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

Child::Child(std::vector<std::string> arguments, int input, int output) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  id_ = SpawnSetup(input, output).start(pointers.data());
}

bool Child::wait() {
  if (id_ < 0) return false;
  int status = 0;
  pid_t waited;
  do {
    waited = ::waitpid(id_, &status, 0);
  } while (waited < 0 && errno == EINTR);
  lost_ = waited < 0;
  const bool fine = waited == id_ && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  id_ = -1;
  return fine;
}

}  // namespace tovik::fileio
