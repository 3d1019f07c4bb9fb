#include "fileio/display/display.h"

#include "fileio/lp_format/items.h"
#include "fileio/record/model_reader.h"
#include "model/routines/check.h"
#include "model/store/default_names.h"

namespace tovik::fileio {
namespace {

class TextSink final : public ByteSink {
 public:
  explicit TextSink(std::string& text) : text_(text) {}
  bool write(const char* bytes, std::size_t count) override {
    text_.append(bytes, count);
    return true;
  }
  bool commit() override { return true; }

 private:
  std::string& text_;
};

lp_format::ItemNames display_names(const model::Model& model) {
  const model::Families& f = model.families();
  const auto names = [](const model::NameTable& table, char letter, int count) {
    return WriterNames::unchanged(table, letter, count);
  };
  lp_format::ItemNames all;
  all.objective = model.objective_name().empty() ? "obj" : model.objective_name().substr(0, kMaxNameLength);
  all.columns = names(model.column_names(), 'x', model.num_columns());
  all.rows = names(model.row_names(), 'c', model.num_rows());
  all.sets = names(f.sets.names(), 's', f.sets.size());
  all.quadratic = names(f.quadratic_rows.names(), 'q', f.quadratic_rows.size());
  all.indicators = names(f.indicators.names(), 'i', f.indicators.size());
  all.user_cuts = names(f.user_cuts.names(), 'u', f.user_cuts.size());
  all.lazy = names(f.lazy_constraints.names(), 'l', f.lazy_constraints.size());
  return all;
}

/* The items in LP format on their way into a string. */
class Display {
 public:
  Display(const model::Model& model, std::string& text)
      : names_(display_names(model)), sink_(text), out_(sink_), items_(model, names_, out_) {}
  void finish() { out_.close(); }
  const lp_format::ItemNames& names() const { return names_; }
  lp_format::ItemWriter& items() { return items_; }

 private:
  lp_format::ItemNames names_;
  TextSink sink_;
  TextWriter out_;
  lp_format::ItemWriter items_;
};

/* What is said of a kind of items, and how one is shown. */
struct Kind {
  const char* plural;
  const WriterNames lp_format::ItemNames::*names;
  void (*show)(lp_format::ItemWriter& items, int k);
};

const Kind& kind_of(Item item) {
  static constexpr Kind kKinds[] = {
      {"constraints", &lp_format::ItemNames::rows,
       [](lp_format::ItemWriter& items, int k) { items.rows(k, k + 1); }},
      {"quadratic constraints", &lp_format::ItemNames::quadratic,
       [](lp_format::ItemWriter& items, int k) { items.quadratic_row(k); }},
      {"indicator constraints", &lp_format::ItemNames::indicators,
       [](lp_format::ItemWriter& items, int k) { items.indicator(k); }},
      {"user cuts", &lp_format::ItemNames::user_cuts,
       [](lp_format::ItemWriter& items, int k) { items.user_cut(k); }},
      {"lazy constraints", &lp_format::ItemNames::lazy,
       [](lp_format::ItemWriter& items, int k) { items.lazy_constraint(k); }},
      {"special ordered sets", &lp_format::ItemNames::sets,
       [](lp_format::ItemWriter& items, int k) { items.set(k); }},
      {"variables", &lp_format::ItemNames::columns,
       [](lp_format::ItemWriter& items, int k) { items.every_bound(k); }},
  };
  return kKinds[static_cast<std::size_t>(item)];
}

const char* word_of_type(char type) {
  switch (type) {
    case 'B':
      return "binary";
    case 'I':
      return "general";
    case 'S':
      return "semi-continuous";
    case 'N':
      return "semi-integer";
    default:
      return "continuous";
  }
}

bool selected(const Selection& selection, std::string_view name) {
  return selection.pattern == nullptr || matches(selection.pattern, name);
}

}  // namespace

/* On a mismatch the last '*' takes one character more. */
bool matches(std::string_view pattern, std::string_view name) {
  std::size_t p = 0, n = 0, star = std::string_view::npos, taken = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      taken = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++taken;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

Status display_items(Environment& env, const model::Model& model, Item item, const Selection& selection,
                     std::string& text) {
  const Kind& kind = kind_of(item);
  Display display(model, text);
  const WriterNames& names = display.names().*kind.names;
  if (names.size() == 0) {
    text = std::string("There are no ") + kind.plural + ".\n";
    return {};
  }
  if (const Status s =
          model::check_range(env, selection.routine, selection.begin, selection.end, names.size());
      !s.ok())
    return s;
  bool any = false;
  for (int k = selection.begin; k <= selection.end; ++k) {
    if (!selected(selection, names[k])) continue;
    any = true;
    kind.show(display.items(), k);
  }
  display.finish();
  if (!any && selection.pattern != nullptr)
    text = std::string("No ") + kind.plural + " match '" + selection.pattern + "'.\n";
  return {};
}

Status display_types(Environment& env, const model::Model& model, char type, const Selection& selection,
                     std::string& text) {
  Display display(model, text);
  const WriterNames& names = display.names().columns;
  if (names.size() > 0) {
    const Status s = model::check_range(env, selection.routine, selection.begin, selection.end, names.size());
    if (!s.ok()) return s;
  }
  std::vector<int> columns;
  for (int j = selection.begin; names.size() > 0 && j <= selection.end; ++j) {
    if (lp_format::type_of(model, j) == type && selected(selection, names[j])) columns.push_back(j);
  }
  display.items().column_list(columns);
  display.finish();
  if (!columns.empty()) return {};
  const std::string word = word_of_type(type);
  text = selection.pattern != nullptr ? "There are no matching " + word + " variables.\n"
                                      : "There are no " + word + " variables in the specified range.\n";
  return {};
}

void display_objective(const model::Model& model, std::string& text) {
  Display display(model, text);
  display.items().header(model.objective_sense() >= 0 ? "Minimize" : "Maximize");
  display.items().objective();
  display.finish();
}

void display_model(const model::Model& model, std::string& text) {
  Display display(model, text);
  display.items().whole();
  display.finish();
}

}  // namespace tovik::fileio
