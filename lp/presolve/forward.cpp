#include "lp/presolve/forward.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kSameRatio = 1e-9;  // relative difference at which a form still treats merged columns alike

/* One way of each operation. Null: what the operation takes away is all that changes. */
struct Steps {
  bool listed = false;
  int kept_rows_used = 0;  // so many of its first integers are rows that stay and whose sides it counts on
  void (*point)(Record, std::vector<double>& x) = nullptr;
  void (*duals)(Record, std::vector<double>& y) = nullptr;
  bool (*form)(Record, Form& form) = nullptr;
  void (*form_back)(Record, Form& form) = nullptr;
  void (*basis)(Record, Basis& basis) = nullptr;
};

/* Column s leaves by a x_s = beta - rest'x. */
void substitute(Form& form, int s, double a, double beta, const View& rest) {
  std::vector<double>& g = form.coefficients;
  if (g[s] == 0) return;
  const double factor = g[s] / a;
  g[s] = 0;
  form.constant += factor * beta;
  for (int k = 0; k < rest.length; ++k) {
    double& other = g[rest.index[k]];
    if (rest.index[k] != s) other = moved(other, -factor * rest.value[k]);
  }
}

At mirrored(At at, bool same_direction) {
  if (same_direction || (at != At::lower && at != At::upper)) return at;
  return at == At::lower ? At::upper : At::lower;
}

bool fixed_form(Record record, Form& form) {
  const int j = record.integer();
  form.constant += form.coefficients[j] * record.real();
  form.coefficients[j] = 0;
  return true;
}

/* The row's bound goes to the column. */
void singleton_basis(Record record, Basis& basis) {
  const int i = record.integer(), j = record.integer();
  const double a = record.real();
  if (basis.row[i] != At::basic && basis.column[j] == At::basic)
    basis.column[j] = mirrored(basis.row[i], a > 0);
}

struct Doubleton {
  int j, k;
  double a, b, beta;
  explicit Doubleton(Record record) {
    record.integer();
    j = record.integer();
    k = record.integer();
    a = record.real();
    b = record.real();
    beta = record.real();
  }
};

bool doubleton_form(Record record, Form& form) {
  const Doubleton d(record);
  substitute(form, d.j, d.a, d.beta, {1, &d.k, &d.b});
  return true;
}

/* A column that leaves from a bound takes the other one, were it basic, to the bound that this implies. */
void doubleton_basis(Record record, Basis& basis) {
  const Doubleton d(record);
  if (basis.column[d.j] != At::basic && basis.column[d.k] == At::basic)
    basis.column[d.k] = mirrored(basis.column[d.j], (d.a > 0) != (d.b > 0));
}

bool free_column_form(Record record, Form& form) {
  record.integer();
  const int s = record.integer();
  const double beta = record.real();
  record.real();
  const View row = record.line();
  const int* at = std::find(row.index, row.index + row.length, s);
  substitute(form, s, row.value[at - row.index], beta, row);
  return true;
}

void slack_in_equation_duals(Record record, std::vector<double>& y) {
  const int i = record.integer();
  record.real();
  record.real();
  y[i] -= record.real();
}

bool slack_in_equation_form(Record record, Form& form) {
  record.integer();
  const int s = record.integer();
  record.integer();
  const double a = record.real(), beta = record.real();
  record.real();
  record.real();
  record.real();
  substitute(form, s, a, beta, record.line());
  return true;
}

/* The row that is left has as its slack what the column was. */
void slack_in_equation_basis(Record record, Basis& basis) {
  const int i = record.integer(), s = record.integer();
  basis.row[i] = mirrored(basis.column[s], record.real() < 0);
}

/* Nothing says where the slack will stand between its bounds. */
bool slack_in_row_form(Record record, Form& form) {
  record.integer();
  return form.coefficients[record.integer()] == 0;
}

void slack_in_row_basis(Record record, Basis& basis) {
  const int i = record.integer(), s = record.integer();
  if (basis.column[s] == At::basic) basis.row[i] = At::basic;
}

/* Row k = g * row i leaves. */
void parallel_rows_duals(Record record, std::vector<double>& y) {
  const int i = record.integer(), k = record.integer();
  y[i] += record.real() * y[k];
}

void parallel_rows_basis(Record record, Basis& basis) {
  const int i = record.integer(), k = record.integer();
  if (basis.row[i] == At::basic) basis.row[i] = mirrored(basis.row[k], record.real() > 0);
}

/* Column j stands for x_j + g x_k. */
void parallel_columns_point(Record record, std::vector<double>& x) {
  const int j = record.integer(), k = record.integer();
  x[j] += record.real() * x[k];
}

bool parallel_columns_form(Record record, Form& form) {
  const int j = record.integer(), k = record.integer();
  const double wanted = record.real() * form.coefficients[j], given = form.coefficients[k];
  form.coefficients[k] = 0;
  return std::fabs(wanted - given) <= kSameRatio * std::max(std::fabs(wanted), std::fabs(given));
}

