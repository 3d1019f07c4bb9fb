/* Random edits of columns and of every family beside them through the public interface, compared with a
 * mirror that keeps columns by identity and so knows nothing of shifting indices. */
#include <algorithm>
#include <map>
#include <random>
#include <utility>

#include "support/describe_families.h"
#include "support/environment_fixture.h"

namespace {

using Terms = std::vector<std::pair<int, double>>;  // column identity, value

struct Item {
  std::string name;
  std::string head;  // what the line says between its name and its terms
  int column = -1;   // of an indicator constraint: the column that switches it
  Terms terms;
  std::map<std::pair<int, int>, double> products;
};

struct Mirror {
  std::vector<int> columns;  // identities in order
  std::map<int, char> types;
  std::vector<Item> sets, cuts, lazy, indicators, starts, rows;
  std::map<int, std::pair<int, int>> order;
  std::map<std::pair<int, int>, double> objective;
  bool quadratic = false, constrained = false;

  int index(int id) const {
    return static_cast<int>(std::find(columns.begin(), columns.end(), id) - columns.begin());
  }
  void drop_column(int id) {
    const auto is_it = [id](const auto& term) { return term.first == id; };
    const auto has_it = [id](const auto& product) {
      return product.first.first == id || product.first.second == id;
    };
    std::erase(columns, id);
    types.erase(id);
    order.erase(id);
    std::erase_if(objective, has_it);
    std::erase_if(indicators, [id](const Item& item) { return item.column == id; });
    for (auto* family : {&sets, &cuts, &lazy, &indicators, &starts, &rows}) {
      for (Item& item : *family) {
        std::erase_if(item.terms, is_it);
        std::erase_if(item.products, has_it);
      }
    }
  }

  std::string column(int id) const { return '#' + std::to_string(index(id)); }
  std::string text() const {
    std::string text = "type " + std::to_string(constrained ? 11 : quadratic ? 7 : 1) + ' ';
    for (const int id : columns) text += types.at(id);
    text += '\n';
    add(text, "set ", sets);
    add(text, "cut ", cuts);
    add(text, "lazy ", lazy);
    for (const Item& item : indicators)
      text += "if " + column(item.column) + item.head.substr(0, 3) + item.name + item.head.substr(3) +
              terms(item);
    for (const int id : columns) {
      const auto found = order.find(id);
      if (found == order.end()) continue;
      text += "order " + column(id) + ' ' + std::to_string(found->second.first) + ' ' +
              std::to_string(found->second.second) + '\n';
    }
    add(text, "start ", starts);
    for (const auto& [pair, value] : sorted(objective))
      text += "quad " + product(pair) + ' ' + number(value) + '\n';
    for (const Item& item : rows) {
      std::string line = terms(item);
      line.pop_back();
      text += "qrow " + item.name + item.head + line + " [";
      for (const auto& [pair, value] : sorted(item.products))
        text += ' ' + product(pair) + ':' + number(value);
      text += " ]\n";
    }
    return text;
  }

 private:
  static std::string number(double value) { return support::number(value); }
  static std::string product(std::pair<int, int> pair) {
    return '#' + std::to_string(pair.first) + "*#" + std::to_string(pair.second);
  }
  /* By current index, the lower one first. */
  std::map<std::pair<int, int>, double> sorted(const std::map<std::pair<int, int>, double>& products) const {
    std::map<std::pair<int, int>, double> result;
    for (const auto& [pair, value] : products) {
      const int i = index(pair.first), j = index(pair.second);
      result[{std::min(i, j), std::max(i, j)}] = value;
    }
    return result;
  }
  std::string terms(const Item& item) const {
    std::string text;
    for (const auto& [id, value] : item.terms) text += ' ' + column(id) + ':' + number(value);
    return text + '\n';
  }
  void add(std::string& text, const char* word, const std::vector<Item>& family) const {
    for (const Item& item : family) text += word + item.name + item.head + terms(item);
  }
};

class Twins {
 public:
  Twins(EnvHandle env, unsigned seed) : env_(env), random_(seed) {
    int status = 0;
    lp_ = TVKcreateprob(env, &status, "twin");
    EXPECT_EQ(TVKchgprobtype(env, lp_, 1), 0);
  }
  ~Twins() { TVKfreeprob(env_, &lp_); }

