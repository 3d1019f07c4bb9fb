/* The way between a mixed-integer problem and what presolve has left of it.
 *
 * - Holds: one record for each column that left, in the order in which they did, in columns of the original problem; which
 *   original columns and rows are left.
 * - expand(): the point of the original problem that belongs to one of the reduced problem, with the same objective.
 *   Integer columns are whole where those of the given point are. Rows and bounds hold but for what rounding and tolerances
 *   of the given point are multiplied with.
 * - crush(): the point, or the linear form, of the reduced problem that belongs to one of the original. A point that presolve
 *   has cut off for a better one lands outside the reduced problem: the caller judges it. A form has none where it tells
 *   apart columns that were merged, or uses a column that became the slack of a row.
 * - expand_bounds(): what bounds of the reduced columns say of the original ones. A merged column has the bounds that it had.
 * - Cost: what the records hold, and the columns. Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace tovik::mip {

/* Sum of coefficients times columns, and a constant. */
struct LinearForm {
  std::vector<int> columns;
  std::vector<double> values;
  double constant = 0;
};

struct Term {
  int column;
  double value;
};

class Postsolve {
 public:
  /* The original problem has as many columns; nothing has left it. */
  explicit Postsolve(std::vector<char> is_integer) : is_integer_(std::move(is_integer)) {}

  // Records, in the order of the reductions.
  void fixed(int column, double value) { records_.push_back(Fixed{column, value}); }
  /* column = constant + terms. */
  void substituted(int column, double constant, std::span<const Term> terms);
  struct Box {
    double lower, upper;
  };
  /* The column `kept` stands for kept + ratio * gone from here on. */
  void merged(int kept, Box kept_box, int gone, Box gone_box, double ratio);
  /* The column takes what a row, its other terms given, needs: coefficient * column + terms within sides. */
  void became_slack(int column, Box box, double coefficient, Box sides, std::span<const Term> terms);
  void finish(std::vector<int> column_map, std::vector<int> row_map);

  /* Original index by reduced index. */
  const std::vector<int>& column_map() const { return column_map_; }
  const std::vector<int>& row_map() const { return row_map_; }
  int original_columns() const { return static_cast<int>(is_integer_.size()); }

  std::vector<double> expand(std::span<const double> reduced) const;
  std::vector<Box> expand_bounds(std::span<const Box> reduced) const;
  std::vector<double> crush(std::span<const double> original) const;
  std::optional<LinearForm> crush(const LinearForm& original) const;

 private:
  struct Fixed {
    int column;
    double value;
  };
  struct Substituted {
    int column;
    double constant;
    std::size_t begin, end;  // of its terms
  };
  struct Merged {
    int kept, gone;
    Box kept_box, gone_box;
    double ratio;
  };
  struct Slack {
    int column;
    Box box;
    double coefficient;
    Box sides;
    std::size_t begin, end;
  };
  using Record = std::variant<Fixed, Substituted, Merged, Slack>;

  void keep_terms(std::span<const Term> terms) { terms_.insert(terms_.end(), terms.begin(), terms.end()); }
  double sum(std::size_t begin, std::size_t end, double constant, std::span<const double> x) const;
  double whole(int column, double value) const;
  void undo(const Fixed& r, std::vector<double>& x) const;
  void undo(const Substituted& r, std::vector<double>& x) const;
  void undo(const Merged& r, std::vector<double>& x) const;
  void undo(const Slack& r, std::vector<double>& x) const;
  Box range(const Substituted& r, std::span<const Box> boxes) const;

  std::vector<char> is_integer_;
  std::vector<Record> records_;
  std::vector<Term> terms_;
  std::vector<int> column_map_, row_map_;
};

}  // namespace tovik::mip
