/* Random models written and read back are the same models: SAV and MPS to the last bit, LP to 15 digits. The
 * models hold names with hostile characters, extreme and denormal numbers, every kind of bound and type,
 * ranges, empty rows and columns, sets, indicators, cuts, quadratic terms. A failure prints the seed and the
 * file. */
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <span>
#include <string>

#include "fileio/record/file_families.h"
#include "fileio/record/model_reader.h"
#include "fileio/record/model_writer.h"
#include "fileio/sav/file.h"
#include "model/store/load.h"
#include "support/text_sink.h"

namespace {

using namespace tovik;
using fileio::FileModel;
using model::Model;
using model::ModelData;
using support::TextSink;

class Log final : public fileio::ReaderLog {
 public:
  void warning(std::string_view line) override { lines += line; }
  void result(std::string_view) override {}
  std::string lines;
};

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  /* exact: every double; otherwise ones that 15 digits hold, and sums of a right-hand side and a range
   * too. */
  ModelData make(bool exact, bool hostile) {
    exact_ = exact;
    ModelData data;
    const int columns = below(9) == 0 ? 1 : 1 + below(12), rows = below(9) == 0 ? 0 : 1 + below(10);
    data.problem_name = pick({"p", "two words", "tab\tand\nfeed", ""});
    data.objective_name = pick({"", "cost", "obj", "r1", "max", "a b"});
    data.objective_sense = below(2) == 0 ? 1 : -1;
    if (below(2) == 0) data.objective_offset = value();
    const bool types = below(2) == 0;
    data.start.push_back(0);
    for (int j = 0; j < columns; ++j) make_column(data, rows, types);
    for (int i = 0; i < rows; ++i) make_row(data);
    if (below(4) != 0) make_names(data.column_names, columns, hostile);
    if (below(4) != 0) make_names(data.row_names, rows, hostile);
    if (below(2) == 0) make_families(data.families, columns);
    return data;
  }

  /* What text files do not hold: a priority order, MIP starts, numbers that are none, -0. */
  void add_what_no_text_holds(ModelData& data) {
    const int columns = static_cast<int>(data.objective.size());
    model::Families& families = data.families;
    for (int k = below(4); k > 0; --k) {
      const Terms terms = make_terms(columns);
      families.starts.add({terms.view(), below(6) - 1, below(2) == 0 ? "start" : nullptr});
    }
    std::vector<model::OrderEntry> order;
    for (int k = below(4); k > 0; --k) order.push_back({below(columns), below(1000), below(3) - 1});
    families.order.assign(order);
    data.bounds_name = pick({"", "bnd"});
    data.objective[0] = std::bit_cast<double>(0x7ff8000000000000u + random_());
    data.lower[0] = -0.0;
    if (!data.rhs.empty()) data.rhs[0] = pick({-0.0, HUGE_VAL, 5e-324});
    families.quadratic_objective.set(0, 0, 5e-324);  // half of it is no number
  }
  /* Changes after which the arrays of a model have gaps and another order. */
  void edit(Model& model) {
    if (below(2) == 0) return;
    for (int k = below(5); k > 0 && model.num_rows() > 0; --k)
      model.set_coefficient(below(model.num_rows()), below(model.num_columns()), below(3) == 0 ? 0 : value());
    if (below(2) == 0 && model.num_rows() > 2) model.delete_rows(1, 1);
    if (below(2) == 0 && model.num_columns() > 2) model.delete_columns(1, 1);
    const char* const name = "renamed";
    const int first = 0;
    if (below(2) == 0) model.rename_columns(1, &first, &name);
  }

 private:
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  template <class T>
  T pick(std::initializer_list<T> from) {
    return from.begin()[below(static_cast<int>(from.size()))];
  }
  std::string pick(std::initializer_list<const char*> from) {
    return from.begin()[below(static_cast<int>(from.size()))];
  }

  double value() {
    const int kind = below(10);
    if (kind < 4) return below(2001) - 1000;
    if (kind < 6) return (below(20001) - 10000) / 100.0;
    if (!exact_) return pick({1e15, -1e-300, 1e19, 0.1, 1e-5, 1e-4, 123456789012345.0, -7.25e100, 1e300});
    if (kind < 8)
      return pick({5e-324, -2.2250738585072014e-308, 1.7976931348623157e308, 1e22, 1e23, 0.1 + 0.2});
    double any;
    do {
      any = std::bit_cast<double>((std::uint64_t{random_()} << 32) | random_());
    } while (!std::isfinite(any));
    return any;
  }
  double nonzero() {
    double v = 0;
    while (v == 0) v = value();
    return v;
  }
  double finite_bound() {
    double v = value();
    while (std::fabs(v) >= 1e20) v = value();
    return v;
  }