void parallel_columns_back(Record record, Form& form) {
  const int j = record.integer(), k = record.integer();
  form.coefficients[k] = record.real() * form.coefficients[j];
}

void parallel_columns_basis(Record record, Basis& basis) {
  const int j = record.integer(), k = record.integer();
  if (basis.column[k] == At::basic) basis.column[j] = At::basic;
}

bool zero_cost_form(Record record, Form& form) {
  return form.coefficients[record.integer()] == 0;
}

/* Row q got s times row e. */
void row_addition_duals(Record record, std::vector<double>& y) {
  const int q = record.integer(), e = record.integer();
  y[e] -= record.real() * y[q];
}

constexpr auto kTable = [] {
  std::array<Steps, static_cast<size_t>(Op::count)> table{};
  const auto set = [&table](Op op, Steps steps) {
    steps.listed = true;
    table[static_cast<size_t>(op)] = steps;
  };
  set(Op::free_row, {});
  set(Op::singleton_row, {.basis = singleton_basis});
  set(Op::forcing_row, {});
  set(Op::fixed_column, {.form = fixed_form});
  set(Op::doubleton, {.form = doubleton_form, .basis = doubleton_basis});
  set(Op::free_column, {.form = free_column_form});
  set(Op::slack_in_equation, {.kept_rows_used = 1,
                              .duals = slack_in_equation_duals,
                              .form = slack_in_equation_form,
                              .basis = slack_in_equation_basis});
  set(Op::slack_in_row, {.kept_rows_used = 1, .form = slack_in_row_form, .basis = slack_in_row_basis});
  set(Op::parallel_rows, {.kept_rows_used = 1, .duals = parallel_rows_duals, .basis = parallel_rows_basis});
  set(Op::parallel_columns, {.point = parallel_columns_point,
                             .form = parallel_columns_form,
                             .form_back = parallel_columns_back,
                             .basis = parallel_columns_basis});
  set(Op::zero_cost_column, {.form = zero_cost_form});
  set(Op::row_addition, {.kept_rows_used = 2, .duals = row_addition_duals});
  set(Op::row_made_equation, {.kept_rows_used = 1});
  return table;
}();

const Steps& steps_of(const Stack& stack, int k) {
  return kTable[static_cast<size_t>(stack.op(k))];
}

/* A new operation must say what its way there is. */
static_assert(std::count_if(kTable.begin(), kTable.end(), [](const Steps& s) { return s.listed; }) ==
              static_cast<int>(Op::count));

template <class T>
std::vector<T> gather(const std::vector<T>& values, const std::vector<int>& map) {
  std::vector<T> result;
  result.reserve(map.size());
  for (const int k : map) result.push_back(values[k]);
  return result;
}

}  // namespace

std::vector<double> crush_point(const Reduction& reduction, std::vector<double> x) {
  const Stack& stack = reduction.stack;
  for (int k = 0; k < stack.size(); ++k) {
    if (const auto step = steps_of(stack, k).point; step != nullptr) step(stack.record(k), x);
  }
  return gather(x, reduction.column_map);
}

std::vector<double> crush_duals(const Reduction& reduction, std::vector<double> y) {
  const Stack& stack = reduction.stack;
  for (int k = 0; k < stack.size(); ++k) {
    if (const auto step = steps_of(stack, k).duals; step != nullptr) step(stack.record(k), y);
  }
  return gather(y, reduction.row_map);
}

bool crush_form(const Reduction& reduction, Form& form) {
  const Stack& stack = reduction.stack;
  for (int k = 0; k < stack.size(); ++k) {
    const auto step = steps_of(stack, k).form;
    if (step != nullptr && !step(stack.record(k), form)) return false;
  }
  form.coefficients = gather(form.coefficients, reduction.column_map);
  return true;
}

void uncrush_form(const Reduction& reduction, Form& form) {
  std::vector<double> reduced = std::move(form.coefficients);
  form.coefficients.assign(reduction.column_fate.size(), 0.0);
  for (size_t k = 0; k < reduced.size(); ++k) form.coefficients[reduction.column_map[k]] = reduced[k];
  const Stack& stack = reduction.stack;
  for (int k = stack.size() - 1; k >= 0; --k) {
    if (const auto step = steps_of(stack, k).form_back; step != nullptr) step(stack.record(k), form);
  }
}

std::vector<char> plain_rows(const Reduction& reduction) {
  std::vector<char> plain(reduction.row_fate.size(), 1);
  const Stack& stack = reduction.stack;
  for (int k = 0; k < stack.size(); ++k) {
    Record record = stack.record(k);
    for (int used = 0; used < steps_of(stack, k).kept_rows_used; ++used) plain[record.integer()] = 0;
  }
  return plain;
}

Basis crush_basis(const Reduction& reduction, Basis basis) {
  const Stack& stack = reduction.stack;
  for (int k = 0; k < stack.size(); ++k) {
    if (const auto step = steps_of(stack, k).basis; step != nullptr) step(stack.record(k), basis);
  }
  return {gather(basis.column, reduction.column_map), gather(basis.row, reduction.row_map)};
}

}  // namespace tovik::lp::presolve
