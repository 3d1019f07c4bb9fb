#include "fileio/stream/input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "env/environment.h"

namespace tovik::fileio {
namespace {

constexpr int kStep = 50;  // milliseconds between two looks at the flag
/* A single read of a regular file, after which the flag is looked at again. */
constexpr std::size_t kLargestRead = std::size_t{1} << 24;

const char* cause_of(int code) {
  switch (code) {
    case ENOENT:
    case ENOTDIR:
      return "there is no such file";
    case EACCES:
    case EPERM:
      return "there is no permission to read it";
    case EISDIR:
      return "it is a directory";
    default:
      return "the system refuses to open it";
  }
}

}  // namespace

Input::Input(const Environment& env, const char* name)
    : env_(&env), file_(open_descriptor(name, O_RDONLY | O_NONBLOCK | O_NOCTTY)) {
  if (!file_.valid()) {
    cause_ = cause_of(errno);
    return;
  }
  struct stat info {};
  const bool known = ::fstat(file_.get(), &info) == 0;
  if (!known || S_ISDIR(info.st_mode)) {
    cause_ = cause_of(known ? EISDIR : errno);
    file_.close();
    return;
  }
  waits_ = !S_ISREG(info.st_mode);
}

Input::Input(const Environment& env, Descriptor pipe) : env_(&env), file_(std::move(pipe)), waits_(true) {}

bool Input::interrupted() const {
  return env_->callbacks.terminate != nullptr && *env_->callbacks.terminate != 0;
}

bool Input::wait() const {
  pollfd watched{file_.get(), POLLIN, 0};
  for (;;) {
    if (interrupted()) return false;
    const int ready = ::poll(&watched, 1, kStep);
    if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
  }
}

std::size_t Input::read_file(char* buffer, std::size_t capacity) {
  for (;;) {
    if (failed_ || interrupted() || (waits_ && !wait())) break;
    const ssize_t count = read_some(file_.get(), buffer, std::min(capacity, kLargestRead));
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EAGAIN && errno != EWOULDBLOCK) break;
    waits_ = true;
  }
  failed_ = true;
  return 0;
}

std::string_view Input::look() {
  while (head_end_ < kLook) {
    const std::size_t count = read_file(head_ + head_end_, kLook - head_end_);
    if (count == 0) break;
    head_end_ += count;
  }
  return {head_ + head_begin_, head_end_ - head_begin_};
}

std::size_t Input::read(char* buffer, std::size_t capacity) {
  if (head_begin_ == head_end_) return read_file(buffer, capacity);
  const std::size_t count = std::min(capacity, head_end_ - head_begin_);
  std::memcpy(buffer, head_ + head_begin_, count);
  head_begin_ += count;
  return count;
}

std::size_t Input::size() const {
  struct stat info {};
  return ::fstat(file_.get(), &info) == 0 && S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size)
                                                                   : 0;
}

bool Input::rewind() {
  head_begin_ = head_end_ = 0;
  return ::lseek(file_.get(), 0, SEEK_SET) == 0;
}

}  // namespace tovik::fileio
