/* What `check` found: kinds of findings with their worst items.
 * Of each kind the items are counted and those of the largest weight kept, so that a model with a million
 * faults costs no more text than one with five. */
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tovik::cli {

enum class Severity { error, warning, note };
const char* severity_name(Severity severity);

struct Kind {
  const char* id;  // of the JSON object
  Severity severity;
  const char* title;
  const char* advice;
};

struct Finding {
  double weight = 0;
  std::string text;
};

struct Group {
  const Kind* kind;
  long count = 0;
  std::vector<Finding> worst;  // by falling weight, then in the order of the model
};

class Findings {
 public:
  explicit Findings(int most) : most_(static_cast<std::size_t>(most)) {}
  /* `text` is made only of items that are kept. `kind` must live as long as the findings. */
  void add(const Kind& kind, double weight, const std::function<std::string()>& text);
  /* By severity, then in the order in which kinds were met first. */
  std::vector<Group> groups() const;
  long count(Severity severity) const;

 private:
  std::size_t most_;
  std::vector<Group> groups_;
};

}  // namespace tovik::cli
