#include "fileio/record/writer_names.h"

#include <algorithm>
#include <charconv>

#include "fileio/record/model_reader.h"
#include "fileio/record/name_table.h"

namespace tovik::fileio {
namespace {

bool repeats(const std::vector<std::string_view>& names) {
  std::size_t bytes = 0;
  for (const std::string_view name : names) bytes += name.size();
  NameTable table;
  table.reserve_text(names.size(), bytes);
  for (const std::string_view name : names) table.append(name);
  return !table.index_appended().empty();
}

bool acceptable(const std::vector<std::string_view>& names, const NameRules& rules) {
  const auto fine = [&rules](std::string_view name) {
    return name.size() <= kMaxNameLength && rules.acceptable(name);
  };
  return std::ranges::all_of(names, fine) && !repeats(names);
}

/* Empty when there are no names. */
std::vector<std::string_view> views_of(const model::NameTable& names, int count) {
  std::vector<std::string_view> views;
  if (names.empty()) return views;
  views.reserve(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) views.emplace_back(names.name(k));
  return views;
}

}  // namespace

WriterNames WriterNames::generated(char letter, int count) {
  constexpr std::size_t kWidth = 11;  // the letter and ten digits
  WriterNames made;
  made.origin_ = Origin::generated;
  made.text_.resize(kWidth * static_cast<std::size_t>(count));
  made.views_.reserve(static_cast<std::size_t>(count));
  char* to = made.text_.data();
  for (int k = 1; k <= count; ++k) {
    char* const begin = to;
    *to++ = letter;
    to = std::to_chars(to, begin + kWidth, k).ptr;
    made.views_.emplace_back(begin, static_cast<std::size_t>(to - begin));
  }
  return made;
}

WriterNames WriterNames::from(std::vector<std::string_view> names, char letter, int count,
                              const NameRules& rules) {
  if (names.empty()) return generated(letter, count);
  WriterNames made;
  made.views_ = std::move(names);
  if (acceptable(made.views_, rules)) return made;
  made.origin_ = Origin::rewritten;
  std::vector<std::size_t> begin;
  begin.reserve(made.views_.size() + 1);
  for (int k = 0; k < count; ++k) {
    const std::string name = rewritten_name(made[k], k, rules);
    begin.push_back(made.text_.size());
    made.text_.insert(made.text_.end(), name.begin(), name.end());
  }
  begin.push_back(made.text_.size());
  for (std::size_t k = 0; k < made.views_.size(); ++k) {
    made.views_[k] = {made.text_.data() + begin[k], begin[k + 1] - begin[k]};
  }
  return made;
}

WriterNames WriterNames::from(const model::NameTable& names, char letter, int count, const NameRules& rules) {
  return from(views_of(names, count), letter, count, rules);
}

WriterNames WriterNames::unchanged(const model::NameTable& names, char letter, int count) {
  if (names.empty()) return generated(letter, count);
  WriterNames own;
  own.views_ = views_of(names, count);
  for (std::string_view& view : own.views_) view = view.substr(0, kMaxNameLength);
  return own;
}

bool WriterNames::contains(std::string_view name) const {
  return std::ranges::find(views_, name) != views_.end();
}

std::string distinct_name(std::string wanted, const WriterNames& names) {
  while (names.contains(wanted)) wanted += '_';
  return wanted;
}

std::string rewritten_name(std::string_view name, int position, const NameRules& rules) {
  const std::string suffix = "#" + std::to_string(position);
  std::string legal = rules.legal(name);
  if (legal.size() > kMaxNameLength - suffix.size()) legal.resize(kMaxNameLength - suffix.size());
  return legal + suffix;
}

std::string single_name(std::string_view name, const NameRules& rules, bool& rewritten) {
  if (name.size() <= kMaxNameLength && rules.acceptable(name)) return std::string(name);
  rewritten = true;
  return rewritten_name(name, 0, rules);
}

}  // namespace tovik::fileio
