#include "lp/cholesky/scratch_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace tovik::lp::cholesky {
namespace {

constexpr std::int64_t kMostAtOnce = std::int64_t{1} << 30;  // bytes that one call of the system is asked for

/* All of `bytes` by calls that may do a part of it. */
template <class Call>
bool complete(std::int64_t bytes, const Call& call) {
  for (std::int64_t done = 0; done < bytes;) {
    const std::int64_t now = call(done, std::min(bytes - done, kMostAtOnce));
    if (now < 0 && errno == EINTR) continue;
    if (now <= 0) return false;
    done += now;
  }
  return true;
}

}  // namespace

ScratchFile::~ScratchFile() {
  close();
}

void ScratchFile::close() {
  if (file_ >= 0) ::close(std::exchange(file_, -1));
}

State ScratchFile::open(const std::string& directory, std::int64_t bytes) {
  directory_ = (directory.empty() ? "." : directory) + "/tovikXXXXXX";
  if (::mkdtemp(directory_.data()) == nullptr) return State::file_not_opened;
  const std::string name = directory_ + "/tvktmp1";
  file_ = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file_ >= 0) ::unlink(name.c_str());
  ::rmdir(directory_.c_str());
  if (file_ < 0) return State::file_not_opened;
  const State state = reserve(bytes);
  if (state != State::done) close();
  return state;
}

/* A write beyond the process's limit of a file's size would raise a signal that ends the program. */
State ScratchFile::reserve(std::int64_t bytes) const {
  rlimit limit{};
  if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
      static_cast<std::uint64_t>(bytes) > limit.rlim_cur)
    return State::file_not_written;
  int failed = 0;
  do {
    failed = ::fallocate(file_, 0, 0, bytes);
  } while (failed != 0 && errno == EINTR);
  return failed == 0 || errno == EOPNOTSUPP || errno == ENOSYS ? State::done : State::file_not_written;
}

State ScratchFile::write(std::int64_t at, const void* data, std::int64_t bytes) const {
  const auto* const from = static_cast<const char*>(data);
  return complete(bytes,
                  [&](std::int64_t done, std::int64_t count) {
                    return ::pwrite(file_, from + done, static_cast<std::size_t>(count), at + done);
                  })
             ? State::done
             : State::file_not_written;
}

State ScratchFile::read(std::int64_t at, void* data, std::int64_t bytes) const {
  auto* const to = static_cast<char*>(data);
  return complete(bytes,
                  [&](std::int64_t done, std::int64_t count) {
                    return ::pread(file_, to + done, static_cast<std::size_t>(count), at + done);
                  })
             ? State::done
             : State::file_not_read;
}

}  // namespace tovik::lp::cholesky