  void make_column(ModelData& data, int rows, bool types) {
    data.objective.push_back(below(3) == 0 ? 0 : value());
    double lower = 0, upper = 1e20;
    switch (below(9)) {
      case 0:
        lower = -1e20;
        break;
      case 1:
        lower = -1e20, upper = finite_bound();
        break;
      case 2:
        upper = finite_bound();
        break;
      case 3:
        lower = finite_bound();
        break;
      case 4:
        lower = finite_bound(), upper = finite_bound();
        break;
      case 5:
        lower = upper = finite_bound();
        break;
      case 6:
        upper = pick({0.0, 1.0, -1.0, -1e20});
        break;
      case 7:
        lower = 1e20;
        break;
      default:
        break;
    }
    const char type = types ? pick({'C', 'C', 'B', 'I', 'S', 'N'}) : 'C';
    if (type == 'B' && lower != upper) lower = 0, upper = 1;  // other bounds do not count for binaries
    data.lower.push_back(lower);
    data.upper.push_back(upper);
    if (types) data.types.push_back(type);
    for (int i = 0; i < rows; ++i) {
      if (below(3) != 0) continue;
      data.index.push_back(i);
      data.value.push_back(nonzero());
    }
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
  }

  void make_row(ModelData& data) {
    const char sense = pick({'L', 'G', 'E', 'R'});
    data.sense.push_back(sense);
    data.rhs.push_back(below(4) == 0 ? 0 : sense == 'R' && !exact_ ? below(1000) : value());
    data.range.push_back(sense != 'R' ? 0 : exact_ ? finite_bound() : below(101) - 50);
  }

  double coefficient() { return (1 + below(40)) / 4.0 * (below(2) == 0 ? 1 : -1); }

  /* Terms over ascending columns. */
  struct Terms {
    std::vector<int> index;
    std::vector<double> value;
    model::VectorView view() const { return {index.data(), value.data(), static_cast<int>(index.size())}; }
  };
  Terms make_terms(int columns) {
    Terms terms;
    for (int j = 0; j < columns; ++j) {
      if (below(3) != 0) continue;
      terms.index.push_back(j);
      terms.value.push_back(coefficient());
    }
    return terms;
  }
  std::vector<model::QuadraticTerm> make_products(int columns) {
    std::vector<model::QuadraticTerm> terms;
    for (int k = 1 + below(4); k > 0; --k) terms.push_back({below(columns), below(columns), coefficient()});
    model::normalize(terms);
    return terms;
  }
  void make_families(model::Families& families, int columns) {
    for (int k = below(3); k > 0; --k) {
      const Terms terms = make_terms(columns);
      const std::string name = "shared" + std::to_string(k);  // also by rows of other kinds
      families.sets.add({pick({'1', '2'}), terms.view(), below(2) == 0 ? "set" : nullptr});
      families.indicators.add(
          {{terms.view(), pick({'L', 'G', 'E'}), value(), name.c_str()}, below(columns), below(2) == 0});
      families.user_cuts.add({terms.view(), pick({'L', 'G', 'E'}), value()});
      families.lazy_constraints.add({terms.view(), pick({'L', 'G'}), value(), name.c_str()});
      const auto products = make_products(columns);
      if (!products.empty())
        families.quadratic_rows.add({{terms.view(), pick({'L', 'G'}), value()}, products});
    }
    if (below(2) == 0) families.quadratic_objective = model::QuadraticObjective(make_products(columns));
  }

