#include "cli/input.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace tovik::cli {

namespace {

constexpr std::size_t kBlock = 1 << 16;
std::atomic<const char*> temporary_path{
    nullptr};  // for remove_temporary_file(), which may run on another thread

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/* The name ending for what the first bytes show. */
std::string_view suffix_of(std::string_view head) {
  if (head.substr(0, 2) == "\x1f\x8b") return ".gz";
  if (head.substr(0, 3) == "BZh") return ".bz2";
  return "";
}

std::size_t read_block(std::vector<char>& block) {
  const std::size_t count = std::fread(block.data(), 1, block.size(), stdin);
  if (count == 0 && std::ferror(stdin) != 0) fail("standard input");
  return count;
}

std::string template_name(std::string_view suffix) {
  const char* folder = std::getenv("TMPDIR");
  return std::string(folder == nullptr || *folder == '\0' ? P_tmpdir : folder) + "/tovik-XXXXXX" +
         std::string(suffix);
}

}  // namespace

class Input::TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view suffix) : path_(template_name(suffix)) {
    const int descriptor = mkstemps(path_.data(), static_cast<int>(suffix.size()));
    if (descriptor < 0) fail("temporary file for standard input");
    temporary_path = path_.c_str();
    stream_ = fdopen(descriptor, "wb");
    if (stream_ == nullptr) close(descriptor);
  }
  ~TemporaryFile() {
    if (stream_ != nullptr) std::fclose(stream_);
    unlink(path_.c_str());
    temporary_path = nullptr;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }
  void write(const char* bytes, std::size_t count) {
    if (stream_ == nullptr || std::fwrite(bytes, 1, count, stream_) != count) fail(path_.c_str());
  }
  void finish() {
    FILE* stream = stream_;
    stream_ = nullptr;
    if (stream == nullptr || std::fclose(stream) != 0) fail(path_.c_str());
  }

 private:
  std::string path_;
  FILE* stream_ = nullptr;
};

Input::Input(const std::string& file) : path_(file) {
  if (file != "-") return;
  std::vector<char> block(kBlock);
  std::size_t count = read_block(block);
  temporary_ = std::make_unique<TemporaryFile>(suffix_of({block.data(), count}));
  for (; count > 0; count = read_block(block)) temporary_->write(block.data(), count);
  temporary_->finish();
  path_ = temporary_->path();
}

Input::~Input() = default;

bool is_network_file(const std::string& file) {
  std::filesystem::path path(file);
  const auto extension = [&path] {
    std::string text = path.extension().string();
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
  };
  const auto is_one_of = [](const std::string& text, std::initializer_list<const char*> names) {
    return std::ranges::find(names, text) != names.end();
  };
  if (is_one_of(extension(), {".gz", ".bz2", ".z", ".xz", ".zst"})) path.replace_extension();
  return is_one_of(extension(), {".net", ".min", ".dimacs", ".dmx"});
}

void read_model_file(const Model& model, const std::string& file) {
  const Input input(file);
  const Environment& environment = model.environment();
  const char* const type = is_network_file(file) ? "NET" : nullptr;
  environment.check(TVKreadcopyprob(environment.handle(), model.handle(), input.path().c_str(), type));
}

void refuse_dropped_text(const Model::ReadWarnings& warnings, bool lenient) {
  if (warnings.dropped == 0 || lenient) return;
  throw DroppedText("text of the file is not in the model: " + warnings.warnings.front() +
                    " Correct the file; --lenient takes what was understood.");
}

void Input::remove_temporary_file() {
  if (const char* path = temporary_path) unlink(path);
}

}  // namespace tovik::cli
