#include "cli/model_data.h"

#include <cmath>
#include <limits>

namespace tovik::cli {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/* A lower end is infinite below, an upper one above; on the other side they are numbers like any other. */
double lower_end(double bound) {
  return bound <= -TVK_INFBOUND ? -kInfinity : bound;
}
double upper_end(double bound) {
  return bound >= TVK_INFBOUND ? kInfinity : bound;
}

void limit(char sense, double rhs, double range, double& lower, double& upper) {
  lower = upper = rhs;
  if (sense == 'L') lower = -kInfinity;
  if (sense == 'G') upper = kInfinity;
  if (sense == 'R') (range < 0 ? lower : upper) += range;
  lower = lower_end(lower);
  upper = upper_end(upper);
}

int entries_needed(int surplus) {
  return surplus < 0 ? -surplus : 0;
}

template <class Query>
Vectors matrix(const Model& model, Query query, int begin, int end) {
  Vectors all;
  if (begin > end) return all;
  ConstEnvHandle env = model.environment().handle();
  int count = 0, surplus = 0;
  query(env, model.handle(), &count, nullptr, nullptr, nullptr, 0, &surplus, begin, end);
  const int space = std::max(1, entries_needed(surplus));
  all.begin.resize(static_cast<std::size_t>(end - begin) + 2);
  all.index.resize(static_cast<std::size_t>(space));
  all.value.resize(static_cast<std::size_t>(space));
  model.environment().check(query(env, model.handle(), &count, all.begin.data(), all.index.data(),
                                  all.value.data(), space, &surplus, begin, end));
  all.begin.back() = count;
  all.index.resize(static_cast<std::size_t>(count));
  all.value.resize(static_cast<std::size_t>(count));
  return all;
}

using ExtraQuery = int (*)(ConstEnvHandle, ConstProbHandle, int*, double*, char*, int*, int*, double*, int,
                           int*, int, int);

std::vector<ExtraRow> extra_rows(const Model& model, ExtraQuery query, Model::NameQuery name_query,
                                 const char* word, int count) {
  std::vector<ExtraRow> rows(static_cast<std::size_t>(count));
  std::vector<double> rhs(rows.size());
  std::vector<char> sense(rows.size());
  const auto with_sides = [&](ConstEnvHandle env, ConstProbHandle lp, int* entries, int* begin, int* index,
                              double* value, int space, int* surplus, int first, int last) {
    return query(env, lp, entries, rhs.data(), sense.data(), begin, index, value, space, surplus, first,
                 last);
  };
  const Vectors terms = matrix(model, with_sides, 0, count - 1);
  const std::vector<std::string> names = model.names(name_query, word, 0, count - 1);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Slice entries = terms[static_cast<int>(k)];
    rows[k].name = names[k];
    rows[k].index.assign(entries.index.begin(), entries.index.end());
    rows[k].value.assign(entries.value.begin(), entries.value.end());
    limit(sense[k], rhs[k], 0, rows[k].lower, rows[k].upper);
  }
  return rows;
}

void resize(ExtraRow& row, int entries) {
  row.index.resize(static_cast<std::size_t>(entries));
  row.value.resize(static_cast<std::size_t>(entries));
}

}  // namespace

Limits row_limits(const Model& model) {
  const int rows = model.rows();
  const auto rhs = model.all<double>(TVKgetrhs, rows), range = model.all<double>(TVKgetrngval, rows);
  const auto sense = model.all<char>(TVKgetsense, rows);
  Limits limits{std::vector<double>(rhs.size()), std::vector<double>(rhs.size())};
  for (std::size_t i = 0; i < rhs.size(); ++i)
    limit(sense[i], rhs[i], range[i], limits.lower[i], limits.upper[i]);
  return limits;
}

Limits column_bounds(const Model& model) {
  Limits bounds{model.all<double>(TVKgetlb, model.columns()), model.all<double>(TVKgetub, model.columns())};
  std::ranges::transform(bounds.lower, bounds.lower.begin(), lower_end);
  std::ranges::transform(bounds.upper, bounds.upper.begin(), upper_end);
  return bounds;
}

double outside(double value, double lower, double upper) {
  return std::isfinite(value) ? std::max({0.0, lower - value, value - upper})
                              : std::numeric_limits<double>::quiet_NaN();
}

Vectors matrix_columns(const Model& model, int begin, int end) {
  return matrix(model, TVKgetcols, begin, end);
}

Vectors matrix_rows(const Model& model) {
  return matrix(model, TVKgetrows, 0, model.rows() - 1);
}