  void make_names(model::NameBlock& block, int count, bool hostile) {
    static const char* const kOdd[] = {"x+y",       "e5",
                                       "e",         "3x",
                                       "",          " ",
                                       "a b",       "a\tb",
                                       "inf",       "INFINITY",
                                       "end",       "st",
                                       "free",      "bounds",
                                       "Bin",       "c1:",
                                       "[x]",       "x^2",
                                       "\x7f",      "\xff",
                                       "\xc3\xa9",  "'MARKER'",
                                       "RHS",       "max",
                                       "subjectto", "lazyconstraints",
                                       "s.t.",      "OBJCONST",
                                       "Rgr1",      "Rgc1",
                                       "same",      "a\nb",
                                       "$",         "*",
                                       "1e5"};
    for (int k = 0; k < count; ++k) {
      std::string name = "r" + std::to_string(k);
      if (hostile && below(3) == 0) name = kOdd[static_cast<std::size_t>(below(std::size(kOdd)))];
      if (!hostile && below(6) == 0) {
        name = pick({"Rgr1", "Rgr2", "free", "st", "bounds_", "x#1", "max", "\xc3\xa9"}) + std::to_string(k);
      }
      if (hostile && below(20) == 0) name = std::string(static_cast<std::size_t>(250 + below(20)), 'n');
      block.add(name);
    }
  }

  std::mt19937 random_;
  bool exact_ = true;
};

std::string hex(double v) {
  char text[40];
  std::snprintf(text, sizeof text, "%a", v == 0 ? 0.0 : v);  // no -0
  return text;
}

/* Terms in the order of the columns' numbers. */
std::string describe(const model::VectorView& terms, const std::vector<int>& number) {
  std::map<int, double> sorted;
  for (int k = 0; k < terms.count; ++k)
    sorted[number[static_cast<std::size_t>(terms.index[k])]] = terms.value[k];
  std::string text;
  for (const auto& [j, value] : sorted) text += " x" + std::to_string(j) + ':' + hex(value);
  return text;
}

std::string describe(std::span<const model::QuadraticTerm> terms, const std::vector<int>& number) {
  std::map<std::pair<int, int>, double> sorted;
  for (const model::QuadraticTerm& term : terms) {
    const int a = number[static_cast<std::size_t>(term.column)],
              b = number[static_cast<std::size_t>(term.other)];
    sorted[std::minmax(a, b)] = term.value;
  }
  std::string text;
  for (const auto& [pair, value] : sorted)
    text += " x" + std::to_string(pair.first) + "*x" + std::to_string(pair.second) + ':' + hex(value);
  return text;
}

std::string describe(const model::RowPool& rows, int k, const std::vector<int>& number) {
  const auto at = static_cast<std::size_t>(k);
  return describe(rows.row(k), number) + ' ' + rows.sense()[at] + ' ' + hex(rows.rhs()[at]);
}

std::string describe(const model::Families& f, const std::vector<int>& number) {
  std::string text = "Q" + describe(f.quadratic_objective.terms(), number) + '\n';
  for (int k = 0; k < f.quadratic_rows.size(); ++k)
    text += "q" + describe(f.quadratic_rows.linear(), k, number) +
            describe(f.quadratic_rows.terms(k), number) + '\n';
  for (int k = 0; k < f.indicators.size(); ++k) {
    const int column = f.indicators.column()[static_cast<std::size_t>(k)];
    text += (f.indicators.complemented(k) ? "not x" : "if x") +
            std::to_string(number[static_cast<std::size_t>(column)]) +
            describe(f.indicators.rows(), k, number) + '\n';
  }
  for (int k = 0; k < f.user_cuts.size(); ++k) text += "u" + describe(f.user_cuts, k, number) + '\n';
  for (int k = 0; k < f.lazy_constraints.size(); ++k)
    text += "l" + describe(f.lazy_constraints, k, number) + '\n';
  for (int k = 0; k < f.sets.size(); ++k)
    text += std::string("s") + f.sets.type()[static_cast<std::size_t>(k)] +
            describe(f.sets.members(k), number) + '\n';
  return text;
}

/* The whole model as text; columns in the order of their numbers. */
std::string describe(const Model& m, const std::vector<int>& number) {
  std::string text = m.objective_sense() > 0 ? "min " : "max ";
  text += hex(m.objective_offset()) + '\n';
  std::map<int, std::string> columns;
  for (int j = 0; j < m.num_columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    std::string column = "C ";
    if (!m.column_types().empty()) column[0] = m.column_types()[at];
    column += hex(m.objective()[at]) + " [" + hex(m.lower()[at]) + ',' + hex(m.upper()[at]) + "]";
    std::map<int, double> entries;
    for (int k = 0; k < m.column(j).count; ++k) entries[m.column(j).index[k]] = m.column(j).value[k];
    for (const auto& [row, entry] : entries) column += ' ' + std::to_string(row) + ':' + hex(entry);
    columns[number[at]] = column;
  }
  for (const auto& [j, column] : columns) text += 'x' + std::to_string(j) + ' ' + column + '\n';
  for (int i = 0; i < m.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    text += std::string(1, m.sense()[at]) + ' ' + hex(m.rhs()[at]) + ' ' + hex(m.range()[at]) + '\n';
  }
  return text + describe(m.families(), number);
}