  void step() {
    switch (below(18)) {
      case 0:
      case 1:
        return add_columns();
      case 2:
        return delete_columns();
      case 3:
        return delete_column_set();
      case 4:
        return change_types();
      case 5:
        return add_sets();
      case 6:
        return add_pool(mirror_.cuts, TVKaddusercuts);
      case 7:
        return add_pool(mirror_.lazy, TVKaddlazyconstraints);
      case 8:
        return add_indicator();
      case 9:
        return copy_order();
      case 10:
        return add_starts();
      case 11:
        return change_start();
      case 12:
        return change_objective();
      case 13:
        return add_quadratic_row();
      case 14:
        return delete_items();
      case 15:
        return rename();
      case 16:
        return clone();
      default:
        return touch_rows();
    }
  }
  void compare() { ASSERT_EQ(support::describe_families(env_, lp_), mirror_.text()); }

 private:
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  double value() { return below(9) - 4.5; }
  int n() const { return static_cast<int>(mirror_.columns.size()); }
  int id(int j) const { return mirror_.columns[static_cast<std::size_t>(j)]; }
  std::string fresh_name() { return "n" + std::to_string(++names_); }
  void ok(int code) { ASSERT_EQ(code, 0); }

  /* Some columns, each once, in any order. */
  struct Sparse {
    std::vector<int> index;
    std::vector<double> value;
    Terms terms;
    int count() const { return static_cast<int>(index.size()); }
  };
  Sparse sparse() {
    Sparse s;
    std::vector<int> all(static_cast<std::size_t>(n()));
    for (int j = 0; j < n(); ++j) all[static_cast<std::size_t>(j)] = j;
    std::shuffle(all.begin(), all.end(), random_);
    all.resize(static_cast<std::size_t>(n() == 0 ? 0 : below(std::min(n(), 5) + 1)));
    for (const int j : all) {
      s.index.push_back(j);
      s.value.push_back(value());
      s.terms.emplace_back(id(j), s.value.back());
    }
    return s;
  }

  void add_columns() {
    const int count = 1 + below(4);
    std::string types;
    for (int k = 0; k < count; ++k) {
      types += "CBISN"[below(5)];
      mirror_.columns.push_back(++ids_);
      mirror_.types[ids_] = types.back();
    }
    ok(TVKnewcols(env_, lp_, count, nullptr, nullptr, nullptr, types.c_str(), nullptr));
  }
  void delete_columns() {
    if (n() == 0) return;
    const int begin = below(n()), end = std::min(n() - 1, begin + below(3));
    ok(TVKdelcols(env_, lp_, begin, end));
    for (int k = begin; k <= end; ++k) mirror_.drop_column(id(begin));
  }
  void delete_column_set() {
    std::vector<int> marks(static_cast<std::size_t>(n()));
    std::vector<int> gone;
    for (int j = 0; j < n(); ++j) {
      const int mark = below(6);
      marks[static_cast<std::size_t>(j)] = mark;
      if (mark == 1) gone.push_back(id(j));
    }
    if (n() == 0) return;
    ok(TVKdelsetcols(env_, lp_, marks.data()));
    for (const int column : gone) mirror_.drop_column(column);
  }
  void change_types() {
    const Sparse s = sparse();
    std::string types;
    for (int k = 0; k < s.count(); ++k) {
      types += "CBISN"[below(5)];
      mirror_.types[s.terms[static_cast<std::size_t>(k)].first] = types.back();
    }
    ok(TVKchgctype(env_, lp_, s.count(), s.index.data(), types.c_str()));
  }

