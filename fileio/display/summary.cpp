/* The summary of a problem: what it is, how large, and how far its numbers lie apart. */
#include <cmath>
#include <limits>

#include "env/problem.h"
#include "fileio/display/display.h"
#include "fileio/stream/number_text.h"

namespace tovik::fileio {
namespace {

/* The magnitudes of some numbers other than zero and infinity. */
class Magnitudes {
 public:
  void add(double value) {
    const double size = std::fabs(value);
    if (size == 0 || !(size < model::kInfinity)) return;
    ++count_;
    least_ = std::min(least_, size);
    largest_ = std::max(largest_, size);
  }
  void add(std::span<const double> values) {
    for (const double value : values) add(value);
  }
  int count() const { return count_; }
  /* "0.5 to 300", "all 1" */
  std::string text() const {
    if (count_ == 0) return "none";
    return least_ == largest_ ? "all " + number(least_) : number(least_) + " to " + number(largest_);
  }

 private:
  static std::string number(double value) {
    constexpr int kWidth = 10;
    char text[kNumberText];
    return {text, write_fitting(text, value, kWidth)};
  }
  int count_ = 0;
  double least_ = std::numeric_limits<double>::infinity(), largest_ = 0;
};

std::string type_words(int type) {
  switch (type) {
    case TVK_PROBTYPE_LP:
      return "linear";
    case TVK_PROBTYPE_MILP:
      return "mixed-integer linear";
    case TVK_PROBTYPE_FIXED_MILP:
      return "fixed mixed-integer linear";
    case TVK_PROBTYPE_QP:
      return "quadratic";
    case TVK_PROBTYPE_MIQP:
      return "mixed-integer quadratic";
    case TVK_PROBTYPE_FIXED_MIQP:
      return "fixed mixed-integer quadratic";
    case TVK_PROBTYPE_QCP:
      return "quadratically constrained";
    case TVK_PROBTYPE_MIQCP:
      return "mixed-integer quadratically constrained";
    default:
      return "fixed mixed-integer quadratically constrained";
  }
}

/* One line: "Variables      12  (3 binary, 2 free)"; counts of zero are left out. */
class Line {
 public:
  Line(const char* head, std::int64_t total) : text_(head) {
    constexpr std::size_t kHead = 24;
    text_.resize(kHead, ' ');
    text_ += std::to_string(total);
  }
  Line& add(std::int64_t count, const char* what) {
    if (count == 0) return *this;
    text_ += details_++ == 0 ? "  (" : ", ";
    text_ += std::to_string(count) + ' ' + what;
    return *this;
  }
  Line& add(const std::string& detail) {
    text_ += (details_++ == 0 ? "  (" : ", ") + detail;
    return *this;
  }
  std::string text() const { return text_ + (details_ > 0 ? ")\n" : "\n"); }

 private:
  std::string text_;
  int details_ = 0;
};

std::string variables(const model::Model& model) {
  int fixed = 0, free = 0, boxed = 0, lower = 0, upper = 0;
  Magnitudes bounds;
  for (int j = 0; j < model.num_columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    const double low = model.lower()[at], high = model.upper()[at];
    const bool below = low > -model::kInfinity, above = high < model::kInfinity;
    fixed += low == high;
    free += !below && !above;
    boxed += below && above && low != high;
    upper += !below && above;
    lower += below && !above && low != 0;
    bounds.add(low);
    bounds.add(high);
  }
  Line line("Variables", model.num_columns());
  line.add(model.count_type('B'), "binary")
      .add(model.count_type('I'), "general")
      .add(model.count_type('S'), "semi-continuous")
      .add(model.count_type('N'), "semi-integer")
      .add(fixed, "fixed")
      .add(free, "free")
      .add(boxed, "between two bounds")
      .add(lower, "with a lower bound only")
      .add(upper, "with an upper bound only");
  if (bounds.count() > 0) line.add("bounds " + bounds.text());
  return line.text();
}

std::string objective(const model::Model& model) {
  Magnitudes costs, products;
  costs.add(model.objective());
  for (const model::QuadraticTerm& term : model.families().quadratic_objective.terms())
    products.add(term.value);
  Line line("Objective nonzeros", costs.count());
  if (costs.count() > 0) line.add(costs.text());
  line.add(products.count(), "quadratic terms");
  if (model.objective_offset() != 0) line.add("with a constant");
  return line.text();
}

std::string constraints(const model::Model& model) {
  int less = 0, equal = 0, greater = 0, ranged = 0;
  for (const char sense : model.sense()) {
    less += sense == 'L';
    equal += sense == 'E';
    greater += sense == 'G';
    ranged += sense == 'R';
  }
  Magnitudes sides, entries;
  sides.add(model.rhs());
  for (int j = 0; j < model.num_columns(); ++j) {
    const model::ColumnView column = model.column(j);
    entries.add({column.value, static_cast<std::size_t>(column.count)});
  }
  Line rows("Constraints", model.num_rows());
  rows.add(less, "<=").add(equal, "=").add(greater, ">=").add(ranged, "ranged");
  if (sides.count() > 0) rows.add("right-hand sides " + sides.text());
  Line nonzeros("Nonzeros", model.num_nonzeros());
  if (entries.count() > 0) nonzeros.add(entries.text());
  return rows.text() + nonzeros.text();
}

std::string family(const char* head, int count) {
  return count == 0 ? "" : Line(head, count).text();
}

}  // namespace

void display_summary(const Problem& problem, std::string& text) {
  const model::Model& model = *problem.model;
  const model::Families& f = model.families();
  text = "Problem                 " + problem.name + "  (" + type_words(problem.type) +
         (model.objective_sense() >= 0 ? ", minimize)\n" : ", maximize)\n");
  text += variables(model) + objective(model) + constraints(model);
  text += family("Quadratic constraints", f.quadratic_rows.size());
  text += family("Indicator constraints", f.indicators.size());
  text += family("Special ordered sets", f.sets.size());
  text += family("User cuts", f.user_cuts.size());
  text += family("Lazy constraints", f.lazy_constraints.size());
}

}  // namespace tovik::fileio
