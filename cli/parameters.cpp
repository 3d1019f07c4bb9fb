#include "cli/parameters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr int kFirstNumber = 1001, kLastNumber = 5999;
constexpr char kPrefix[] = "TVK_PARAM_";
constexpr char kWithoutEffect[] = "Stored, without effect";  // how such a parameter's description begins
constexpr std::size_t kSuggestions = 3;

std::string upper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

std::string without_prefix(const std::string& name) {
  return name.rfind(kPrefix, 0) == 0 ? name.substr(sizeof kPrefix - 1) : name;
}

/* The whole text as a number; false when it is none. */
template <class Number>
bool parse(const std::string& text, Number& value) {
  const char* begin = text.data() + (text.size() > 1 && text[0] == '+' ? 1 : 0);
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(begin, end, value);
  return error == std::errc() && stop == end && begin != end;
}

std::string shortest(double value) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

/* Shell-like match of a whole name; both in upper case. */
bool matches(const char* name, const char* pattern) {
  if (*pattern == '\0') return *name == '\0';
  if (*pattern == '*') return matches(name, pattern + 1) || (*name != '\0' && matches(name + 1, pattern));
  return *name != '\0' && (*pattern == '?' || *pattern == *name) && matches(name + 1, pattern + 1);
}

/* Whether a word of the text begins with `start`; both in upper case. */
bool has_word(const std::string& text, const std::string& start) {
  for (auto at = text.find(start); at != std::string::npos; at = text.find(start, at + 1)) {
    if (at == 0 || std::isalnum(static_cast<unsigned char>(text[at - 1])) == 0) return true;
  }
  return false;
}

std::string padded(const std::string& text, std::size_t width) {
  return text + std::string(text.size() < width ? width - text.size() : 0, ' ');
}

}  // namespace

Parameters::Parameters(const Environment& environment) : environment_(environment) {
  ConstEnvHandle env = environment.handle();
  for (int number = kFirstNumber; number <= kLastNumber; ++number) {
    std::array<char, TVK_PARAM_NAME_MAX> name{};
    if (TVKgetparamname(env, number, name.data()) != 0 || name[0] == '\0') continue;
    Entry entry{number, TVK_PARAMTYPE_NONE, without_prefix(name.data()), ""};
    environment.check(TVKgetparamtype(env, number, &entry.type));
    std::array<char, TVK_PARAM_DESC_MAX> meaning{};
    environment.check(TVKgetparamdesc(env, number, meaning.data()));
    entry.meaning = meaning.data();
    entries_.push_back(std::move(entry));
  }
}

void Parameters::apply(const Assignment& assignment) const {
  const Entry entry = find(assignment);
  if (entry.number == TVK_PARAM_SCRIND) {
    throw ParameterError(assignment.origin + " " + assignment.name +
                         ": the program decides what reaches the screen; use -q");
  }
  const std::string what = assignment.origin + " " +
                           (assignment.origin == "--set" ? assignment.name + "=" : "") + assignment.value;
  EnvHandle env = environment_.handle();
  int integer = 0;
  double real = 0;
  int code = 0;
  switch (entry.type) {
    case TVK_PARAMTYPE_INT:
      if (!parse(assignment.value, integer))
        throw ParameterError(what + ": needs a whole number within " + texts(entry).range);
      if (assignment.origin == "--threads") integer = std::min(integer, TVKEgetmaxthreads(env));
      code = TVKsetintparam(env, entry.number, integer);
      break;
    case TVK_PARAMTYPE_DOUBLE:
      if (!parse(assignment.value, real) || std::isnan(real)) throw ParameterError(what + ": needs a number");
      code = TVKsetdblparam(env, entry.number, real);
      break;
    default:
      code = TVKsetstrparam(env, entry.number, assignment.value.c_str());
  }
  if (code != 0) {
    const std::string range = texts(entry).range;
    throw ParameterError(what + ": " + environment_.error_text(code) +
                         (range.empty() ? "" : " (range " + range + ")"));
  }
}

