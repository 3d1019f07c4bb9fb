/* What each kind of change discards. The table is the rule; the code below it only carries it out. */
#include <algorithm>
#include <iterator>
#include <utility>

#include "env/problem.h"

namespace tovik {
namespace {

enum Dropped : unsigned {
  kStatus = 1u << 0,        // the solution status becomes 0: queries find no solution; the pool goes
  kWorking = 1u << 1,       // working problem, after its solution was carried back
  kSecond = 1u << 2,        // second nested problem
  kPresolve = 1u << 3,      // presolved copy
  kSimplex = 1u << 4,       // factor and simplex state
  kSolution = 1u << 5,      // solution arrays
  kNorms = 1u << 6,         // stored pricing norms
  kMixedInteger = 1u << 7,  // tree bookkeeping, MIP start and cached mixed-integer data
  kStart = 1u << 8,         // starting basis and values
  kFilters = 1u << 9,       // filters of the solution pool
};

constexpr unsigned kBase = kStatus | kWorking | kSecond | kPresolve;
constexpr unsigned kDerived = kBase | kSimplex | kNorms | kMixedInteger;
constexpr unsigned kEverything = kDerived | kSolution | kStart;

struct Rule {
  Change change;
  unsigned dropped;
  int level;  // change level left in the start: 2 objective, 3 added columns, 1 others, 0 none
};

constexpr Rule kRules[] = {
    {Change::names, kWorking | kSecond, 0},
    {Change::objective_sense, kBase, 1},
    {Change::objective, kBase, 2},
    {Change::bounds, kBase, 1},
    {Change::ranges, kBase, 1},
    {Change::rhs, kBase, 1},
    {Change::matrix, kBase | kSimplex | kStart, 1},
    {Change::senses, kBase | kSimplex | kStart, 1},
    {Change::add_columns, kBase, 3},
    {Change::delete_columns, kBase | kSimplex | kNorms | kFilters, 1},  // norms name their columns by index
    {Change::rows, kDerived, 1},
    {Change::column_types, kDerived, 1},
    {Change::sets, kDerived, 1},
    {Change::branching_order, kWorking | kSecond | kMixedInteger, 0},
    {Change::starts, kWorking | kSecond, 0},
    {Change::whole_problem, kEverything | kFilters, 1},
    {Change::quadratic, kEverything, 1},
    {Change::problem_type, kEverything, 1},
    {Change::norms, kNorms, 0},
    {Change::unscaling, kNorms, 0},
};

const Rule& rule_of(Change change) {
  return *std::find_if(std::begin(kRules), std::end(kRules),
                       [&](const Rule& r) { return r.change == change; });
}

bool only_values(Change change) {
  return change == Change::objective_sense || change == Change::objective || change == Change::bounds ||
         change == Change::ranges || change == Change::rhs;
}

void clear_start(Start& start) {
  const int level = start.change_level;
  start = Start{};
  start.change_level = level;
}

}  // namespace

void update_solution(Problem& problem) noexcept {
  if (problem.solution || !problem.working || !problem.working->solution) return;
  problem.solution = std::move(problem.working->solution);
  problem.status = problem.working->status;
}

namespace {

void discard(Problem& problem, const Rule& rule, bool engine_follows) noexcept {
  const auto drops = [&](Dropped what) { return (rule.dropped & what) != 0; };
  if (drops(kWorking)) {
    update_solution(problem);
    problem.working.reset();
  }
  if (drops(kSecond)) problem.derived.reset();
  if (drops(kPresolve) && !std::exchange(problem.presolve_up_to_date, false)) problem.presolve.reset();
  if (drops(kSimplex) && !engine_follows) problem.simplex.reset();
  if (drops(kStart)) clear_start(problem.start);
  if (drops(kMixedInteger)) problem.mip.reset();
  if (drops(kNorms)) problem.norms = Norms{};
  if (drops(kSolution)) problem.solution.reset();
  if (drops(kStatus)) {
    problem.status = TVK_STATUS_NONE;
    problem.pool.reset();
  }
  if (drops(kFilters)) problem.filters.clear();
  problem.start.change_level = std::max(problem.start.change_level, rule.level);
}

}  // namespace

void invalidate(Problem& problem, Change change) noexcept {
  const Rule& rule = rule_of(change);
  if (only_values(change)) {
    problem.journal.lose_values();
  } else if ((rule.dropped & kStatus) != 0) {
    problem.journal.lose_structure();
  }
  discard(problem, rule, false);
  if (change == Change::whole_problem) problem.read_report = ReadReport{};
}

void invalidate(Problem& problem, Change change, std::initializer_list<Edit> edits) noexcept {
  for (const Edit& edit : edits) problem.journal.record(edit);
  const bool follows =
      problem.simplex != nullptr && problem.simplex->follows_structure() && !problem.journal.structure_lost();
  discard(problem, rule_of(change), follows);
}

}  // namespace tovik