  void add_sets() {
    const Sparse s = sparse();
    std::string name = fresh_name();
    char* names[] = {name.data()};
    const int begin = 0;
    const bool replace = below(4) == 0;
    ok((replace ? TVKcopysos : TVKaddsos)(env_, lp_, 1, s.count(), below(2) == 0 ? "1" : "2", &begin,
                                          s.index.data(), s.value.data(), names));
    char type = 0;
    int count = 0, surplus = 0, beg = 0;
    std::vector<int> index(9);
    std::vector<double> weight(9);
    const int last = TVKgetnumsos(env_, lp_) - 1;
    ok(TVKgetsos(env_, lp_, &count, &type, &beg, index.data(), weight.data(), 9, &surplus, last, last));
    if (replace) mirror_.sets.clear();
    mirror_.sets.push_back({name, std::string(" ") + type, -1, s.terms, {}});
  }
  using AddRows = int (*)(ConstEnvHandle, ProbHandle, int, int, const double*, const char*, const int*,
                          const int*, const double*, TVKnames);
  void add_pool(std::vector<Item>& family, AddRows add) {
    const Sparse a = sparse(), b = sparse();
    std::vector<int> index = a.index;
    std::vector<double> values = a.value;
    index.insert(index.end(), b.index.begin(), b.index.end());
    values.insert(values.end(), b.value.begin(), b.value.end());
    const int begin[] = {0, a.count()};
    std::string first = fresh_name(), second = fresh_name();
    char* names[] = {first.data(), second.data()};
    const double rhs[] = {value(), value()};
    ok(add(env_, lp_, 2, a.count() + b.count(), rhs, "LE", begin, index.data(), values.data(), names));
    family.push_back({first, " L " + support::number(rhs[0]), -1, a.terms, {}});
    family.push_back({second, " E " + support::number(rhs[1]), -1, b.terms, {}});
  }
  void add_indicator() {
    if (n() == 0) return;
    const Sparse s = sparse();
    const int column = below(n()), complemented = below(2);
    const std::string name = fresh_name();
    ok(TVKEaddindconstr(env_, lp_, column, complemented, s.count(), 2, 'G', s.index.data(), s.value.data(),
                        name.c_str()));
    mirror_.indicators.push_back({name, complemented != 0 ? "=0  G 2" : "=1  G 2", id(column), s.terms, {}});
  }
  void copy_order() {
    const Sparse s = sparse();
    std::vector<int> priority, direction;
    mirror_.order.clear();
    for (const auto& term : s.terms) {
      priority.push_back(below(9));
      direction.push_back(below(3) - 1);
      mirror_.order[term.first] = {priority.back(), direction.back()};
    }
    ok(TVKcopyorder(env_, lp_, s.count(), s.index.data(), priority.data(), direction.data()));
  }
  void add_starts() {
    const Sparse s = sparse();
    std::string name = fresh_name();
    char* names[] = {name.data()};
    const int begin = 0, effort = below(5);
    ok(TVKaddmipstarts(env_, lp_, 1, s.count(), &begin, s.index.data(), s.value.data(), &effort, names));
    mirror_.starts.push_back({name, ' ' + std::to_string(effort), -1, s.terms, {}});
  }
  void change_start() {
    if (mirror_.starts.empty()) return;
    const int which = below(static_cast<int>(mirror_.starts.size())), begin = 0;
    const Sparse s = sparse();
    ok(TVKchgmipstarts(env_, lp_, 1, &which, s.count(), &begin, s.index.data(), s.value.data(), nullptr));
    Terms& terms = mirror_.starts[static_cast<std::size_t>(which)].terms;
    for (const auto& term : s.terms) {
      const auto found =
          std::find_if(terms.begin(), terms.end(), [&](const auto& t) { return t.first == term.first; });
      if (found == terms.end()) {
        terms.push_back(term);
      } else {
        found->second = term.second;
      }
    }
  }
  void change_objective() {
    if (n() == 0) return;
    if (below(5) == 0) {
      std::vector<double> diagonal(static_cast<std::size_t>(n()));
      mirror_.objective.clear();
      for (int j = 0; j < n(); ++j) {
        diagonal[static_cast<std::size_t>(j)] = below(3);
        if (diagonal[static_cast<std::size_t>(j)] != 0)
          mirror_.objective[{id(j), id(j)}] = diagonal[static_cast<std::size_t>(j)];
      }
      ok(TVKcopyqpsep(env_, lp_, diagonal.data()));
    } else {
      const int i = below(n()), j = below(n());
      const double entry = below(3) == 0 ? 0.0 : value();
      ok(TVKchgqpcoef(env_, lp_, i, j, entry));
      mirror_.objective.erase({id(i), id(j)});
      mirror_.objective.erase({id(j), id(i)});
      if (entry != 0) mirror_.objective[{id(i), id(j)}] = entry;
    }
    mirror_.quadratic = TVKgetprobtype(env_, lp_) != 1;
    ASSERT_TRUE(mirror_.quadratic || mirror_.objective.empty());
  }
  void add_quadratic_row() {
    const Sparse linear = sparse(), a = sparse();
    Item item{fresh_name(), " L 3", -1, linear.terms, {}};
    std::vector<int> other;
    for (const auto& term : a.terms) {
      const int j = below(n());
      other.push_back(j);
      const std::pair<int, int> pair{term.first, id(j)}, swapped{id(j), term.first};
      item.products[item.products.count(swapped) != 0 ? swapped : pair] += term.second;
    }
    std::erase_if(item.products, [](const auto& product) { return product.second == 0; });
    ok(TVKaddqconstr(env_, lp_, linear.count(), a.count(), 3, 'L', linear.index.data(), linear.value.data(),
                     a.index.data(), other.data(), a.value.data(), item.name.c_str()));
    mirror_.rows.push_back(item);
    mirror_.constrained = true;
  }

