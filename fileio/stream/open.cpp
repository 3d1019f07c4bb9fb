/* Opening a file for reading: plain files, and compressed ones through a child process. */
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <utility>

#include "env/environment.h"
#include "fileio/stream/process.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kLongestExtendedName = 511;

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

Descriptor open_plain(const char* name) {
  Descriptor file = open_descriptor(name, O_RDONLY);
  struct stat info {};
  if (file.valid() && (::fstat(file.get(), &info) != 0 || S_ISDIR(info.st_mode))) file.close();
  return file;
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
  ChildSource(Descriptor pipe, Child child) : child_(std::move(child)), pipe_(std::move(pipe)) {}
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
    pipe_.close();
    return child_.wait() && !failed_;
  }

 private:
  Child child_;  // waited for when its pipe is closed
  Descriptor pipe_;
  bool failed_ = false;
};

std::unique_ptr<ByteSource> open_compressed(const char* name, Compression compression) {
  Pipe pipe = make_pipe();
  if (!pipe.valid()) return nullptr;
  Child child({compression == Compression::bzip2 ? "bzip2" : "gzip", "-cd", "--", name}, -1,
              pipe.writing.get());
  if (!child.started()) return nullptr;
  return std::make_unique<ChildSource>(std::move(pipe.reading), std::move(child));
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
