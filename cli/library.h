/* Handles of the library as C++ objects.
 * Environment and Model release what they hold when they end; ranges of rows and columns become vectors.
 *
 * - Errors: LibraryError carries the code of the routine that failed; the library has then written its text
 *   to its error channel, which the console shows unless it is silenced. */
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tovik.h"

namespace tovik::cli {

struct LibraryError : std::runtime_error {
  LibraryError(int code_, const std::string& text) : std::runtime_error(text), code(code_) {}
  int code;
};

class Environment {
 public:
  Environment();  // LibraryError when the library cannot be opened
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  EnvHandle handle() const { return handle_; }
  std::string version() const;
  std::string status_text(int status) const;
  std::string error_text(int code) const;  // without the prefix and the final ".\n"
  int integer_parameter(int number) const;
  double double_parameter(int number) const;
  void check(int code) const;  // throws LibraryError unless `code` is 0

 private:
  EnvHandle handle_ = nullptr;
};

/* A range query for the first `count` of something, of a problem or a network. */
template <class Value, class Handle, class Query>
std::vector<Value> query_all(const Environment& environment, Handle handle, Query query, int count) {
  std::vector<Value> values(static_cast<std::size_t>(count));
  if (count > 0) environment.check(query(environment.handle(), handle, values.data(), 0, count - 1));
  return values;
}

/* One problem object of an environment, which must outlive it. */
class Model {
 public:
  Model(const Environment& environment, const std::string& name);
  ~Model();
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  ProbHandle handle() const { return handle_; }
  const Environment& environment() const { return environment_; }
  int rows() const { return TVKgetnumrows(environment_.handle(), handle_); }
  int columns() const { return TVKgetnumcols(environment_.handle(), handle_); }
  int type() const { return TVKgetprobtype(environment_.handle(), handle_); }
  bool mixed_integer() const;
  /* Becomes its continuous relaxation; what is quadratic stays so. */
  void relax();

  /* What the reader of the file said, by line; `dropped` of the warnings tell of text that is missing in the model. */
  struct ReadWarnings {
    int dropped = 0;
    std::vector<std::string> warnings, notes;
  };
  ReadWarnings read_warnings() const;

  /* What the last optimization has counted: JSON. Empty before the first one. */
  std::string statistics() const;
  /* How many threads have worked for it; nothing before the first one. */
  std::optional<int> threads() const;

  /* A range query over all rows or all columns. */
  template <class Value, class Query>
  std::vector<Value> all(Query query, int count) const {
    return query_all<Value>(environment_, handle_, query, count);
  }
  std::vector<std::string> column_names() const { return names(TVKgetcolname, "column ", 0, columns() - 1); }
  std::vector<std::string> row_names() const { return names(TVKgetrowname, "row ", 0, rows() - 1); }
  std::string column_name(int j) const { return names(TVKgetcolname, "column ", j, j).front(); }
  std::string row_name(int i) const { return names(TVKgetrowname, "row ", i, i).front(); }

  /* Names begin..end of any family; where the model has none, `word` and the position. */
  using NameQuery = int (*)(ConstEnvHandle, ConstProbHandle, char**, char*, int, int*, int, int);
  std::vector<std::string> names(NameQuery query, const char* word, int begin, int end) const;

 private:
  const Environment& environment_;
  ProbHandle handle_ = nullptr;
};

/* One network object of an environment, which must outlive it. */
class Network {
 public:
  Network(const Environment& environment, const std::string& name);
  ~Network();
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  NetProbHandle handle() const { return handle_; }
  const Environment& environment() const { return environment_; }
  int nodes() const { return TVKNETgetnumnodes(environment_.handle(), handle_); }
  int arcs() const { return TVKNETgetnumarcs(environment_.handle(), handle_); }

  /* A range query over all nodes or all arcs. */
  template <class Query>
  std::vector<double> all(Query query, int count) const {
    return query_all<double>(environment_, handle_, query, count);
  }
  /* Where the network has no names: n1 ... and a1 .... */
  std::vector<std::string> node_names(int begin, int end) const;
  std::vector<std::string> arc_names(int begin, int end) const;

 private:
  const Environment& environment_;
  NetProbHandle handle_ = nullptr;
};

}  // namespace tovik::cli