Vectors quadratic_objective(const Model& model) {
  if (TVKgetnumqpnz(model.environment().handle(), model.handle()) == 0) return {};
  return matrix(model, TVKgetquad, 0, model.columns() - 1);
}

std::vector<char> column_types(const Model& model) {
  if (!model.mixed_integer()) return std::vector<char>(static_cast<std::size_t>(model.columns()), 'C');
  return model.all<char>(TVKgetctype, model.columns());
}

std::vector<ExtraRow> lazy_constraints(const Model& model) {
  const int count = TVKgetnumlazyconstraints(model.environment().handle(), model.handle());
  return extra_rows(model, TVKgetlazyconstraints, TVKgetlazyconstraintname, "lazy constraint ", count);
}

std::vector<ExtraRow> user_cuts(const Model& model) {
  const int count = TVKgetnumusercuts(model.environment().handle(), model.handle());
  return extra_rows(model, TVKgetusercuts, TVKgetusercutname, "user cut ", count);
}

std::vector<IndicatorRow> indicators(const Model& model) {
  ConstEnvHandle env = model.environment().handle();
  std::vector<IndicatorRow> rows(static_cast<std::size_t>(TVKEgetnumindconstrs(env, model.handle())));
  for (int k = 0; k < static_cast<int>(rows.size()); ++k) {
    IndicatorRow& row = rows[static_cast<std::size_t>(k)];
    int count = 0, surplus = 0, complemented = 0;
    double rhs = 0;
    char sense = 'E';
    TVKEgetindconstr(env, model.handle(), nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, 0,
                     &surplus, k);
    resize(row, entries_needed(surplus));
    model.environment().check(TVKEgetindconstr(env, model.handle(), &row.column, &complemented, &count, &rhs,
                                               &sense, row.index.data(), row.value.data(),
                                               entries_needed(surplus), &surplus, k));
    row.complemented = complemented != 0;
    row.name = model.names(TVKEgetindconstrname, "indicator constraint ", k, k).front();
    limit(sense, rhs, 0, row.lower, row.upper);
  }
  return rows;
}

std::vector<QuadraticRow> quadratic_rows(const Model& model) {
  ConstEnvHandle env = model.environment().handle();
  std::vector<QuadraticRow> rows(static_cast<std::size_t>(TVKgetnumqconstrs(env, model.handle())));
  for (int k = 0; k < static_cast<int>(rows.size()); ++k) {
    QuadraticRow& row = rows[static_cast<std::size_t>(k)];
    int count = 0, products = 0, surplus = 0, product_surplus = 0;
    double rhs = 0;
    char sense = 'L';
    TVKgetqconstr(env, model.handle(), &count, &products, nullptr, nullptr, nullptr, nullptr, 0, &surplus,
                  nullptr, nullptr, nullptr, 0, &product_surplus, k);
    resize(row, entries_needed(surplus));
    const auto pairs = static_cast<std::size_t>(entries_needed(product_surplus));
    row.first.resize(pairs);
    row.second.resize(pairs);
    row.product.resize(pairs);
    model.environment().check(TVKgetqconstr(env, model.handle(), &count, &products, &rhs, &sense,
                                            row.index.data(), row.value.data(), entries_needed(surplus),
                                            &surplus, row.first.data(), row.second.data(), row.product.data(),
                                            static_cast<int>(pairs), &product_surplus, k));
    row.name = model.names(TVKgetqconstrname, "quadratic constraint ", k, k).front();
    limit(sense, rhs, 0, row.lower, row.upper);
  }
  return rows;
}

std::vector<OrderedSet> ordered_sets(const Model& model) {
  ConstEnvHandle env = model.environment().handle();
  std::vector<OrderedSet> sets(static_cast<std::size_t>(TVKgetnumsos(env, model.handle())));
  const int last = static_cast<int>(sets.size()) - 1;
  std::vector<char> types(sets.size());
  const Vectors members = matrix(
      model,
      [&](ConstEnvHandle e, ConstProbHandle lp, int* count, int* begin, int* index, double* weight, int space,
          int* surplus, int first, int end) {
        return TVKgetsos(e, lp, count, types.data(), begin, index, weight, space, surplus, first, end);
      },
      0, last);
  const std::vector<std::string> names = model.names(TVKgetsosname, "set ", 0, last);
  for (std::size_t k = 0; k < sets.size(); ++k) {
    const Slice entries = members[static_cast<int>(k)];
    sets[k] = {names[k],
               types[k],
               {entries.index.begin(), entries.index.end()},
               {entries.value.begin(), entries.value.end()}};
  }
  return sets;
}

}  // namespace tovik::cli
