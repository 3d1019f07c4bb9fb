/* What a problem holds beyond its rows and columns, as one text: for tests that compare whole models. */
#pragma once

#include <functional>

#include "support/describe_problem.h"

namespace support {

/* Sparse vectors 0 .. count-1 of a query: sized by a first call with space 0. */
struct Vectors {
  std::vector<int> begin, index;
  std::vector<double> value;
  std::size_t end(std::size_t k) const {
    return k + 1 < begin.size() ? static_cast<std::size_t>(begin[k + 1]) : index.size();
  }
};
/* int query(int* count, int* begin, int* index, double* value, int space, int* surplus) */
template <class Query>
Vectors vectors(int count, Query&& query) {
  Vectors v;
  if (count == 0) return v;
  int entries = 0, surplus = 0;
  query(nullptr, nullptr, nullptr, nullptr, 0, &surplus);
  const auto space = static_cast<std::size_t>(-surplus);
  v.begin.resize(static_cast<std::size_t>(count));
  v.index.resize(space + 1);
  v.value.resize(space + 1);
  EXPECT_EQ(
      query(&entries, v.begin.data(), v.index.data(), v.value.data(), static_cast<int>(space) + 1, &surplus),
      0);
  EXPECT_EQ(surplus, 1);
  EXPECT_EQ(entries, static_cast<int>(space));
  v.index.resize(space);
  v.value.resize(space);
  return v;
}

class FamilyText {
 public:
  FamilyText(ConstEnvHandle env, ConstProbHandle lp) : env_(env), lp_(lp), columns_(TVKgetnumcols(env, lp)) {
    int surplus = 0;
    const bool named = columns_ > 0 && TVKgetcolname(env, lp, nullptr, nullptr, 0, &surplus, 0, 0) != 1219;
    if (named) column_names_ = names(env, lp, TVKgetcolname, columns_);
  }

  std::string text() {
    line("type " + std::to_string(TVKgetprobtype(env_, lp_)) + types());
    sets();
    rows("cut", TVKgetnumusercuts(env_, lp_), TVKgetusercuts, TVKgetusercutname);
    rows("lazy", TVKgetnumlazyconstraints(env_, lp_), TVKgetlazyconstraints, TVKgetlazyconstraintname);
    indicators();
    order();
    starts();
    objective();
    quadratic_rows();
    return text_;
  }

 private:
  using RowQuery = int (*)(ConstEnvHandle, ConstProbHandle, int*, double*, char*, int*, int*, double*, int,
                           int*, int, int);

  void line(const std::string& text) { text_ += text + '\n'; }
  std::string column(int j) const {
    return column_names_.empty() ? '#' + std::to_string(j) : column_names_[static_cast<std::size_t>(j)];
  }
  std::string terms(const Vectors& v, std::size_t k) const {
    std::string text;
    for (auto p = static_cast<std::size_t>(v.begin[k]); p < v.end(k); ++p)
      text += ' ' + column(v.index[p]) + ':' + number(v.value[p]);
    return text;
  }
  std::string name(NameQuery query, int k) const {
    char buffer[300];
    char* text = nullptr;
    int surplus = 0;
    return query(env_, lp_, &text, buffer, sizeof buffer, &surplus, k, k) == 0 ? text : "-";
  }

