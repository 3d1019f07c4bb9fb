/* Sums that decide feasibility against exact integer arithmetic, and the invariant of sparse vectors under
 * any sequence of their operations. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/base/sparse_vector.h"
#include "lp/base/sum.h"
#include "support/random.h"
#include "support/sparse_check.h"

namespace tovik::lp {
namespace {

using support::Random;
__extension__ using Integer = __int128;

/* An integer of up to so many bits that a double holds exactly. */
double integer(Random& random, int bits) {
  const double mantissa = std::floor(std::ldexp(random.uniform(0, 1), 40));
  const double v = std::floor(std::ldexp(mantissa, random.pick(0, bits) - 40));
  return random.pick(0, 1) ? v : -v;
}

/* Within one rounding of the exact value, and a double rounding of the terms: 2^-52 of the result and 2^-100
 * of what was added up. */
void expect_exact(double value, Integer exact, double magnitude, int round) {
  const double wanted = static_cast<double>(exact);
  EXPECT_NEAR(value, wanted, std::ldexp(std::fabs(wanted), -52) + std::ldexp(magnitude, -96))
      << "round " << round;
}

/* Terms of very different size, most of which are taken back later on: plain addition loses every digit. */
TEST(CompensatedSum, KeepsWhatCancellationLeaves) {
  Random random(201);
  int plain_is_wrong = 0;
  for (int round = 0; round < 500; ++round) {
    CompensatedSum sum;
    Integer exact = 0;
    double magnitude = 0, plain = 0;
    const auto add = [&](double v) {
      sum.add(v);
      exact += static_cast<Integer>(v);
      magnitude += std::fabs(v);
      plain += v;
    };
    const auto add_product = [&](double a, double b) {
      sum.add_product(a, b);
      exact += static_cast<Integer>(a) * static_cast<Integer>(b);
      magnitude += std::fabs(a * b);
      plain += a * b;
    };
    for (int k = random.pick(1, 40); k > 0; --k) {
      const double a = integer(random, 55), b = integer(random, 55);
      random.pick(0, 1) ? add(a) : add_product(a, b);
      if (random.pick(0, 2) > 0) add_product(-a, b), add_product(integer(random, 10), 3);
    }
    const auto taken_back = static_cast<double>(exact);
    add(-taken_back);
    expect_exact(sum.value(), exact, magnitude, round);
    plain_is_wrong += std::fabs(plain - static_cast<double>(exact)) > 0;
  }
  EXPECT_GT(plain_is_wrong, 250);
}

/* a * (to - from) although the difference is no double. */
TEST(CompensatedSum, DifferencesAreExact) {
  Random random(202);
  for (int round = 0; round < 1000; ++round) {
    const double to = integer(random, 60), from = integer(random, 60), a = integer(random, 40);
    const CompensatedSum::Difference difference(to, from);
    const Integer exact = static_cast<Integer>(to) - static_cast<Integer>(from);
    EXPECT_TRUE(static_cast<Integer>(difference.high) + static_cast<Integer>(difference.low) == exact)
        << round;
    CompensatedSum sum;
    sum.add_product(a, difference);
    sum.add_product(-a, difference.high);
    expect_exact(sum.value(), static_cast<Integer>(a) * (exact - static_cast<Integer>(difference.high)),
                 std::fabs(a * difference.high), round);
  }
}

/* A value that moves along a chain ends where one move to its end would have brought it. */
TEST(CompensatedSum, ChainsOfMovesDoNotDrift) {
  Random random(203);
  for (int round = 0; round < 50; ++round) {
    CompensatedSum sum;
    double x = 0;
    const double a = random.uniform(-1e6, 1e6);
    for (int k = 0; k < 1000; ++k) {
      const double next = random.uniform(-1e6, 1e6);
      sum.add_product(a, CompensatedSum::Difference(next, x));
      x = next;
    }
    sum.add_product(-a, x);
    EXPECT_NEAR(sum.value(), 0, 1e-14) << round;  // of terms of 1e12
  }
}

class SparseVectorModel {
 public:
  explicit SparseVectorModel(int dimension) : plain_(static_cast<size_t>(dimension)) {
    vector_.resize(dimension);
  }
  SparseVector& vector() { return vector_; }
  std::vector<double>& plain() { return plain_; }
  /* As the solves do: a position is listed when it first becomes nonzero. */
  void set(int i, double v) {
    if (vector_.count >= 0 && vector_.array[i] == 0 && v != 0) vector_.index[vector_.count++] = i;
    vector_.array[i] = v;
    plain_[i] = v;
  }
  void check(int round) const {
    EXPECT_EQ(vector_.array, plain_) << "round " << round;
    EXPECT_EQ(support::list_complaint(vector_), "") << "round " << round;
  }

 private:
  SparseVector vector_;
  std::vector<double> plain_;
};

TEST(SparseVector, AnySequenceOfOperationsKeepsTheInvariant) {
  Random random(204);
  for (int round = 0; round < 500; ++round) {
    TRACE_RANDOM(random, round);
    const int dimension = random.pick(1, 60);
    SparseVectorModel model(dimension);
    SparseVector& v = model.vector();
    for (int step = 0; step < 40; ++step) {
      switch (random.pick(0, 9)) {
        case 0:
          v.clear();
          std::fill(model.plain().begin(), model.plain().end(), 0.0);
          EXPECT_EQ(v.count, 0);
          break;
        case 1:
          v.tight();
          for (double& e : model.plain()) e = std::fabs(e) < kTiny ? 0 : e;
          break;
        case 2:
          v.count = -1;  // a solve gave up its list
          break;
        case 3:
          v.reindex();
          EXPECT_GE(v.count, 0);
          break;
        case 4: {
          v.pack();
          std::vector<double> unpacked(model.plain().size());
          for (size_t k = 0; k < v.packed_index.size(); ++k) unpacked[v.packed_index[k]] = v.packed_value[k];
          EXPECT_EQ(unpacked, model.plain());
          EXPECT_EQ(static_cast<std::ptrdiff_t>(v.packed_index.size()),
                    std::count_if(unpacked.begin(), unpacked.end(), [](double e) { return e != 0; }));
          break;
        }
        case 5: {
          SparseVectorModel other(dimension);
          other.set(random.pick(0, dimension - 1), 5);
          other.vector().copy(v);
          other.plain() = model.plain();
          other.check(round);
          EXPECT_EQ(other.vector().count, v.count);
          break;
        }
        case 6: {
          double norm = 0;
          for (const double e : model.plain()) norm += e * e;
          EXPECT_NEAR(v.norm2(), norm, 1e-12 * norm);
          break;
        }
        default:
          model.set(random.pick(0, dimension - 1), random.pick(0, 3) == 0 ? 1e-15 : random.pick(1, 9));
          break;
      }
      model.check(round);
    }
  }
}

}  // namespace
}  // namespace tovik::lp
