#include "model/store/default_names.h"

#include <cstdio>
#include <new>

#include "env/environment.h"

namespace tovik::model {

namespace {
constexpr int kLargestBlock = 2100000000;
}

Status DefaultNames::make(char letter, int count) {
  int width = 2;  // the letter and the zero
  for (int rest = count; rest > 0; rest /= 10) ++width;
  if (count > kLargestBlock / width) return TVK_ERROR_OUT_OF_MEMORY;
  const std::size_t bytes = (static_cast<std::size_t>(width) * static_cast<std::size_t>(count) + 3) / 4 * 4;
  std::unique_ptr<char[]> block(new (std::nothrow) char[bytes]);
  if (!block) return TVK_ERROR_OUT_OF_MEMORY;
  for (int k = 0; k < count; ++k) {
    std::snprintf(block.get() + static_cast<std::size_t>(k) * static_cast<std::size_t>(width),
                  static_cast<std::size_t>(width), "%c%ld", letter, static_cast<long>(k) + 1);
  }
  block_ = std::move(block);
  width_ = static_cast<std::size_t>(width);
  return {};
}

void announce_default_names(Environment& env, NameFamily family) {
  message(env.warning_channel, "Default %-6s names %c1, %c2 ... being created.\n", family.kind, family.letter,
          family.letter);
}

Status make_default_names(Environment& env, NameFamily family, int count, DefaultNames& names) {
  announce_default_names(env, family);
  return names.make(family.letter, count);
}

}  // namespace tovik::model
