#include "fileio/lp_format/keywords.h"

#include "fileio/lp_format/text.h"

namespace tovik::fileio::lp_format {
namespace {

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equals(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (upper(word[i]) != keyword[i]) return false;
  }
  return true;
}

bool is_leading_part(std::string_view word, std::string_view keyword, std::size_t shortest) {
  return word.size() >= shortest && word.size() <= keyword.size() &&
         equals(word, keyword.substr(0, word.size()));
}

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> keywords) {
  for (const std::string_view keyword : keywords) {
    if (equals(word, keyword)) return true;
  }
  return false;
}

constexpr unsigned bit(Section section) {
  return 1u << static_cast<unsigned>(section);
}

constexpr unsigned kTypeSections =
    bit(Section::integers) | bit(Section::binaries) | bit(Section::generals) | bit(Section::semicontinuous);
constexpr unsigned kAfterTypes = kTypeSections | bit(Section::sets) | bit(Section::end);
constexpr unsigned kAfterBounds = kAfterTypes | bit(Section::bounds);
constexpr unsigned kAfterConstraints =
    kAfterBounds | bit(Section::constraints) | bit(Section::user_cuts) | bit(Section::lazy_constraints);
constexpr unsigned kAfterMaximize = kAfterConstraints | bit(Section::maximize);
constexpr unsigned kEverything = kAfterMaximize | bit(Section::minimize);

/* Sections that may be opened from `current`. A line that holds only "min" after Maximize is content. */
constexpr unsigned reachable(Section current) {
  switch (current) {
    case Section::none:
    case Section::minimize:
      return kEverything;
    case Section::maximize:
      return kAfterMaximize;
    case Section::constraints:
    case Section::user_cuts:
    case Section::lazy_constraints:
      return kAfterConstraints;
    case Section::bounds:
      return kAfterBounds;
    case Section::integers:
    case Section::binaries:
    case Section::generals:
    case Section::semicontinuous:
      return kAfterTypes;
    case Section::sets:
      return bit(Section::sets) | bit(Section::end);
    case Section::end:
      return bit(Section::end);
  }
  return 0;
}

constexpr unsigned kStandAlone =
    kTypeSections | bit(Section::bounds) | bit(Section::sets) | bit(Section::end);

const char* skip_blanks(const char* p) {
  while (is(*p, kBlank)) ++p;
  return p;
}

std::string_view word_at(const char* p) {
  const char* end = p;
  while (!is(*end, kDelimiter)) ++end;
  return {p, static_cast<std::size_t>(end - p)};
}

struct Keyword {
  Section section;
  const char* end;
  bool two_words;
};

/* SUBJECT TO and its like; the words may stand together or apart. */
std::optional<Keyword> two_words(std::string_view first) {
  struct Pair {
    std::string_view first, second, joined;
    Section section;
  };
  static constexpr Pair kPairs[] = {
      {"SUBJECT", "TO", "SUBJECTTO", Section::constraints},
      {"SUCH", "THAT", "SUCHTHAT", Section::constraints},
      {"USER", "CUTS", "USERCUTS", Section::user_cuts},
      {"LAZY", "CONSTRAINTS", "LAZYCONSTRAINTS", Section::lazy_constraints},
  };
  for (const Pair& pair : kPairs) {
    if (equals(first, pair.joined)) return Keyword{pair.section, first.data() + first.size(), true};
    if (!equals(first, pair.first)) continue;
    const std::string_view second = word_at(skip_blanks(first.data() + first.size()));
    if (equals(second, pair.second)) return Keyword{pair.section, second.data() + second.size(), true};
  }
  return std::nullopt;
}

std::optional<Keyword> keyword_at(const char* p) {
  const std::string_view word = word_at(p);
  const auto found = [&word](Section section) { return Keyword{section, word.data() + word.size(), false}; };
  switch (upper(*p)) {
    case 'M':
      if (is_leading_part(word, "MINIMIZE", 3)) return found(Section::minimize);
      if (is_leading_part(word, "MAXIMIZE", 3)) return found(Section::maximize);
      break;
    case 'S': {
      if (is_one_of(word, {"ST", "ST.", "S.T", "S.T."})) return found(Section::constraints);
      if (equals(word, "SOS")) return found(Section::sets);
      if (is_one_of(word, {"SEMI", "SEMIS"})) {
        constexpr std::string_view kRest = "CONTINUOUS";
        const char* dash = word.data() + word.size();
        if (equals(word, "SEMI") && *dash == '-' && equals(word_at(dash + 1), kRest)) {
          return Keyword{Section::semicontinuous, dash + 1 + kRest.size(), false};
        }
        return found(Section::semicontinuous);
      }
      return two_words(word);
    }
    case 'U':
    case 'L':
      return two_words(word);
    case 'B':
      if (is_leading_part(word, "BOUNDS", 4)) return found(Section::bounds);
      if (is_one_of(word, {"BIN", "BINS", "BINARY", "BINARIES"})) return found(Section::binaries);
      break;
    case 'I':
      if (is_one_of(word, {"INT", "INTS", "INTEGER", "INTEGERS"})) return found(Section::integers);
      break;
    case 'G':
      if (is_one_of(word, {"GEN", "GENS", "GENERAL", "GENERALS"})) return found(Section::generals);
      break;
    case 'E':
      if (equals(word, "END")) return found(Section::end);
      break;
    default:
      break;
  }
  return std::nullopt;
}

}  // namespace

bool may_begin_header(std::string_view word) {
  if (word.size() < 2) return false;
  switch (upper(word[0])) {
    case 'M':
    case 'B':
    case 'I':
      return std::string_view("IAON").find(upper(word[1])) != std::string_view::npos;
    case 'S':
      return std::string_view("TU.OE").find(upper(word[1])) != std::string_view::npos;
    case 'U':
      return upper(word[1]) == 'S';
    case 'L':
      return upper(word[1]) == 'A';
    case 'G':
      return upper(word[1]) == 'E';
    case 'E':
      return upper(word[1]) == 'N';
    default:
      return false;
  }
}

std::optional<Header> find_header(std::string_view line, Section current) {
  const std::optional<Keyword> keyword = keyword_at(skip_blanks(line.data()));
  if (!keyword || (reachable(current) & bit(keyword->section)) == 0) return std::nullopt;
  const char* rest = skip_blanks(keyword->end);
  if ((kStandAlone & bit(keyword->section)) != 0) {
    if (!is(*rest, kLineEnd)) return std::nullopt;
  } else if (*rest == ':') {
    // One word and a colon name an objective or a row, unless it is the header that must come here.
    const bool needed =
        current == Section::none || (keyword->section == Section::constraints &&
                                     (current == Section::minimize || current == Section::maximize));
    if (!keyword->two_words && !needed) return std::nullopt;
    ++rest;
  }
  return Header{keyword->section, rest};
}

}  // namespace tovik::fileio::lp_format