  void delete_items() {
    using Delete = int (*)(ConstEnvHandle, ProbHandle, int, int);
    using DeleteSet = int (*)(ConstEnvHandle, ProbHandle, int*);
    const struct {
      std::vector<Item>& items;
      Delete range;
      DeleteSet marked;
    } families[] = {{mirror_.sets, TVKdelsos, TVKdelsetsos},
                    {mirror_.starts, TVKdelmipstarts, TVKdelsetmipstarts},
                    {mirror_.cuts, TVKdelusercuts, nullptr},
                    {mirror_.lazy, TVKdellazyconstraints, nullptr},
                    {mirror_.indicators, TVKEdelindconstrs, nullptr},
                    {mirror_.rows, TVKdelqconstrs, nullptr}};
    const auto& family = families[below(6)];
    const int count = static_cast<int>(family.items.size());
    if (count == 0) return;
    if (family.marked != nullptr && below(2) == 0) {
      std::vector<int> marks(family.items.size());
      for (int& mark : marks) mark = below(3);
      std::vector<Item> kept;
      for (std::size_t k = 0; k < marks.size(); ++k) {
        if (marks[k] != 1) kept.push_back(family.items[k]);
      }
      ok(family.marked(env_, lp_, marks.data()));
      family.items = kept;
    } else {
      const int begin = below(count), end = std::min(count - 1, begin + below(2));
      ok(family.range(env_, lp_, begin, end));
      family.items.erase(family.items.begin() + begin, family.items.begin() + end + 1);
    }
  }
  void rename() {
    const std::pair<char, std::vector<Item>*> families[] = {{'s', &mirror_.sets}, {'u', &mirror_.cuts},
                                                            {'l', &mirror_.lazy}, {'i', &mirror_.indicators},
                                                            {'q', &mirror_.rows}, {'m', &mirror_.starts}};
    const auto& [key, items] = families[below(6)];
    if (items->empty()) return;
    const int k = below(static_cast<int>(items->size()));
    (*items)[static_cast<std::size_t>(k)].name = fresh_name();
    ok(TVKchgname(env_, lp_, key, k, (*items)[static_cast<std::size_t>(k)].name.c_str()));
  }
  /* Goes on with a copy; the original is freed. */
  void clone() {
    int status = -1;
    ProbHandle copy = TVKcloneprob(env_, lp_, &status);
    ASSERT_EQ(status, 0);
    ok(TVKfreeprob(env_, &lp_));
    lp_ = copy;
  }
  void touch_rows() {
    if (TVKgetnumrows(env_, lp_) > 3) ok(TVKdelrows(env_, lp_, 0, 1));
    const Sparse s = sparse();
    const int begin = 0;
    ok(TVKaddrows(env_, lp_, 0, 1, s.count(), nullptr, nullptr, &begin, s.index.data(), s.value.data(),
                  nullptr, nullptr));
  }

  EnvHandle env_;
  ProbHandle lp_ = nullptr;
  std::mt19937 random_;
  Mirror mirror_;
  int ids_ = 0, names_ = 0;
};

class FamilyEdits : public support::WithEnvironment {};

TEST_F(FamilyEdits, MatchAMirrorThatKnowsColumnsByIdentity) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    Twins twins(env_, seed);
    for (int k = 0; k < 120 && !HasFatalFailure(); ++k) {
      twins.step();
      if (k % 3 == 0) twins.compare();  // in between changes meet deletions that only marked
    }
    if (HasFatalFailure()) return;
  }
}

}  // namespace
