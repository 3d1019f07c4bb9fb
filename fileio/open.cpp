/* Opening a file for reading: plain files, and compressed ones through a child process. */
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "env/environment.h"
#include "fileio/stream.h"

extern char** environ;

namespace tovik::fileio {
namespace {

constexpr std::size_t kLongestExtendedName = 511;

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/* A file descriptor that closes itself. */
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { close(); }
  void close() {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
  }
  int get() const { return number_; }
  bool valid() const { return number_ >= 0; }

 private:
  int number_;
};

Descriptor open_plain(const char* name) {
  Descriptor file;
  do {
    file = Descriptor(::open(name, O_RDONLY | O_CLOEXEC));
  } while (!file.valid() && errno == EINTR);
  struct stat info {};
  if (file.valid() && (::fstat(file.get(), &info) != 0 || S_ISDIR(info.st_mode))) file.close();
  return file;
}

/* -1 on failure. */
ssize_t read_some(int descriptor, char* buffer, std::size_t capacity) {
  ssize_t count;
  do {
    count = ::read(descriptor, buffer, capacity);
  } while (count < 0 && errno == EINTR);
  return count;
}

class FileSource final : public ByteSource {
 public:
  explicit FileSource(Descriptor file) : file_(std::move(file)) {}
  std::size_t read(char* buffer, std::size_t capacity) override {
    const ssize_t count = failed_ ? 0 : read_some(file_.get(), buffer, capacity);
    failed_ = failed_ || count < 0;
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  bool finish() override { return !failed_; }
  std::size_t expected_size() const override {
    struct stat info {};
    return ::fstat(file_.get(), &info) == 0 && S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size)
                                                                     : 0;
  }

 private:
  Descriptor file_;
  bool failed_ = false;
};

/* The output of a running compressor. */
class ChildSource final : public ByteSource {
 public:
  ChildSource(Descriptor pipe, pid_t child) : pipe_(std::move(pipe)), child_(child) {}
  ~ChildSource() override { wait(); }
  std::size_t read(char* buffer, std::size_t capacity) override {
    const ssize_t count = failed_ ? 0 : read_some(pipe_.get(), buffer, capacity);
    failed_ = failed_ || count < 0;
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  /* Reads what is left, so that the child's exit tells about the whole file. */
  bool finish() override {
    char rest[4096];
    while (read(rest, sizeof rest) != 0) {
    }
    return wait() && !failed_;
  }

 private:
  bool wait() {
    pipe_.close();
    if (child_ < 0) return false;
    int status = 0;
    pid_t waited;
    do {
      waited = ::waitpid(child_, &status, 0);
    } while (waited < 0 && errno == EINTR);
    const bool fine = waited == child_ && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    child_ = -1;
    return fine;
  }

  Descriptor pipe_;
  pid_t child_;
  bool failed_ = false;
};

/* What the child starts with: standard input and error on the null device, its output in the pipe, and the
 * default reaction to a closed pipe whatever the caller's program chose for itself. */
class SpawnSetup {
 public:
  explicit SpawnSetup(int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    // First, since the pipe itself may stand on one of the three when the caller closed them.
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
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
    pid_t child = -1;
    return posix_spawnp(&child, arguments[0], &actions_, &attributes_, arguments, environ) == 0 ? child : -1;
  }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

std::unique_ptr<ByteSource> open_compressed(const char* name, Compression compression) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return nullptr;
  Descriptor reading(ends[0]), writing(ends[1]);
  std::string program = compression == Compression::bzip2 ? "bzip2" : "gzip";
  std::string action = "-cd", separator = "--", file = name;
  char* const arguments[] = {program.data(), action.data(), separator.data(), file.data(), nullptr};
  const pid_t child = SpawnSetup(writing.get()).start(arguments);
  if (child < 0) return nullptr;
  return std::make_unique<ChildSource>(std::move(reading), child);
}

/* The name with the default extension, or empty when the name has that extension already. */
std::string extended_name(std::string_view name, std::string_view extension) {
  std::string small(extension), capital(extension);
  std::transform(small.begin(), small.end(), small.begin(), lower);
  std::transform(capital.begin(), capital.end(), capital.begin(), upper);
  if (ends_with_keyword(name, capital)) return {};
  const std::size_t room = kLongestExtendedName - std::min(kLongestExtendedName, small.size());
  return std::string(name.substr(0, room)) + small;
}

}  // namespace

Status open_for_reading(Environment& env, const OpenRequest& request, std::unique_ptr<ByteSource>& source) {
  if (request.name == nullptr || request.name[0] == '\0') return fail(env, TVK_ERROR_NO_FILE_NAME);
  const Compression compression = request.allow_compressed ? compression_of(request.name) : Compression::none;
  Descriptor file = open_plain(request.name);
  if (compression != Compression::none) {
    if (file.valid()) source = open_compressed(request.name, compression);
    if (!file.valid() || source == nullptr) return fail(env, TVK_ERROR_OPEN_FOR_READING, request.name);
    return {};
  }
  std::string extended;
  if (!file.valid() && request.default_extension != nullptr) {
    extended = extended_name(request.name, request.default_extension);
    if (!extended.empty()) file = open_plain(extended.c_str());
  }
  if (!file.valid()) {
    const Status status = fail(env, TVK_ERROR_OPEN_FOR_READING, request.name);
    return extended.empty() ? status : fail(env, TVK_ERROR_OPEN_FOR_READING, extended.c_str());
  }
  source = std::make_unique<FileSource>(std::move(file));
  return {};
}

}  // namespace tovik::fileio
