#include "cli/solve/lp_names.h"

#include <algorithm>
#include <string_view>

#include "cli/text.h"

namespace tovik::cli {

namespace {

bool fits_lp(std::string_view name) {
  constexpr std::string_view kOperators = "+-*/^<>=:[]|\\";
  const auto bad = [&](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 127 || byte == 255 || kOperators.find(c) != std::string_view::npos;
  };
  if (name.empty() || std::ranges::any_of(name, bad)) return false;
  constexpr std::string_view kNotFirst = "0123456789.eE";
  return kNotFirst.find(name.front()) == std::string_view::npos;
}

std::string family(const char* word, const std::vector<std::string>& names) {
  const auto unfit = [](const std::string& name) { return !fits_lp(name); };
  const auto count = std::ranges::count_if(names, unfit);
  if (count == 0) return "";
  return format("%ld of %zu ", static_cast<long>(count), names.size()) + word + "s, the first is " +
         *std::ranges::find_if(names, unfit) + "\n";
}

/* Names that the model has; those that are made up when it has none are no problem. */
std::vector<std::string> own_names(const Model& model, Model::NameQuery query, int count) {
  int surplus = 0;
  if (count == 0 || query(model.environment().handle(), model.handle(), nullptr, nullptr, 0, &surplus, 0,
                          0) != TVK_ERROR_ARRAY_TOO_SHORT)
    return {};
  return model.names(query, "", 0, count - 1);
}

}  // namespace

bool is_lp_file(const std::string& file) {
  std::string name = file;
  std::ranges::transform(name, name.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  for (const std::string_view suffix : {".gz", ".bz2", ".z"}) {
    if (name.ends_with(suffix)) {
      name.resize(name.size() - suffix.size());
      break;
    }
  }
  return name.ends_with(".lp");
}

std::string names_not_in_lp(const Model& model) {
  return family("row", own_names(model, TVKgetrowname, model.rows())) +
         family("column", own_names(model, TVKgetcolname, model.columns()));
}

}  // namespace tovik::cli
