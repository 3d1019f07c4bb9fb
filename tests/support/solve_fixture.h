/* Problems that are solved through the public header: random ones and assignments, on one thread. */
#pragma once

#include "support/environment_fixture.h"
#include "support/random_lp.h"

namespace support {

/* Assignment of `size` jobs: takes some hundred iterations. */
inline Lp assignment(int size, int sense) {
  LpMaker maker(7);
  Lp lp;
  lp.columns = size * size;
  lp.rows = 2 * size;
  lp.sense = sense;
  for (int j = 0; j < lp.columns; ++j) {
    lp.obj.push_back(20 + maker.whole(19));
    lp.beg.push_back(2 * j);
    lp.cnt.push_back(2);
    for (const int row : {j / size, size + j % size}) {
      lp.ind.push_back(row);
      lp.val.push_back(1);
    }
  }
  lp.lb.assign(lp.obj.size(), 0.0);
  lp.ub.assign(lp.obj.size(), TVK_INFBOUND);
  lp.rhs.assign(static_cast<std::size_t>(lp.rows), 1.0);
  lp.range.assign(lp.rhs.size(), 0.0);
  lp.senses.assign(lp.rhs.size(), 'E');
  return lp;
}

class WithSolves : public WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, 1), 0);
  }
  ProbHandle load(const Lp& model) {
    int code = 0;
    ProbHandle lp = TVKcreateprob(env_, &code, "model");
    EXPECT_EQ(model.copy(env_, lp), 0);
    return lp;
  }
  int run(ProbHandle lp, int method) {
    return method == 0 ? TVKlpopt(env_, lp) : method == 1 ? TVKprimopt(env_, lp) : TVKdualopt(env_, lp);
  }
  double objective(ProbHandle lp) {
    double value = 0;
    EXPECT_EQ(TVKgetobjval(env_, lp, &value), 0);
    return value;
  }
};

}  // namespace support
