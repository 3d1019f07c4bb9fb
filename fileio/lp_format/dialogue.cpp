#include "fileio/lp_format/dialogue.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "fileio/lp_format/keywords.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

/* The lines typed so far, then the input, never more than one line at a time. */
class TypedLines final : public ByteSource {
 public:
  explicit TypedLines(std::FILE* input) : input_(input) {}
  std::size_t read(char* buffer, std::size_t capacity) override;
  bool finish() override { return !failed_; }
  bool ended() const { return ended_; }

  /* Lines of which the reader has seen any. */
  std::size_t taken() const { return next_ + (offset_ != 0 ? 1 : 0); }
  std::string_view line(std::size_t i) const { return lines_[i]; }
  /* Takes a new line from the input in the place of line i and begins anew; false when there is none. */
  bool retype(std::size_t i);
  /* Whether the reader is on its way to the line that was typed last, over what it has seen before. */
  bool repeating() const { return taken() < first_new_; }

 private:
  bool type(std::string& line);

  std::FILE* input_;
  std::vector<std::string> lines_;  // each with its line feed
  std::size_t next_ = 0;            // the line to deliver next, from byte offset_ on
  std::size_t offset_ = 0;
  std::size_t first_new_ = 0;  // number of lines up to the retyped one
  bool ended_ = false;
  bool failed_ = false;
};

/* Byte by byte, so that no more than the line is taken from the input. */
bool TypedLines::type(std::string& line) {
  line.clear();
  for (;;) {
    const int c = std::getc(input_);
    if (c == EOF) {
      if (std::ferror(input_) == 0) break;
      if (errno != EINTR) {
        ended_ = failed_ = true;
        return false;
      }
      std::clearerr(input_);
      continue;
    }
    line.push_back(static_cast<char>(c));
    if (c == '\n') return true;
  }
  ended_ = line.empty();
  if (!ended_) line.push_back('\n');
  return !ended_;
}

std::size_t TypedLines::read(char* buffer, std::size_t capacity) {
  if (next_ == lines_.size()) {
    std::string line;
    if (ended_ || !type(line)) return 0;
    lines_.push_back(std::move(line));
  }
  const std::string& line = lines_[next_];
  const std::size_t count = std::min(capacity, line.size() - offset_);
  std::memcpy(buffer, line.data() + offset_, count);
  offset_ += count;
  if (offset_ == line.size()) {
    ++next_;
    offset_ = 0;
  }
  return count;
}

bool TypedLines::retype(std::size_t i) {
  std::string line;
  if (!type(line)) return false;
  lines_[i] = std::move(line);
  next_ = offset_ = 0;
  first_new_ = i + 1;
  return true;
}

/* Keeps back the warnings that were given before. */
class NewWarnings final : public ReaderLog {
 public:
  NewWarnings(ReaderLog& log, const TypedLines& lines) : log_(log), lines_(lines) {}
  void warning(std::string_view text) override {
    if (!lines_.repeating()) log_.warning(text);
  }
  void dropped(std::string_view text) override {
    if (!lines_.repeating()) log_.dropped(text);
  }
  void result(std::string_view text) override {
    if (!lines_.repeating()) log_.result(text);
  }

 private:
  ReaderLog& log_;
  const TypedLines& lines_;
};

/* Index of the line that a failure names: the later one of two, the last one seen when it names none. */
std::size_t line_of(const ReadFailure& failure, std::size_t taken) {
  using Arguments = ReadFailure::Arguments;
  int line = 0;
  switch (failure.arguments) {
    case Arguments::i:
    case Arguments::is:
    case Arguments::iss:
    case Arguments::ic:
    case Arguments::icc:
      line = failure.first;
      break;
    case Arguments::ii:
      line = std::max(failure.first, failure.second);
      break;
    case Arguments::none:
    case Arguments::s:
    case Arguments::ss:
    case Arguments::sss:
      break;
  }
  const bool known = line > 0 && static_cast<std::size_t>(line) <= taken;
  return (known ? static_cast<std::size_t>(line) : taken) - 1;
}

bool is_end(std::string_view line) {
  return lp_format::find_header(line.substr(0, line.size() - 1), lp_format::Section::end).has_value();
}

}  // namespace

bool read_lp_dialogue(std::FILE* input, ReadOptions options, DialogueLog& log, FileModel& model) {
  options.rows_end_with_line = true;
  TypedLines lines(input);
  NewWarnings warnings(log, lines);
  log.prompt("Enter new problem ['end' on a separate line terminates]:\n");
  for (;;) {
    model = FileModel();
    const ReadFailure failure = read_lp(lines, options, warnings, model);
    if (!lines.finish()) {
      log.failure(ReadFailure::about(TVK_ERROR_OPEN_FOR_READING, "<stdin>"));
      return false;
    }
    if (!failure) return true;
    log.failure(failure);
    if (lines.ended()) return false;
    const std::size_t wrong = line_of(failure, lines.taken());
    if (is_end(lines.line(wrong))) return false;
    log.prompt("Please reenter last line:\n");
    if (!lines.retype(wrong)) return false;
  }
}

}  // namespace tovik::fileio
