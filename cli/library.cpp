#include "cli/library.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

namespace tovik::cli {

namespace {
/* The text of a code without the prefix "TOVIK Error 1001: " and without the final ".\n". */
std::string bare_error_text(ConstEnvHandle env, int code) {
  std::array<char, TVK_TEXT_BUFFER_SIZE> buffer{};
  TVKgeterrorstring(env, code, buffer.data());
  std::string text = buffer.data();
  if (const auto colon = text.find(": "); colon != std::string::npos) text.erase(0, colon + 2);
  while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
  return text;
}
}  // namespace

Environment::Environment() {
  int status = 0;
  handle_ = TVKopenTOVIK(&status);
  if (handle_ == nullptr) throw LibraryError(status, bare_error_text(nullptr, status));
}

Environment::~Environment() {
  TVKcloseTOVIK(&handle_);
}

std::string Environment::version() const {
  const char* text = TVKversion(handle_);
  return text == nullptr ? "" : text;
}

std::string Environment::status_text(int status) const {
  std::array<char, TVK_TEXT_BUFFER_SIZE> buffer{};
  TVKgetstatstring(handle_, status, buffer.data());
  return status == 0 ? "no solution" : buffer.data();
}

std::string Environment::error_text(int code) const {
  return bare_error_text(handle_, code);
}

int Environment::integer_parameter(int number) const {
  int value = 0;
  check(TVKgetintparam(handle_, number, &value));
  return value;
}

double Environment::double_parameter(int number) const {
  double value = 0;
  check(TVKgetdblparam(handle_, number, &value));
  return value;
}

void Environment::check(int code) const {
  if (code != 0) throw LibraryError(code, error_text(code));
}

Model::Model(const Environment& environment, const std::string& name) : environment_(environment) {
  int status = 0;
  handle_ = TVKcreateprob(environment.handle(), &status, name.c_str());
  if (handle_ == nullptr) environment.check(status);
}

Model::~Model() {
  TVKfreeprob(environment_.handle(), &handle_);
}

bool Model::mixed_integer() const {
  const int kind = type();
  return kind == 1 || kind == 7 || kind == 11;
}

void Model::relax() {
  int relaxed = type();
  if (relaxed == TVK_PROBTYPE_MILP) relaxed = TVK_PROBTYPE_LP;
  if (relaxed == TVK_PROBTYPE_MIQP) relaxed = TVK_PROBTYPE_QP;
  if (relaxed == TVK_PROBTYPE_MIQCP) relaxed = TVK_PROBTYPE_QCP;
  environment_.check(TVKchgprobtype(environment_.handle(), handle_, relaxed));
}

Model::ReadWarnings Model::read_warnings() const {
  ReadWarnings found;
  const EnvHandle env = environment_.handle();
  environment_.check(TVKgetreadwarnings(env, handle_, nullptr, &found.dropped, nullptr, 0, nullptr));
  int surplus = 0;
  TVKgetreadwarnings(env, handle_, nullptr, nullptr, nullptr, 0, &surplus);
  std::string text(static_cast<std::size_t>(-surplus), '\0');
  environment_.check(TVKgetreadwarnings(env, handle_, nullptr, nullptr, text.data(), -surplus, &surplus));
  text.pop_back();  // the terminating zero
  constexpr std::string_view kNote = "Note:  ";
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string line = text.substr(begin, end - begin);
    begin = end + 1;
    if (line.starts_with(kNote)) {
      found.notes.push_back(line.substr(kNote.size()));
    } else if (line.starts_with(' ') && !found.warnings.empty()) {
      found.warnings.back() += line.substr(std::min(line.find_first_not_of(' '), line.size()) - 1);
    } else {
      found.warnings.push_back(line);
    }
  }
  return found;
}

std::string Model::statistics() const {
  int surplus = 0;
  const int asked = TVKgetstatistics(environment_.handle(), handle_, nullptr, 0, &surplus);
  if (asked != TVK_ERROR_ARRAY_TOO_SHORT) return "";
  std::string text(static_cast<std::size_t>(-surplus), '\0');
  environment_.check(TVKgetstatistics(environment_.handle(), handle_, text.data(), -surplus, &surplus));
  text.pop_back();  // the terminating zero
  return text;
}

std::optional<int> Model::threads() const {
  const std::string text = statistics();
  if (text.empty()) return {};
  return nlohmann::json::parse(text).at("threads").get<int>();
}

namespace {
/* Names begin..end of any family; where there are none, `word` and the position, counted from `first`. */
template <class Handle, class Query>
std::vector<std::string> query_names(const Environment& environment, Handle handle, Query query,
                                     const char* word, int first, int begin, int end) {
  std::vector<std::string> result;
  if (begin > end) return result;
  int surplus = 0;
  const int asked = query(environment.handle(), handle, nullptr, nullptr, 0, &surplus, begin, end);
  if (asked != TVK_ERROR_ARRAY_TOO_SHORT) {
    for (int k = begin; k <= end; ++k) result.push_back(word + std::to_string(k + first));
    return result;
  }
  std::vector<char*> name(static_cast<std::size_t>(end - begin + 1));
  std::vector<char> store(static_cast<std::size_t>(-surplus));
  environment.check(
      query(environment.handle(), handle, name.data(), store.data(), -surplus, &surplus, begin, end));
  result.assign(name.begin(), name.end());
  return result;
}
}  // namespace

std::vector<std::string> Model::names(NameQuery query, const char* word, int begin, int end) const {
  return query_names(environment_, handle_, query, word, 0, begin, end);
}

Network::Network(const Environment& environment, const std::string& name) : environment_(environment) {
  int status = 0;
  handle_ = TVKNETcreateprob(environment.handle(), &status, name.c_str());
  if (handle_ == nullptr) environment.check(status);
}

Network::~Network() {
  TVKNETfreeprob(environment_.handle(), &handle_);
}

std::vector<std::string> Network::node_names(int begin, int end) const {
  return query_names(environment_, handle_, TVKNETgetnodename, "n", 1, begin, end);
}

std::vector<std::string> Network::arc_names(int begin, int end) const {
  return query_names(environment_, handle_, TVKNETgetarcname, "a", 1, begin, end);
}

}  // namespace tovik::cli
