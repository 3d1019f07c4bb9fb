/* The section headers of the LP format: which lines open a section, seen from the section that is open. */
#pragma once

#include <optional>
#include <string_view>

namespace tovik::fileio::lp_format {

enum class Section {
  none,  // before the objective
  minimize,
  maximize,
  constraints,
  user_cuts,
  lazy_constraints,
  bounds,
  integers,
  binaries,
  generals,
  semicontinuous,
  sets,
  end
};

struct Header {
  Section section;
  const char* content;  // where the section's first content begins in the line
};

/* The header that `line` is while `current` is the open section. The line's end must be of class kLineEnd. */
std::optional<Header> find_header(std::string_view line, Section current);

/* False for most words that no header begins with: looks at the first letters only. */
bool may_begin_header(std::string_view word);

}  // namespace tovik::fileio::lp_format