  std::string types() {
    std::string letters(static_cast<std::size_t>(columns_), '-');
    const int type = TVKgetprobtype(env_, lp_);
    const bool mixed = type == 1 || type == 7 || type == 11;
    if (mixed) {
      EXPECT_EQ(TVKgetctype(env_, lp_, letters.data(), 0, columns_ - 1), 0);
    }
    return mixed ? ' ' + letters : "";
  }
  void sets() {
    const int count = TVKgetnumsos(env_, lp_);
    std::string type(static_cast<std::size_t>(count), ' ');
    const Vectors v =
        vectors(count, [&](int* nz, int* begin, int* index, double* value, int space, int* surplus) {
          return TVKgetsos(env_, lp_, nz, type.data(), begin, index, value, space, surplus, 0, count - 1);
        });
    for (int k = 0; k < count; ++k) {
      const auto s = static_cast<std::size_t>(k);
      line("set " + name(TVKgetsosname, k) + ' ' + type[s] + terms(v, s));
    }
  }
  void rows(const char* word, int count, RowQuery query, NameQuery names) {
    std::vector<double> rhs(static_cast<std::size_t>(count));
    std::string sense(rhs.size(), ' ');
    const Vectors v =
        vectors(count, [&](int* nz, int* begin, int* index, double* value, int space, int* surplus) {
          return query(env_, lp_, nz, rhs.data(), sense.data(), begin, index, value, space, surplus, 0,
                       count - 1);
        });
    for (int k = 0; k < count; ++k) {
      const auto s = static_cast<std::size_t>(k);
      line(word + (' ' + name(names, k)) + ' ' + sense[s] + ' ' + number(rhs[s]) + terms(v, s));
    }
  }
  void indicators() {
    for (int k = 0; k < TVKEgetnumindconstrs(env_, lp_); ++k) {
      int switch_column = -1, complemented = -1;
      double rhs = 0;
      char sense = ' ';
      Vectors v = vectors(1, [&](int* nz, int* begin, int* index, double* value, int space, int* surplus) {
        if (begin != nullptr) *begin = 0;
        return TVKEgetindconstr(env_, lp_, &switch_column, &complemented, nz, &rhs, &sense, index, value,
                                space, surplus, k);
      });
      line("if " + column(switch_column) + (complemented != 0 ? "=0 " : "=1 ") +
           name(TVKEgetindconstrname, k) + ' ' + sense + ' ' + number(rhs) + terms(v, 0));
    }
  }
  void order() {
    int count = 0, surplus = 0;
    if (TVKgetorder(env_, lp_, nullptr, nullptr, nullptr, nullptr, 0, &surplus) != 1207) return;
    std::vector<int> columns(static_cast<std::size_t>(-surplus)), priority(columns), direction(columns);
    EXPECT_EQ(
        TVKgetorder(env_, lp_, &count, columns.data(), priority.data(), direction.data(), -surplus, &surplus),
        0);
    for (std::size_t k = 0; k < columns.size(); ++k)
      line("order " + column(columns[k]) + ' ' + std::to_string(priority[k]) + ' ' +
           std::to_string(direction[k]));
  }
  void starts() {
    const int count = TVKgetnummipstarts(env_, lp_);
    std::vector<int> effort(static_cast<std::size_t>(count));
    const Vectors v = vectors(count, [&](int* nz, int* begin, int* index, double* value, int space,
                                         int* surplus) {
      return TVKgetmipstarts(env_, lp_, nz, begin, index, value, effort.data(), space, surplus, 0, count - 1);
    });
    for (int k = 0; k < count; ++k) {
      const auto s = static_cast<std::size_t>(k);
      line("start " + name(TVKgetmipstartname, k) + ' ' + std::to_string(effort[s]) + terms(v, s));
    }
  }
  void objective() {
    if (TVKgetnumqpnz(env_, lp_) == 0) return;
    for (int i = 0; i < columns_; ++i) {
      for (int j = i; j < columns_; ++j) {
        double value = 0, other = 0;
        EXPECT_EQ(TVKgetqpcoef(env_, lp_, i, j, &value), 0);
        EXPECT_EQ(TVKgetqpcoef(env_, lp_, j, i, &other), 0);
        EXPECT_EQ(value, other);
        if (value != 0) line("quad " + column(i) + '*' + column(j) + ' ' + number(value));
      }
    }
  }
  void quadratic_rows() {
    for (int k = 0; k < TVKgetnumqconstrs(env_, lp_); ++k) {
      int linear = 0, products = 0, linear_surplus = 0, surplus = 0;
      double rhs = 0;
      char sense = ' ';
      TVKgetqconstr(env_, lp_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0, &linear_surplus,
                    nullptr, nullptr, nullptr, 0, &surplus, k);
      Vectors v;
      v.begin = {0};
      v.index.resize(static_cast<std::size_t>(1 - linear_surplus));
      v.value.resize(v.index.size());
      std::vector<int> row(static_cast<std::size_t>(1 - surplus)), other(row);
      std::vector<double> product(row.size());
      EXPECT_EQ(TVKgetqconstr(env_, lp_, &linear, &products, &rhs, &sense, v.index.data(), v.value.data(),
                              static_cast<int>(v.index.size()), &linear_surplus, row.data(), other.data(),
                              product.data(), static_cast<int>(row.size()), &surplus, k),
                0);
      v.index.resize(static_cast<std::size_t>(linear));
      std::string text =
          "qrow " + name(TVKgetqconstrname, k) + ' ' + sense + ' ' + number(rhs) + terms(v, 0) + " [";
      for (std::size_t p = 0; p < static_cast<std::size_t>(products); ++p)
        text += ' ' + column(row[p]) + '*' + column(other[p]) + ':' + number(product[p]);
      line(text + " ]");
    }
  }

  ConstEnvHandle env_;
  ConstProbHandle lp_;
  int columns_;
  std::vector<std::string> column_names_;
  std::string text_;
};

/* "type T LETTERS", then a line per item; names that are missing are "-":
 *   set NAME TYPE COLUMN:WEIGHT ...
 *   cut NAME SENSE RHS COLUMN:VALUE ...
 *   lazy NAME SENSE RHS COLUMN:VALUE ...
 *   if COLUMN=1 NAME SENSE RHS COLUMN:VALUE ...
 *   order COLUMN PRIORITY DIRECTION
 *   start NAME EFFORT COLUMN:VALUE ...
 *   quad COLUMN*COLUMN ENTRY_OF_Q
 *   qrow NAME SENSE RHS COLUMN:VALUE ... [ COLUMN*COLUMN:VALUE ... ] */
inline std::string describe_families(ConstEnvHandle env, ConstProbHandle lp) {
  return FamilyText(env, lp).text();
}

}  // namespace support
