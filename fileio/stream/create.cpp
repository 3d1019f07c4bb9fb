/* Files that appear whole or not at all. */
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "env/environment.h"
#include "fileio/stream/codec.h"
#include "fileio/stream/output.h"
#include "fileio/stream/process.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio {
namespace {

namespace fs = std::filesystem;

/* Forces a file to the disk. Some file systems have no such thing. */
bool synchronize(int descriptor) {
  return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

std::string folder_of(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : name.substr(0, slash);
}

/* A name in the same folder that nobody else uses. */
std::string temporary_name(const std::string& target) {
  std::uint64_t random = 0;
  if (::getrandom(&random, sizeof random, 0) != sizeof random)
    random = reinterpret_cast<std::uintptr_t>(&random);
  char text[32];
  std::snprintf(text, sizeof text, "/.tovik-%016llx", static_cast<unsigned long long>(random));
  return folder_of(target) + text;
}

/* Whether the old file may be overwritten where the system does not let a new one take its place: in a folder
 * that belongs to somebody else, or at a mount point. */
bool wants_overwriting(int code) {
  return code == EACCES || code == EPERM || code == EROFS || code == EBUSY;
}

bool copy_whole(int from, int to) {
  char block[65536];
  if (::lseek(from, 0, SEEK_SET) != 0) return false;
  for (;;) {
    const ssize_t count = read_some(from, block, sizeof block);
    if (count <= 0) return count == 0;
    if (!write_all(to, block, static_cast<std::size_t>(count))) return false;
  }
}

/* The descriptor that the bytes go to, and what makes them the file. */
class Target {
 public:
  Target() = default;
  /* What is open in place: a pipe, a device, a file that no other can replace. */
  explicit Target(Descriptor file) : file_(std::move(file)) {}
  Target(Descriptor file, std::string temporary, std::string name)
      : file_(std::move(file)), temporary_(std::move(temporary)), name_(std::move(name)) {}
  Target(Target&& other) noexcept
      : file_(std::move(other.file_)),
        temporary_(std::exchange(other.temporary_, {})),
        name_(std::move(other.name_)) {}
  Target& operator=(Target&&) = delete;
  ~Target() {
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
  }
  int descriptor() const { return file_.get(); }

  bool commit() {
    if (temporary_.empty()) return file_.close();
    if (!synchronize(file_.get())) return false;
    const std::string folder_name = folder_of(name_);  // nothing may fail once the new file is there
    if (::rename(temporary_.c_str(), name_.c_str()) != 0) return wants_overwriting(errno) && overwrite();
    temporary_.clear();
    const Descriptor folder = open_descriptor(folder_name.c_str(), O_RDONLY | O_DIRECTORY);
    if (folder.valid()) synchronize(folder.get());
    return file_.close();
  }

 private:
  bool overwrite() const {
    Descriptor old = open_descriptor(name_.c_str(), O_WRONLY | O_TRUNC);
    return old.valid() && copy_whole(file_.get(), old.get()) && synchronize(old.get()) && old.close();
  }

  Descriptor file_;
  std::string temporary_;  // empty when there is nothing to rename
  std::string name_;
};

/* Gives the new file the owner, as far as that is allowed, and the permissions of the one that it
 * replaces. */
void inherit(int descriptor, const struct stat& old) {
  if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) {
    // The file then belongs to the one who writes it.
  }
  ::fchmod(descriptor, old.st_mode & 07777);
}

/* The descriptor of this process that a name like /dev/stdout stands for, or -1. */
int own_descriptor(std::string_view name) {
  if (name == "/dev/stdout") return STDOUT_FILENO;
  if (name == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    int number = -1;
    const char* const end = name.data() + name.size();
    const auto parsed = std::from_chars(name.data() + folder.size(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? number : -1;
  }
  return -1;
}

/* The end of a chain of symbolic links, whether there is a file or not; empty when the links lead in a
 * circle. */
std::string end_of_links(std::string name) {
  constexpr int kLongestChain = 40;
  for (int step = 0; step < kLongestChain; ++step) {
    std::error_code none;
    const fs::path next = fs::read_symlink(name, none);
    if (none) return name;
    name = next.is_absolute() ? next.string() : folder_of(name) + '/' + next.string();
  }
  return {};
}

/* A file beside the one that it is to replace; that one itself where no file can be put beside it. */
Target open_beside(const std::string& target, const struct stat* old) {
  int failure = EEXIST;
  for (int attempt = 0; attempt < 100 && failure == EEXIST; ++attempt) {
    std::string temporary = temporary_name(target), name = target;  // nothing may fail once the file is there
    Descriptor file = open_descriptor(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL);
    if (!file.valid()) {
      failure = errno;
      continue;
    }
    if (old != nullptr) inherit(file.get(), *old);
    return Target(std::move(file), std::move(temporary), std::move(name));
  }
  if (old == nullptr || !wants_overwriting(failure)) return {};
  return Target(open_descriptor(target.c_str(), O_WRONLY | O_TRUNC));
}

Target open_target(const char* name) {
  if (const int own = own_descriptor(name); own >= 0) {
    if (own == STDOUT_FILENO) std::fflush(stdout);
    if (own == STDERR_FILENO) std::fflush(stderr);
    return Target(Descriptor(::fcntl(own, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)));
  }
  struct stat old {};
  const bool exists = ::stat(name, &old) == 0;
  if (!exists && errno != ENOENT) return {};
  if (exists && S_ISDIR(old.st_mode)) return {};
  if (exists && !S_ISREG(old.st_mode)) return Target(open_descriptor(name, O_WRONLY | O_NOCTTY));
  if (exists && ::faccessat(AT_FDCWD, name, W_OK, AT_EACCESS) != 0) return {};
  const std::string target = end_of_links(name);
  return target.empty() ? Target() : open_beside(target, exists ? &old : nullptr);
}

class FileSink final : public ByteSink {
 public:
  explicit FileSink(Target target) : target_(std::move(target)) {}
  bool write(const char* bytes, std::size_t count) override {
    fine_ = fine_ && write_all(target_.descriptor(), bytes, count);
    return fine_;
  }
  bool commit() override { return fine_ && target_.commit(); }

 private:
  Target target_;
  bool fine_ = true;
};

/* An encoder between the writer and the file. */
class EncodedSink final : public ByteSink {
 public:
  EncodedSink(Target target, Codec codec)
      : target_(std::move(target)),
        block_(std::make_unique_for_overwrite<char[]>(kBlock)),
        encoder_(make_encoder(codec)) {}
  bool write(const char* bytes, std::size_t count) override {
    std::string_view input(bytes, count);
    while (fine_ && !input.empty()) encode(input, false);
    return fine_;
  }
  bool commit() override {
    std::string_view nothing;
    while (fine_ && !encode(nothing, true)) {
    }
    return fine_ && target_.commit();
  }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;
  bool encode(std::string_view& input, bool last) {
    char* output = block_.get();
    std::size_t room = kBlock;
    const bool ended = encoder_->step(input, output, room, last);
    const std::size_t count = kBlock - room;
    fine_ = count == 0 || write_all(target_.descriptor(), block_.get(), count);
    return ended;
  }

  Target target_;
  std::unique_ptr<char[]> block_;
  std::unique_ptr<Encoder> encoder_;
  bool fine_ = true;
};

}  // namespace

Status create_file(Environment& env, const char* name, std::unique_ptr<ByteSink>& sink) {
  if (name == nullptr || name[0] == '\0') return fail(env, TVK_ERROR_NO_FILE_NAME);
  const Compression compression = compression_of(name);
  Target target = open_target(name);
  if (target.descriptor() < 0) return fail(env, TVK_ERROR_OPEN_FOR_WRITING, name);
  if (compression == Compression::none) {
    sink = std::make_unique<FileSink>(std::move(target));
    return {};
  }
  const Codec codec = compression == Compression::bzip2 ? Codec::bzip2 : Codec::gzip;
  sink = std::make_unique<EncodedSink>(std::move(target), codec);
  return {};
}

void TextWriter::put(std::string_view text) {
  while (text.size() > kLargestPiece) {
    at_ = copy_text(room(kLargestPiece), text.substr(0, kLargestPiece));
    text.remove_prefix(kLargestPiece);
  }
  at_ = copy_text(room(kLargestPiece), text);
}

void TextWriter::print(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  char* to = room(kLargestPiece);
  const int length = std::vsnprintf(to, kLargestPiece, format, arguments);
  va_end(arguments);
  if (length > 0) at_ = to + std::min<std::size_t>(static_cast<std::size_t>(length), kLargestPiece - 1);
}

}  // namespace tovik::fileio
