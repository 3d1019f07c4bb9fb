/* Pricing a row: by rows, by columns and by the table are one product, whichever columns have come and gone.
 */
#include "lp/simplex/row_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/scattered_lps.h"
#include "support/sparse_check.h"

namespace tovik::lp::simplex {
namespace {

using support::DenseLp;
using support::Random;

class Pricing {
 public:
  Pricing(Random& random, int rows, int columns)
      : random_(random), table_(support::scattered_lp(random, rows, columns)), matrix_(table_.data().matrix) {
    active_.resize(static_cast<size_t>(columns));
    for (char& a : active_) a = static_cast<char>(random.chance(0.6));
    copy_.build(matrix_, active_);
  }

  /* A column enters or leaves, or is told what it is already. */
  void turn_one() {
    const int j = random_.below(table_.columns());
    active_[j] = static_cast<char>(random_.chance(0.5));
    active_[j] ? copy_.activate(j) : copy_.deactivate(j);
  }

  /* Listed, listed with zeros and a full array without a list. */
  SparseVector random_rho() const {
    SparseVector rho;
    rho.resize(table_.rows());
    const double density = random_.chance(0.5) ? 0.1 : 0.9;
    for (int i = 0; i < table_.rows(); ++i) {
      if (!random_.chance(density)) continue;
      rho.array[i] = random_.chance(0.1) ? 0 : random_.uniform(-2, 2);
      rho.index[rho.count++] = i;
    }
    std::shuffle(rho.index.begin(), rho.index.begin() + rho.count, random_.engine());
    if (random_.chance(0.2)) rho.count = -1;
    return rho;
  }

  void check_product(const SparseVector& rho, const SparseVector& alpha) const {
    for (int j = 0; j < table_.columns(); ++j) {
      double product = 0;
      for (int i = 0; i < table_.rows() && active_[j]; ++i) product += table_.a[i][j] * rho.array[i];
      EXPECT_NEAR(alpha.array[j], product, 1e-12) << "column " << j;
    }
    EXPECT_EQ(support::list_complaint(alpha), "");
  }

  void check_work(const SparseVector& rho) const {
    std::int64_t entries = 0, of_rho = 0;
    for (int j = 0; j < table_.columns(); ++j) {
      for (int i = 0; i < table_.rows() && active_[j]; ++i) {
        if (table_.a[i][j] == 0) continue;
        ++entries;
        of_rho += std::count(rho.index.begin(), rho.index.begin() + std::max(0, rho.count), i);
      }
    }
    EXPECT_EQ(copy_.active_entries(), entries);
    EXPECT_EQ(copy_.row_work(rho), of_rho);
  }

  /* A row holds all its entries, those of inactive columns too. */
  void check_rows() const {
    for (int i = 0; i < table_.rows(); ++i) {
      std::vector<double> row(static_cast<size_t>(table_.columns()), 0.0);
      const auto index = copy_.row_index(i);
      for (size_t k = 0; k < index.size(); ++k) row[index[k]] = copy_.row_value(i)[k];
      EXPECT_EQ(row, table_.a[i]) << "row " << i;
      EXPECT_EQ(static_cast<int>(index.size()),
                table_.columns() - std::count(table_.a[i].begin(), table_.a[i].end(), 0.0));
    }
  }

  void check() const {
    const SparseVector rho = random_rho();
    SparseVector alpha;
    alpha.resize(table_.columns());
    copy_.price_by_columns(rho, alpha);
    check_product(rho, alpha);
    for (const double expected : {0.0, 0.05, 1.0}) {
      for (const bool list_always : {false, true}) {
        alpha.clear();
        copy_.price_by_rows(rho, expected, list_always, alpha);
        EXPECT_TRUE(alpha.count >= 0 || !list_always);
        check_product(rho, alpha);
      }
    }
    check_work(rho);
    check_rows();
  }

 private:
  Random& random_;
  const DenseLp table_;
  const Matrix matrix_;
  RowCopy copy_;
  std::vector<char> active_;
};

TEST(RowCopy, PricesTheActiveColumnsWhateverCameAndWent) {
  Random random(301);
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    Pricing pricing(random, random.pick(1, 12), random.pick(1, 80));
    for (int step = 0; step < 12; ++step) {
      pricing.check();
      for (int k = random.pick(0, 10); k > 0; --k) pricing.turn_one();
    }
    if (HasFailure()) break;
  }
}

}  // namespace
}  // namespace tovik::lp::simplex
