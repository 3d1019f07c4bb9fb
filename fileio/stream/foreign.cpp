#include "fileio/stream/foreign.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <memory>
#include <system_error>

#include "env/channel.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kHead = 2000;  // bytes that tell the form
constexpr std::size_t kLongestName = 60;

std::string lower(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char c) { return std::tolower(c); });
  return result;
}

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/* The name of the first element of an XML document, behind declarations and comments; empty when there is none. */
std::string_view first_element(std::string_view text) {
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
    const std::string_view rest = text.substr(at + 1);
    if (rest.starts_with("!--")) {
      at = std::min(text.find("-->", at), text.size() - 1);
      continue;
    }
    if (rest.empty() || rest[0] == '?' || rest[0] == '!') continue;
    const auto end = std::ranges::find_if(rest, [](char c) { return is_blank(c) || c == '>' || c == '/'; });
    return rest.substr(0, std::min<std::size_t>(static_cast<std::size_t>(end - rest.begin()), kLongestName));
  }
  return {};
}

std::string kind_of_xml(std::string_view text, Wanted wanted) {
  const std::string_view element = first_element(text);
  if (element.empty()) return "";
  if (element.starts_with("TOVIKSolution"))
    return wanted == Wanted::model ? "a solution file, which holds no model" : "";
  const std::string name = lower(element);
  if (name == "html" || lower(text).find("<!doctype html") != std::string::npos) return "an HTML page";
  const bool solution = name.find("sol") != std::string::npos || name.find("result") != std::string::npos;
  return (solution ? "an XML solution file of another program" : "an XML document of another kind") +
         (" (its first element is '" + std::string(element) + "')");
}

bool is_model(const std::string& text) {
  for (const char* word : {"\nrows\n", "\nrows\r", "\nsubject to", "\nst\n", "\ns.t."}) {
    if (text.find(word) != std::string::npos) return true;
  }
  return false;
}

/* Words that listings of solutions have and models do not. */
bool is_listing(const std::string& text) {
  constexpr std::array kMarks = {"objective value", "objective:",  "solution status", "model status",
                                 "primal solution", "\ns bas ",    "\ns mip ",        "\ns ipt ",
                                 "row name",        "column name", "reduced cost",    "optimal solution"};
  return std::ranges::any_of(kMarks, [&](const char* mark) { return text.find(mark) != std::string::npos; });
}

}  // namespace

std::string seems_to_be(std::string_view head, Wanted wanted) {
  const auto begin = std::ranges::find_if_not(head, is_blank);
  const std::string_view text = head.substr(static_cast<std::size_t>(begin - head.begin()));
  if (text.empty()) return "";
  if (text[0] == '<') return kind_of_xml(text, wanted);
  if (text[0] == '{') return "a JSON document";
  const std::string words = "\n" + lower(text);
  if (is_model(words)) return wanted == Wanted::solution ? "a model, not a solution" : "";
  if (!is_listing(words)) return "";
  return wanted == Wanted::model
             ? "a listing of a solution, as programs print it for people"
             : "a listing of a solution by another program; text files are read with a line NAME, records "
               "\" column value\" that begin with a blank, and a line ENDATA";
}

void tell_what_it_seems(Environment& env, const char* name, Wanted wanted) {
  std::error_code none;
  if (name == nullptr || !std::filesystem::is_regular_file(name, none)) return;
  std::unique_ptr<ByteSource> source;
  OpenRequest request;
  request.name = name;
  if (!open_for_reading(env, request, source).ok()) return;
  std::string head(kHead, '\0');
  std::size_t size = 0;
  while (size < head.size()) {
    const std::size_t count = source->read(head.data() + size, head.size() - size);
    if (count == 0) break;
    size += count;
  }
  head.resize(size);
  const std::string kind = seems_to_be(head, wanted);
  if (!kind.empty()) message(env.warning_channel, "Warning:  '%.255s' seems to be %s.\n", name, kind.c_str());
}

}  // namespace tovik::fileio