/* Which of the written names `name` is: an own one, a generated one, or a rewritten one, which ends with its
 * position. */
int position_of(const model::NameTable& names, const std::string& name) {
  if (names.empty()) return std::stoi(name.substr(1)) - 1;
  const int own = names.find(name);
  return own >= 0 ? own : std::stoi(name.substr(name.rfind('#') + 1));
}

std::vector<int> positions(const model::NameTable& before, const model::NameTable& after, int count) {
  std::vector<int> numbers;
  for (int k = 0; k < count; ++k) numbers.push_back(position_of(before, after.name(k)));
  return numbers;
}

std::vector<int> in_order(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

/* What a file cannot tell apart, in the form in which it comes back: ranges run upward in LP files, and there
 * an end of the row is the sum of two numbers; a fixed binary column is a fixed integer one in MPS. */
void make_comparable(ModelData& data, bool mps) {
  for (std::size_t i = 0; i < data.sense.size() && !mps; ++i) {
    if (data.range[i] < 0) data.rhs[i] += data.range[i];
    data.range[i] = std::fabs(data.range[i]);
  }
  for (std::size_t j = 0; j < data.types.size() && mps; ++j) {
    if (data.types[j] == 'B' && data.lower[j] == data.upper[j]) data.types[j] = 'I';
  }
}

using Writer = int (*)(const fileio::WriteSource&, const fileio::WriteOptions&, fileio::ReaderLog&,
                       fileio::TextWriter&);
using Reader = fileio::ReadFailure (*)(fileio::ByteSource&, const fileio::ReadOptions&, fileio::ReaderLog&,
                                       FileModel&);

std::string written(const Model& model, const std::string& name, Writer writer, Log& log) {
  TextSink sink;
  fileio::TextWriter out(sink);
  EXPECT_EQ(writer({model, name}, {}, log, out), 0);
  EXPECT_TRUE(out.close());
  return sink.text;
}

struct Format {
  Writer write;
  Reader read;
};

void round_trip(unsigned seed, const Format& format, bool hostile) {
  const bool mps = format.write == fileio::write_mps;
  ModelData data = Generator(seed).make(mps, hostile);
  const std::string problem_name = data.problem_name;
  Log log;
  const std::string text = written(Model(ModelData(data)), problem_name, format.write, log);
  make_comparable(data, mps);
  const Model model(std::move(data));
  SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
  fileio::MemorySource source(text);
  FileModel file;
  const fileio::ReadFailure failure = format.read(source, {}, log, file);
  ASSERT_EQ(failure.code, 0) << "line " << failure.first << ' ' << failure.text << failure.text2;
  const Model loaded(fileio::data_of(std::move(file)));
  ASSERT_EQ(loaded.num_columns(), model.num_columns());
  ASSERT_EQ(loaded.num_rows(), model.num_rows());
  ASSERT_EQ(positions(model.row_names(), loaded.row_names(), model.num_rows()), in_order(model.num_rows()));
  ASSERT_EQ(describe(model, in_order(model.num_columns())),
            describe(loaded, positions(model.column_names(), loaded.column_names(), model.num_columns())))
      << log.lines;
}

TEST(WriteRead, MpsIsExact) {
  for (unsigned seed = 1; seed <= 3000 && !HasFatalFailure(); ++seed) {
    round_trip(seed, {fileio::write_mps, fileio::read_mps}, seed % 2 == 0);
  }
}

TEST(WriteRead, LpHasFifteenDigits) {
  for (unsigned seed = 1; seed <= 3000 && !HasFatalFailure(); ++seed) {
    round_trip(seed, {fileio::write_lp, fileio::read_lp}, seed % 2 == 0);
  }
}

std::vector<std::string> names_of(const model::NameTable& table) {
  std::vector<std::string> names;
  for (int k = 0; k < table.size(); ++k) names.emplace_back(table.name(k));
  return names;
}

/* What describe() leaves out. */
void expect_same_rest(const Model& a, const Model& b) {
  const model::Families &f = a.families(), &g = b.families();
  const std::pair<const model::NameTable&, const model::NameTable&> tables[] = {
      {a.column_names(), b.column_names()},
      {a.row_names(), b.row_names()},
      {f.sets.names(), g.sets.names()},
      {f.indicators.names(), g.indicators.names()},
      {f.user_cuts.names(), g.user_cuts.names()},
      {f.lazy_constraints.names(), g.lazy_constraints.names()},
      {f.quadratic_rows.names(), g.quadratic_rows.names()},
      {f.starts.names(), g.starts.names()}};
  for (const auto& [one, other] : tables) EXPECT_EQ(names_of(one), names_of(other));
  EXPECT_EQ(a.objective_name(), b.objective_name());
  EXPECT_EQ(a.bounds_name(), b.bounds_name());
  ASSERT_EQ(f.order.size(), g.order.size());
  for (std::size_t k = 0; k < f.order.entries().size(); ++k) {
    const model::OrderEntry &one = f.order.entries()[k], &other = g.order.entries()[k];
    EXPECT_TRUE(one.column == other.column && one.priority == other.priority &&
                one.direction == other.direction);
  }
  ASSERT_EQ(f.starts.size(), g.starts.size());
  const std::vector<int> same = in_order(a.num_columns());
  for (int k = 0; k < f.starts.size(); ++k) {
    EXPECT_EQ(f.starts.effort()[static_cast<std::size_t>(k)], g.starts.effort()[static_cast<std::size_t>(k)]);
    EXPECT_EQ(describe(f.starts.values(k), same), describe(g.starts.values(k), same));
  }
}

/* Any byte changed, any end cut off. */
void expect_damage_is_found(const std::string& bytes) {
  const auto code_of = [](const std::string& spoilt) {
    fileio::MemorySource source(spoilt);
    fileio::SavFile file;
    return fileio::read_sav(source, file);
  };
  for (std::size_t k = 0; k < bytes.size(); ++k) {
    for (const int flip : {1, 0x80, 0xff}) {
      std::string spoilt = bytes;
      spoilt[k] = static_cast<char>(spoilt[k] ^ flip);
      const int code = code_of(spoilt);
      ASSERT_TRUE(code == 1560 || code == 1561 || code == 1563) << "byte " << k << ": " << code;
    }
    const int code = code_of(bytes.substr(0, k));
    ASSERT_EQ(code, k < 11 ? 1560 : 1561) << "cut at " << k;
  }
}

void sav_round_trip(unsigned seed, bool hostile) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  Generator generator(seed);
  ModelData data = generator.make(true, hostile);
  generator.add_what_no_text_holds(data);
  if (data.families.has_mixed_integer() && data.types.empty()) data.types.assign(data.objective.size(), 'C');
  const int type = data.types.empty() ? 10 : seed % 3 == 0 ? 13 : 11;
  const std::string name = data.problem_name;
  Model model(std::move(data));
  generator.edit(model);
  TextSink sink, again;
  ASSERT_TRUE(fileio::write_sav({model, type, name, {}}, sink));
  fileio::MemorySource source(sink.text);
  fileio::SavFile file;
  ASSERT_EQ(fileio::read_sav(source, file), 0);
  ModelData loaded = fileio::model_data(std::move(file));
  EXPECT_EQ(loaded.problem_name, name);
  EXPECT_EQ(loaded.problem_type, type);
  const Model back(std::move(loaded));
  const std::vector<int> same = in_order(model.num_columns());
  ASSERT_EQ(back.num_columns(), model.num_columns());
  EXPECT_EQ(describe(back, same), describe(model, same));
  expect_same_rest(model, back);
  ASSERT_TRUE(fileio::write_sav({back, type, name, {}}, again));
  EXPECT_TRUE(sink.text == again.text) << "a bit of a number, or the order of entries";
  if (seed % 200 == 0) expect_damage_is_found(sink.text);
}

TEST(WriteRead, SavIsTheSameToTheLastBit) {
  for (unsigned seed = 1; seed <= 3000 && !HasFailure(); ++seed) sav_round_trip(seed, seed % 2 == 0);
}

}  // namespace
