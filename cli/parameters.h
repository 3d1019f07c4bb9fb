/* Parameters by name: setting them from text, and the table that `tovik params` prints. */
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "cli/library.h"
#include "cli/options.h"

namespace tovik::cli {

/* Why an assignment was refused, complete with what the user typed and a way out. */
struct ParameterError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Parameters {
 public:
  explicit Parameters(const Environment& environment);

  /* Sets one parameter. ParameterError: unknown name (with the three nearest), a value that is no number, or
   * one that the library refuses (with the range). */
  void apply(const Assignment& assignment) const;
  /* "TILIM=60 THREADS=2": the named parameters that differ from their defaults; "" when none does. */
  std::string changed() const;
  /* Lines of name, value, default, range and meaning; "" when nothing matches. `with_unused`: of parameters too that
   * this version stores and nothing reads. */
  std::string table(const std::string& pattern, bool with_unused) const;

 private:
  struct Entry {
    int number;
    int type;
    std::string name;  // without TVK_PARAM_
    std::string meaning;
  };
  struct Texts {
    std::string value, standard, range;
  };
  Entry find(const Assignment& assignment) const;
  std::vector<std::string> nearest(const std::string& name) const;
  Texts texts(const Entry& entry) const;

  const Environment& environment_;
  std::vector<Entry> entries_;  // the named ones, by number
};

}  // namespace tovik::cli
