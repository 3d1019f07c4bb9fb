/* What the last reading of a model said: the text of its warnings, and of notes that no channel is told.
 * Lines end with a line feed; one that begins with a blank goes on with the line before it. A hostile file
 * may give a warning for each of its bytes: beyond kMaxReadReport bytes lines are counted, not kept. */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tovik {

inline constexpr std::size_t kMaxReadReport = 65536;

struct ReadReport {
  int warnings = 0;
  int dropped = 0;  // of the warnings: text of the file is missing in the model
  std::string text;

  void add(std::string_view line) {
    if (text.size() + line.size() <= kMaxReadReport) text += line;
  }
};

}  // namespace tovik
