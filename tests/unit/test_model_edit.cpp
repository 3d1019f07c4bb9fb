/* Rows and columns that go and come under a basis that stays: the state is then that of the edited model, without a
 * pivot and, where rows stay, with the factor of before; weights are the exact norms of the rows of the inverse. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/simplex/relaxation.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;

/* With an optimum, and many optimal bases that hold logicals and columns alike. */
DenseLp bounded_lp(support::Random& random, int rows, int columns) {
  DenseLp lp = scattered_lp(random, rows, columns);
  for (int j = 0; j < columns; ++j) {
    lp.lower[j] = random.pick(-2, 1);
    lp.upper[j] = lp.lower[j] + random.pick(0, 6);
  }
  for (int i = 0; i < rows; ++i) {
    lp.row_lower[i] = random.chance(0.5) ? -kInf : -random.pick(4, 20);
    lp.row_upper[i] = random.chance(0.5) ? kInf : random.pick(4, 20);
    for (double& a : lp.a[i]) a *= i % 3 == 0 ? 100 : 1;  // to be scaled
  }
  return lp;
}

/* The edit in both: rows and columns of the table that the basis allows, new ones at random. */
struct Edit {
  std::vector<int> rows, columns;  // that go
  ModelEdit change;

  Edit(support::Random& random, DenseLp& lp, const Answer& basis) {
    const bool with_rows = random.chance(0.5);
    for (int j = 0; j < lp.columns(); ++j) {
      if (basis.column_status[j] != BasisStatus::basic && random.chance(0.3)) columns.push_back(j);
    }
    for (int i = 0; i < lp.rows(); ++i) {
      if (with_rows && basis.row_status[i] == BasisStatus::basic && random.chance(0.4)) rows.push_back(i);
    }
    for (size_t k = columns.size(); k-- > 0;) erase_column(lp, columns[k]);
    for (size_t k = rows.size(); k-- > 0;) {
      lp.a.erase(lp.a.begin() + rows[k]);
      lp.row_lower.erase(lp.row_lower.begin() + rows[k]);
      lp.row_upper.erase(lp.row_upper.begin() + rows[k]);
    }
    const int kept = lp.columns();
    const int new_rows = with_rows ? random.pick(0, 3) : 0;
    for (int k = 0; k < new_rows; ++k) add_row(random, lp);
    for (int k = random.pick(0, 3); k > 0; --k) add_column(random, lp);
    change.deleted_rows = rows;
    change.deleted_columns = columns;
    change.columns.rows = lp.rows();
    for (int j = kept; j < lp.columns(); ++j) {
      for (int i = 0; i < lp.rows(); ++i) put(change.columns, i, lp.a[i][j]);
      close(change.columns);
      change.cost.push_back(lp.cost[j]);
      change.lower.push_back(lp.lower[j]);
      change.upper.push_back(lp.upper[j]);
    }
    change.rows.rows = kept;
    for (int i = lp.rows() - new_rows; i < lp.rows(); ++i) {
      for (int j = 0; j < kept; ++j) put(change.rows, j, lp.a[i][j]);
      close(change.rows);
      change.row_lower.push_back(lp.row_lower[i]);
      change.row_upper.push_back(lp.row_upper[i]);
    }
  }

 private:
  static void put(Matrix& lines, int index, double value) {
    if (value == 0) return;
    lines.index.push_back(index);
    lines.value.push_back(value);
  }
  static void close(Matrix& lines) {
    lines.start.push_back(static_cast<int>(lines.index.size()));
    ++lines.columns;
  }
  static void erase_column(DenseLp& lp, int j) {
    for (auto& row : lp.a) row.erase(row.begin() + j);
    for (auto* v : {&lp.cost, &lp.lower, &lp.upper}) v->erase(v->begin() + j);
  }
  static void add_row(support::Random& random, DenseLp& lp) {
    lp.a.emplace_back();
    for (int j = 0; j < lp.columns(); ++j) lp.a.back().push_back(random.pick(-3, 3));
    lp.row_lower.push_back(-random.pick(0, 9));
    lp.row_upper.push_back(kInf);
  }
  static void add_column(support::Random& random, DenseLp& lp) {
    for (auto& row : lp.a) row.push_back(random.chance(0.5) ? random.pick(-3, 3) : 0);
    lp.cost.push_back(random.pick(-4, 4));
    lp.lower.push_back(random.pick(-2, 1));
    lp.upper.push_back(lp.lower.back() + random.pick(1, 5));
  }
};

/* A x = s in the user's space, and the duals of the basis. Answer: as extracted. */
void expect_state_of(const DenseLp& lp, const Answer& answer) {
  ASSERT_EQ(answer.x.size(), lp.cost.size());
  ASSERT_EQ(answer.y.size(), lp.row_lower.size());
  for (int i = 0; i < lp.rows(); ++i) {
    double sum = 0, size = 1;
    for (int j = 0; j < lp.columns(); ++j) {
      sum += lp.a[i][j] * answer.x[j];
      size += std::fabs(lp.a[i][j] * answer.x[j]);
    }
    if (answer.row_status[i] == BasisStatus::basic) {
      EXPECT_EQ(answer.y[i], 0);
      continue;
    }
    const double side = answer.row_status[i] == BasisStatus::lower ? lp.row_lower[i] : lp.row_upper[i];
    EXPECT_NEAR(sum, side, 1e-9 * size) << "row " << i;
  }
  for (int j = 0; j < lp.columns(); ++j) {
    double sum = lp.cost[j], size = 1 + std::fabs(sum);
    for (int i = 0; i < lp.rows(); ++i) {
      sum -= lp.a[i][j] * answer.y[i];
      size += std::fabs(lp.a[i][j] * answer.y[i]);
    }
    EXPECT_NEAR(answer.d[j], sum, 1e-9 * size) << "column " << j;
    if (answer.column_status[j] == BasisStatus::basic) {
      EXPECT_NEAR(sum, 0, 1e-9 * size);
    } else {
      const double bound = answer.column_status[j] == BasisStatus::lower ? lp.lower[j] : lp.upper[j];
      EXPECT_EQ(answer.x[j], bound) << "column " << j;
    }
  }
}

