#include "fileio/network/notes.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "model/base/names.h"

namespace tovik::fileio {

namespace {

/* What the letter behind a backslash stands for; '\0' when nothing. */
char unescaped(char letter) {
  switch (letter) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case '\\':
      return '\\';
    default:
      return '\0';
  }
}

}  // namespace

void CommentNames::add(int item, std::string_view name) {
  if (!in_order_ && items_.size() >= drop_at_) drop_replaced();
  if (static_cast<std::size_t>(item) != items_.size()) in_order_ = false;
  names_.add(name);
  items_.push_back(item);
}

void CommentNames::drop_replaced() {
  std::vector<std::size_t> order(items_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [this](std::size_t k) { return items_[k]; });
  std::vector<int> items;
  model::NameBlock names;
  for (std::size_t k = 0; k < order.size(); ++k) {
    const int item = items_[order[k]];
    if (k + 1 < order.size() && items_[order[k + 1]] == item) continue;
    names.add(names_.name(order[k]));
    items.push_back(item);
  }
  items_ = std::move(items);
  names_ = std::move(names);
  drop_at_ = 2 * std::max(items_.size(), kFirstDrop);
}

model::NameBlock CommentNames::collect(int count) {
  if (in_order_ && items_.size() == static_cast<std::size_t>(count)) return std::exchange(names_, {});
  std::vector<const char*> names(static_cast<std::size_t>(count), nullptr);
  bool any = false;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    if (items_[k] >= count) continue;
    names[static_cast<std::size_t>(items_[k])] = names_.name(k);
    any = true;
  }
  return model::collect_names(letter_, count, any ? names.data() : nullptr);
}

void put_note_text(TextWriter& out, std::string_view name) {
  constexpr std::string_view kSpecial = "\n\r\\";
  while (!name.empty()) {
    const std::size_t plain = name.find_first_of(kSpecial);
    out.put(name.substr(0, plain));
    if (plain == std::string_view::npos) break;
    out.put('\\');
    out.put(name[plain] == '\n' ? 'n' : name[plain] == '\r' ? 'r' : '\\');
    name.remove_prefix(plain + 1);
  }
  out.put('\n');
}

std::string note_text(std::string_view text) {
  std::string name;
  name.reserve(text.size());
  for (std::size_t k = 0; k < text.size(); ++k) {
    const char escaped = text[k] == '\\' && k + 1 < text.size() ? unescaped(text[k + 1]) : '\0';
    name += escaped != '\0' ? escaped : text[k];
    if (escaped != '\0') ++k;
  }
  return name;
}

}  // namespace tovik::fileio