Parameters::Entry Parameters::find(const Assignment& assignment) const {
  const std::string name = without_prefix(upper(assignment.name));
  for (const Entry& entry : entries_) {
    if (entry.name == name) return entry;
  }
  int number = 0, type = TVK_PARAMTYPE_NONE;
  if (parse(name, number) && TVKgetparamtype(environment_.handle(), number, &type) == 0 &&
      type != TVK_PARAMTYPE_NONE) {
    return {number, type, name, ""};
  }
  std::string text =
      assignment.origin + " " + assignment.name + ": no parameter has this name; the nearest are";
  for (const std::string& candidate : nearest(name)) text += " " + candidate;
  throw ParameterError(text);
}

std::vector<std::string> Parameters::nearest(const std::string& name) const {
  std::vector<std::pair<double, std::string>> ranked;
  for (const Entry& entry : entries_) {
    const std::size_t longer = std::max(name.size(), entry.name.size());
    double distance = static_cast<double>(edit_distance(name, entry.name)) / static_cast<double>(longer);
    const bool contained = !name.empty() && entry.name.find(name) != std::string::npos;
    ranked.emplace_back(contained ? distance / 2 : distance, entry.name);
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (std::size_t k = 0; k < std::min(kSuggestions, ranked.size()); ++k) names.push_back(ranked[k].second);
  return names;
}

Parameters::Texts Parameters::texts(const Entry& entry) const {
  ConstEnvHandle env = environment_.handle();
  if (entry.type == TVK_PARAMTYPE_INT) {
    int value = 0, standard = 0, least = 0, most = 0;
    environment_.check(TVKgetintparam(env, entry.number, &value));
    environment_.check(TVKinfointparam(env, entry.number, &standard, &least, &most));
    return {std::to_string(value), std::to_string(standard),
            std::to_string(least) + " to " + std::to_string(most)};
  }
  if (entry.type == TVK_PARAMTYPE_DOUBLE) {
    double value = 0, standard = 0, least = 0, most = 0;
    environment_.check(TVKgetdblparam(env, entry.number, &value));
    environment_.check(TVKinfodblparam(env, entry.number, &standard, &least, &most));
    return {shortest(value), shortest(standard),
            least == most ? "any" : shortest(least) + " to " + shortest(most)};
  }
  std::array<char, TVK_STR_PARAM_MAX> value{}, standard{};
  environment_.check(TVKgetstrparam(env, entry.number, value.data()));
  environment_.check(TVKinfostrparam(env, entry.number, standard.data()));
  return {value.data(), standard.data(), ""};
}

std::string Parameters::changed() const {
  std::string line;
  for (const Entry& entry : entries_) {
    const Texts text = texts(entry);
    if (text.value != text.standard) line += (line.empty() ? "" : " ") + entry.name + "=" + text.value;
  }
  return line;
}

std::string Parameters::table(const std::string& pattern, bool with_unused) const {
  const std::string wanted = without_prefix(upper(pattern));
  const bool wildcard = wanted.find_first_of("*?") != std::string::npos;
  std::vector<std::array<std::string, 5>> rows = {{"name", "value", "default", "range", "meaning"}};
  for (const Entry& entry : entries_) {
    const bool listed =
        wildcard ? matches(entry.name.c_str(), wanted.c_str())
                 : entry.name.find(wanted) != std::string::npos || has_word(upper(entry.meaning), wanted);
    if (!listed || (!with_unused && entry.meaning.starts_with(kWithoutEffect))) continue;
    const Texts text = texts(entry);
    rows.push_back({entry.name, text.value + (text.value == text.standard ? "" : "*"), text.standard,
                    text.range, entry.meaning});
  }
  if (rows.size() == 1) return "";
  std::array<std::size_t, 5> width{};
  for (const auto& row : rows) {
    for (std::size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
  }
  std::string lines;
  for (const auto& row : rows) {
    for (std::size_t c = 0; c + 1 < row.size(); ++c) lines += padded(row[c], width[c]) + "  ";
    lines += row.back() + "\n";
  }
  return lines;
}

}  // namespace tovik::cli