/* The weights are norms of the rows of the inverse: all, or those of the logicals from a row on. */
void expect_exact_weights(Solver& solver, int first_row = -1) {
  ASSERT_TRUE(solver.has_dual_norms());
  ASSERT_TRUE(solver.ensure_factor());
  const std::vector<double> weights = solver.dual_norms();
  SparseVector rho;
  rho.resize(static_cast<int>(weights.size()));
  const Core& core = solver.core();
  for (size_t p = 0; p < weights.size(); ++p) {
    if (first_row >= 0 && core.basis.head(static_cast<int>(p)) < core.n() + first_row) continue;
    rho.clear();
    rho.set_unit(static_cast<int>(p));
    solver.btran(rho);
    EXPECT_NEAR(weights[p], rho.norm2(), 1e-8 * (1 + rho.norm2())) << "position " << p;
  }
}

TEST(ModelEdit, TheStateIsThatOfTheEditedModel) {
  int edits = 0, kept_factor = 0, with_rows = 0;
  for (int round = 0; round < 300; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    DenseLp lp = bounded_lp(random, random.pick(1, 9), random.pick(1, 12));
    support::QuietControl control;
    Options options;
    options.dual_pricing = Pricing::steepest_edge;
    Solver solver(lp.data(), options, control, nullptr);
    if (solver.solve(Method::dual) != Outcome::optimal) continue;
    for (int step = 0; step < 4; ++step) {
      const Edit edit(random, lp, solver.answer());
      const std::int64_t built = solver.counters().factorizations;
      const std::vector<BasisStatus> rows = solver.answer().row_status;
      const auto basics = std::count(rows.begin(), rows.end(), BasisStatus::basic);
      ASSERT_TRUE(solver.edit(edit.change));
      const bool moved_rows = edit.change.moves_rows();
      ASSERT_TRUE(solver.factor_basis());
      if (solver.has_dual_norms()) expect_exact_weights(solver, lp.rows() - edit.change.new_rows());
      if (!moved_rows && solver.counters().factorizations == built) ++kept_factor;
      if (!moved_rows) {
        EXPECT_EQ(solver.counters().factorizations, built)
            << "columns that come and go leave the basis matrix alone";
      }
      solver.extract();
      expect_state_of(lp, solver.answer());
      const auto& after = solver.answer().row_status;
      EXPECT_EQ(std::count(after.begin(), after.end(), BasisStatus::basic),
                basics - static_cast<std::ptrdiff_t>(edit.rows.size()) + edit.change.new_rows());
      ++edits;
      with_rows += moved_rows;
      if (testing::Test::HasFailure()) return;
      const Outcome outcome = solver.solve(Method::dual);
      Solver cold(lp.data(), options, control, nullptr);
      ASSERT_EQ(cold.solve(Method::primal), outcome);
      if (outcome != Outcome::optimal) break;
      EXPECT_NEAR(solver.answer().objective, cold.answer().objective,
                  1e-7 * (1 + std::fabs(cold.answer().objective)));
    }
  }
  EXPECT_GT(edits, 300);
  EXPECT_GT(kept_factor, 100);
  EXPECT_GT(with_rows, 100);
}

/* Rows of a search: new ones under the optimal basis, others that go whatever their logicals are. */
TEST(ModelEdit, WeightsStayExactNorms) {
  int added = 0, deleted = 0;
  for (int round = 0; round < 200; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    const DenseLp lp = bounded_lp(random, random.pick(2, 9), random.pick(2, 12));
    support::QuietControl control;
    Options options;
    options.dual_pricing = Pricing::steepest_edge;
    Relaxation engine(lp.data(), options, control);
    if (engine.resolve(control) != Outcome::optimal || !engine.has_dual_norms()) continue;
    expect_exact_weights(engine);
    RowBlock block;
    block.entries.rows = lp.columns();
    for (int k = random.pick(1, 3); k > 0; --k) {
      for (int j = 0; j < lp.columns(); ++j) {
        if (!random.chance(0.6)) continue;
        block.entries.index.push_back(j);
        block.entries.value.push_back(random.pick(1, 9));
      }
      block.entries.start.push_back(static_cast<int>(block.entries.index.size()));
      ++block.entries.columns;
      block.lower.push_back(-random.pick(5, 30));
      block.upper.push_back(random.pick(5, 30));
    }
    engine.add_rows(block);
    expect_exact_weights(engine);
    ++added;
    if (engine.resolve(control) != Outcome::optimal || !engine.has_dual_norms()) continue;
    expect_exact_weights(engine);
    std::vector<int> gone;
    for (int i = 0; i < engine.user_lp().num_rows(); ++i) {
      if (random.chance(0.4)) gone.push_back(i);
    }
    engine.delete_rows(gone);
    if (engine.has_dual_norms()) {
      expect_exact_weights(engine);
      ++deleted;
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(added, 100);
  EXPECT_GT(deleted, 50);
}

}  // namespace
