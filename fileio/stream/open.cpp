/* Opening a file for reading, whatever it is compressed by. */
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "env/environment.h"
#include "fileio/stream/codec.h"
#include "fileio/stream/input.h"
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

class FileSource final : public ByteSource {
 public:
  explicit FileSource(Input input) : input_(std::move(input)) {}
  std::size_t read(char* buffer, std::size_t capacity) override { return input_.read(buffer, capacity); }
  bool finish() override { return !input_.failed(); }
  bool failed() const override { return input_.failed(); }
  std::size_t expected_size() const override { return input_.size(); }

 private:
  Input input_;
};

/* Reads what is left, so that the end of the file can be judged. */
void skip_rest(ByteSource& source) {
  char rest[4096];
  while (source.read(rest, sizeof rest) != 0) {
  }
}

class DecodedSource final : public ByteSource {
 public:
  DecodedSource(Input input, Codec codec)
      : input_(std::move(input)),
        block_(std::make_unique_for_overwrite<char[]>(kBlock)),
        decoder_(make_decoder(codec)) {}

  std::size_t read(char* buffer, std::size_t capacity) override {
    char* output = buffer;
    std::size_t room = capacity;
    while (!ended_ && !failed_ && output == buffer) {
      if (rest_.empty() && !last_) refill();
      failed_ = failed_ || input_.interrupted();
      if (failed_) break;
      const Decoder::State state = decoder_->step(rest_, output, room, last_);
      ended_ = state == Decoder::State::ended;
      failed_ = state == Decoder::State::damaged;
    }
    return static_cast<std::size_t>(output - buffer);
  }
  bool finish() override {
    skip_rest(*this);
    return ended_ && !failed_;
  }
  bool failed() const override { return failed_; }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;
  void refill() {
    const std::size_t count = input_.read(block_.get(), kBlock);
    rest_ = {block_.get(), count};
    last_ = count == 0;
    failed_ = input_.failed();
  }

  Input input_;
  std::unique_ptr<char[]> block_;
  std::unique_ptr<Decoder> decoder_;
  std::string_view rest_;  // of the block
  bool last_ = false, ended_ = false, failed_ = false;
};

/* The output of a program that decodes. */
class ChildSource final : public ByteSource {
 public:
  ChildSource(const Environment& env, Descriptor pipe) : pipe_(env, std::move(pipe)) {}
  /* Once, after the object is there: a child that is running is always waited for, its pipe closed before. */
  bool start(std::vector<std::string> program, int input, int output) {
    child_ = Child(std::move(program), input, output);
    return child_.started();
  }
  std::size_t read(char* buffer, std::size_t capacity) override {
    if (ended_ || failed_) return 0;
    const std::size_t count = pipe_.read(buffer, capacity);
    ended_ = count == 0;
    if (!ended_) return count;
    pipe_.close();
    failed_ = !child_.wait() || pipe_.failed();
    return 0;
  }
  bool finish() override {
    skip_rest(*this);
    return !failed_;
  }
  bool failed() const override { return failed_; }
  const char* cause() const override {
    return child_.lost()
               ? "nobody can tell whether the program that decodes it ended well (is SIGCHLD ignored?)"
               : ByteSource::cause();
  }

 private:
  Child child_;  // waited for when its pipe is closed
  Input pipe_;
  bool ended_ = false, failed_ = false;
};

std::vector<std::string> program_of(Codec codec) {
  switch (codec) {
    case Codec::xz:
      return {"xz", "-dc"};
    case Codec::zstd:
      return {"zstd", "-dcq"};
    default:
      return {"gzip", "-dc"};
  }
}

/* Null, and the cause, where the file cannot be read like this. */
std::unique_ptr<ByteSource> open_by_program(const Environment& env, Input file, Codec codec,
                                            const char** cause) {
  *cause = "the program that decodes it cannot be run";
  std::vector<std::string> program = program_of(codec);
  Pipe pipe = make_pipe();
  if (!pipe.valid() || !file.rewind()) return nullptr;
  auto source = std::make_unique<ChildSource>(env, std::move(pipe.reading));
  if (!source->start(std::move(program), file.descriptor(), pipe.writing.get())) return nullptr;
  return source;
}

std::unique_ptr<ByteSource> open_content(const Environment& env, Input input, const OpenRequest& request,
                                         const char** cause) {
  const Codec codec = request.allow_compressed ? codec_of(input.look()) : Codec::none;
  const bool promised = request.allow_compressed && compression_of(request.name) != Compression::none;
  if (promised && codec == Codec::none) {
    *cause = "it is not compressed as its name says";
    return nullptr;
  }
  if (codec == Codec::none) return std::make_unique<FileSource>(std::move(input));
  if (codec == Codec::gzip || codec == Codec::bzip2)
    return std::make_unique<DecodedSource>(std::move(input), codec);
  return open_by_program(env, std::move(input), codec, cause);
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
  const bool compressed = request.allow_compressed && compression_of(request.name) != Compression::none;
  Input input(env, request.name);
  const char* cause = input.cause();
  std::string extended;
  if (!input.open() && !compressed && request.default_extension != nullptr) {
    extended = extended_name(request.name, request.default_extension);
    if (!extended.empty()) input = Input(env, extended.c_str());
  }
  if (input.open()) source = open_content(env, std::move(input), request, &cause);
  if (source != nullptr) return {};
  message(env.warning_channel, "Warning:  '%.255s' is not read: %s.\n", request.name, cause);
  const Status status = fail(env, TVK_ERROR_OPEN_FOR_READING, request.name);
  return extended.empty() ? status : fail(env, TVK_ERROR_OPEN_FOR_READING, extended.c_str());
}

Status close_source(Environment& env, ByteSource& source, bool reader_failed, const char* name) {
  if (reader_failed ? !source.failed() : source.finish()) return {};
  message(env.warning_channel, "Warning:  '%.255s' is not read: %s.\n", name, source.cause());
  return fail(env, TVK_ERROR_OPEN_FOR_READING, name);
}

}  // namespace tovik::fileio
