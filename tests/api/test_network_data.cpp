/* Networks through the public header: handles, data in and out, checks, deletions, names, the linear
 * model. */
#include <cmath>
#include <functional>
#include <limits>

#include "support/environment_fixture.h"
#include "support/network_data.h"

namespace {

using support::describe;
using support::NetworkArrays;

class NetworkObject : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    int status = -1;
    net_ = TVKNETcreateprob(env_, &status, "ring");
    ASSERT_EQ(status, 0);
    /* 0 -> 1 -> 2 -> 0, a second arc 0 -> 1 and a loop at 2. */
    ring_.supply = {4, 0, -4};
    ring_.add_arc(0, 1, 1, 0, 3);
    ring_.add_arc(1, 2, 2, 0, 1e20);
    ring_.add_arc(2, 0, -3, -1e20, 5);
    ring_.add_arc(0, 1, 4, 2, 1);
    ring_.add_arc(2, 2, 5, 0, 6);
    ring_.node_names = {"n1", "mid", "n3"};
    ring_.arc_names = {"ab", "bc", "ca", "ab", "loop"};
    ASSERT_EQ(support::copy(env_, net_, ring_), 0);
  }
  void check_data() { ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 1), 0); }
  std::string text() { return describe(support::read_back(env_, net_)); }
  std::vector<int> arcs_of(int node) {
    int count = -1, begin = -1, surplus = 0;
    const int code = TVKNETgetnodearcs(env_, net_, &count, &begin, nullptr, 0, &surplus, node, node);
    EXPECT_EQ(code, surplus < 0 ? 1207 : 0);
    std::vector<int> arcs(static_cast<std::size_t>(-surplus) + 1);
    EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, &begin, arcs.data(), 100, &surplus, node, node), 0);
    arcs.resize(static_cast<std::size_t>(count));
    return arcs;
  }

  NetProbHandle net_ = nullptr;
  NetworkArrays ring_;
};

TEST_F(NetworkObject, HandlesAreToldApart) {
  int status = 0;
  ProbHandle lp = TVKcreateprob(env_, &status, "lp");
  NetProbHandle foreign = reinterpret_cast<NetProbHandle>(lp), none = nullptr;
  EXPECT_EQ(TVKNETaddnodes(env_, foreign, 1, nullptr, nullptr), 1009);
  EXPECT_EQ(TVKNETaddnodes(env_, none, 1, nullptr, nullptr), 1009);
  EXPECT_EQ(TVKNETaddnodes(nullptr, net_, 1, nullptr, nullptr), 1002);
  EXPECT_EQ(TVKNETgetnumnodes(env_, foreign), 0);
  EXPECT_EQ(TVKchgobjsen(env_, reinterpret_cast<ProbHandle>(net_), 1), 1009);
  EXPECT_EQ(TVKNETfreeprob(env_, &foreign), 1009);
  EXPECT_EQ(TVKNETfreeprob(env_, nullptr), 1004);
  EXPECT_EQ(TVKNETcreateprob(env_, &status, nullptr), nullptr);
  EXPECT_EQ(status, 1004);

  EnvHandle other = TVKopenTOVIK(&status);
  NetProbHandle strange = TVKNETcreateprob(other, &status, "strange");
  EXPECT_EQ(TVKNETdelnames(env_, strange), 1806);
  EXPECT_EQ(TVKcopynettolp(env_, lp, strange), 1806);
  EXPECT_EQ(TVKcopynettolp(env_, lp, nullptr), 1009);
  EXPECT_EQ(TVKcloseTOVIK(&other), 0);
  EXPECT_EQ(TVKNETgetobjsen(env_, strange), 0);  // went with its environment

  NetProbHandle stale = net_;
  EXPECT_EQ(TVKNETfreeprob(env_, &net_), 0);
  EXPECT_EQ(net_, nullptr);
  EXPECT_EQ(TVKNETfreeprob(env_, &stale), 1009);
  EXPECT_EQ(TVKcopynettolp(env_, lp, stale), 1009);
}

/* The arrays are as long as one element: nothing of them is read before the count is found too large. */
TEST_F(NetworkObject, HugeCountsAreRefusedBeforeArraysAreRead) {
  constexpr int kHuge = std::numeric_limits<int>::max();
  const std::vector<double> value(1, 0.0);
  const std::vector<int> node(1, 0);
  const std::string before = text();
  for (const int check : {0, 1}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, check), 0);
    EXPECT_EQ(TVKNETaddnodes(env_, net_, kHuge, value.data(), nullptr), 1012);
    EXPECT_EQ(
        TVKNETaddarcs(env_, net_, kHuge, node.data(), node.data(), value.data(), nullptr, nullptr, nullptr),
        1012);
    EXPECT_EQ(TVKNETcopynet(env_, net_, 1, 1, nullptr, nullptr, kHuge, node.data(), node.data(), value.data(),
                            nullptr, nullptr, nullptr),
              1012);
    EXPECT_EQ(TVKNETcopynet(env_, net_, 1, kHuge, value.data(), nullptr, 0, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr),
              1012);
  }
  EXPECT_EQ(text(), before);
}

/* What a message function tries while a routine changes the network. */
struct Intruder {
  EnvHandle env;
  NetProbHandle net;
  int change = -1, free = -1, nodes = -1;
};

extern "C" void intrude(void* handle, const char*) {
  auto& intruder = *static_cast<Intruder*>(handle);
  intruder.change = TVKNETaddnodes(intruder.env, intruder.net, 1, nullptr, nullptr);
  intruder.free = TVKNETfreeprob(intruder.env, &intruder.net);
  intruder.nodes = TVKNETgetnumnodes(intruder.env, intruder.net);
}

TEST_F(NetworkObject, MessageFunctionsCannotChangeWhatIsBeingChanged) {
  Intruder intruder{env_, net_};
  ASSERT_EQ(TVKaddfuncdest(env_, warning_, &intruder, intrude), 0);
  const int arc = 0;
  const double bound = 1e18;
  EXPECT_EQ(TVKNETchgbds(env_, net_, 1, &arc, "L", &bound), 0);
  EXPECT_EQ(intruder.change, 1804);
  EXPECT_EQ(intruder.free, 1804);
  EXPECT_EQ(intruder.nodes, 3);
  ASSERT_EQ(TVKdelfuncdest(env_, warning_, &intruder, intrude), 0);
  EXPECT_EQ(text(), describe(ring_));
}

TEST_F(NetworkObject, CopiesAndFillsWhatIsLeftOut) {
  EXPECT_EQ(text(), describe(ring_));
  const int tail[] = {0, 1}, head[] = {1, 1};
  const double lower[] = {-1e30, 0}, upper[] = {7, 5e20};
  ASSERT_EQ(TVKNETcopynet(env_, net_, -5, 2, nullptr, nullptr, 2, tail, head, nullptr, lower, upper, nullptr),
            0);
  EXPECT_EQ(text(), "max\n- 0\n- 0\n- 0 1 0 [-inf,7]\n- 1 1 0 [0,inf]\n");
  ASSERT_EQ(TVKNETaddarcs(env_, net_, 1, tail, head, nullptr, nullptr, nullptr, nullptr), 0);
  const double supply = 2.5;
  char name[] = "long";
  char* names[] = {name};
  ASSERT_EQ(TVKNETaddnodes(env_, net_, 1, &supply, nullptr), 0);
  ASSERT_EQ(TVKNETaddarcs(env_, net_, 1, tail, head, &supply, nullptr, nullptr, names), 0);
  EXPECT_EQ(
      text(),
      "max\n- 0\n- 0\n- 2.5\na1 0 1 0 [-inf,7]\na2 1 1 0 [0,inf]\na3 0 1 0 [0,inf]\nlong 0 1 2.5 [0,inf]\n");
  ASSERT_EQ(TVKNETcopynet(env_, net_, 1, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr),
            0);
  EXPECT_EQ(text(), "min\n");
}

TEST_F(NetworkObject, RefusesWhatCannotBeAndStaysAsItWas) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  const int inside[] = {0, 2}, outside[] = {1, 3}, negative[] = {-1, 0};
  const double good[] = {1, 2}, no_number[] = {1, nan}, infinite[] = {inf, 1};
  char some[] = "x";
  char* hole[] = {some, nullptr};
  const auto copy = [&](int sense, const double* supply, const int* tail, const double* cost) {
    return TVKNETcopynet(env_, net_, sense, 2, supply, nullptr, 1, tail, negative + 1, cost, nullptr, nullptr,
                         nullptr);
  };
  struct Case {
    int code;
    const char* line;  // of the message, where it tells more than the code's text
    std::function<int()> call;
  };
  const std::vector<Case> always = {
      {1003, "", [&] { return TVKNETaddnodes(env_, net_, -1, good, nullptr); }},
      {1003, "", [&] { return TVKNETchgsupply(env_, net_, -1, inside, good); }},
      {1003, "", [&] { return TVKNETchgarcends(env_, net_, -1, inside, inside, inside); }},
      {1004, "", [&] { return copy(1, good, nullptr, good); }},
      {1004, "", [&] { return TVKNETaddarcs(env_, net_, 1, inside, nullptr, good, good, good, nullptr); }},
      {1004, "", [&] { return TVKNETchgobj(env_, net_, 2, inside, nullptr); }},
      {1004, "", [&] { return TVKNETchgarcends(env_, net_, 2, inside, inside, nullptr); }},
      {1004, "", [&] { return TVKNETdelsetarcs(env_, net_, nullptr); }},
      {1004, "", [&] { return TVKNETchgprobname(env_, net_, nullptr); }},
      {1200, "'end' value 5 is greater than 4", [&] { return TVKNETdelarcs(env_, net_, 1, 5); }},
      {1200, "'begin' value -1 is less than 0", [&] { return TVKNETdelnodes(env_, net_, -1, 1); }},
      {1224, "Null pointer 1 in name array", [&] { return TVKNETchgnodename(env_, net_, 2, inside, hole); }},
      {1230, "Node index 0 out of range", [&] { return copy(1, good, inside + 1, good); }},
      {1230, "Node index 1 out of range",
       [&] { return TVKNETaddarcs(env_, net_, 2, inside, outside, good, good, good, nullptr); }},
      {1230, "Node index 0 out of range", [&] { return TVKNETchgsupply(env_, net_, 2, negative, good); }},
      {1230, "Node index 1 out of range",
       [&] { return TVKNETchgarcends(env_, net_, 2, inside, inside, outside); }},
      {1231, "Arc index 0 out of range",
       [&] { return TVKNETchgarcends(env_, net_, 2, negative, inside, inside); }},
      {1231, "Arc index 0 out of range", [&] { return TVKNETchgbds(env_, net_, 2, negative, "LU", good); }},
  };
  const std::vector<Case> checked = {
      {1003, "", [&] { return copy(0, good, inside, good); }},
      {1225, "Numeric entry 1", [&] { return copy(1, no_number, inside, good); }},
      {1233, "Numeric entry 0", [&] { return copy(1, good, inside, infinite); }},
      {1224, "Null pointer 1", [&] { return TVKNETaddnodes(env_, net_, 2, good, hole); }},
      {1225, "Numeric entry 1",
       [&] { return TVKNETaddarcs(env_, net_, 2, inside, inside, good, good, no_number, nullptr); }},
      {1225, "Numeric entry 1", [&] { return TVKNETchgsupply(env_, net_, 2, inside, no_number); }},
      {1229, "entry 1", [&] { return TVKNETchgbds(env_, net_, 2, inside, "LX", good); }},
  };
  const auto run = [&](const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      EXPECT_EQ(c.call(), c.code) << c.line;
      const std::string said = errors();
      EXPECT_NE(said.find("TOVIK Error  " + std::to_string(c.code)), std::string::npos) << said;
      EXPECT_NE(said.find(c.line), std::string::npos) << said;
      EXPECT_EQ(text(), describe(ring_)) << c.code << ' ' << c.line;
    }
  };
  run(always);
  check_data();
  run(always);
  run(checked);
}

TEST_F(NetworkObject, DeletedNodesTakeTheirArcs) {
  ASSERT_EQ(TVKNETdelnodes(env_, net_, 1, 1), 0);
  EXPECT_EQ(TVKNETgetnumarcs(env_, net_), 2);
  EXPECT_EQ(text(), "min\nn1 4\nn3 -4\nca 1 0 -3 [-inf,5]\nloop 1 1 5 [0,6]\n");
  int marks[] = {0, 1};
  ASSERT_EQ(TVKNETdelsetarcs(env_, net_, marks), 0);
  EXPECT_EQ(marks[0], 0);
  EXPECT_EQ(marks[1], -1);
  int node_marks[] = {1, 2};
  ASSERT_EQ(TVKNETdelsetnodes(env_, net_, node_marks), 0);
  EXPECT_EQ(node_marks[0], -1);
  EXPECT_EQ(node_marks[1], 0);
  EXPECT_EQ(text(), "min\nn3 -4\n");
  EXPECT_EQ(TVKNETdelnodes(env_, net_, 0, 0), 0);
  EXPECT_EQ(TVKNETdelnodes(env_, net_, 0, -1), 0);
  EXPECT_EQ(text(), "min\n");
}

TEST_F(NetworkObject, ArcsOfANodeFollowEveryChange) {
  EXPECT_EQ(arcs_of(2), (std::vector<int>{1, 2, 4}));
  const int arc = 4, tail = 1, head = 0;
  ASSERT_EQ(TVKNETchgarcends(env_, net_, 1, &arc, &tail, &head), 0);
  EXPECT_EQ(arcs_of(2), (std::vector<int>{1, 2}));
  EXPECT_EQ(arcs_of(0), (std::vector<int>{0, 2, 3, 4}));
  ASSERT_EQ(TVKNETaddarcs(env_, net_, 1, &head, &head, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(arcs_of(0), (std::vector<int>{0, 2, 3, 4, 5}));
  ASSERT_EQ(TVKNETdelarcs(env_, net_, 4, 5), 0);
  EXPECT_EQ(arcs_of(0), (std::vector<int>{0, 2, 3}));
  ASSERT_EQ(TVKNETdelarcs(env_, net_, 0, 0), 0);
  EXPECT_EQ(arcs_of(1), (std::vector<int>{0, 2}));
  ASSERT_EQ(TVKNETaddnodes(env_, net_, 1, nullptr, nullptr), 0);
  EXPECT_EQ(arcs_of(3), std::vector<int>{});

  int count = -1, begin[3] = {7, 7, 7}, arcs[4] = {9, 9, 9, 9}, surplus = -1;
  EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, begin, nullptr, 0, &surplus, 0, 2), 1207);
  EXPECT_EQ(surplus, -6);
  EXPECT_EQ(begin[2], 0);
  EXPECT_EQ(errors(), "");
  EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, begin, arcs, 3, &surplus, 0, 2), 1207);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(surplus, -3);
  EXPECT_EQ((std::vector<int>{arcs[0], arcs[1], arcs[2], arcs[3]}), (std::vector<int>{1, 2, 0, 9}));
  EXPECT_EQ((std::vector<int>{begin[0], begin[1], begin[2]}), (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, begin, nullptr, 3, &surplus, 0, 2), 1004);
  EXPECT_EQ(TVKNETgetnodearcs(env_, net_, &count, begin, arcs, 3, &surplus, 0, 4), 1200);
}

TEST_F(NetworkObject, BoundsFollowTheRulesOfColumns) {
  const int arcs[] = {0, 1, 2, 3};
  const double bounds[] = {-1e17, 1e18, 1e-12, -1e18};
  EXPECT_EQ(TVKNETchgbds(env_, net_, 4, arcs, "LLBU", bounds), 0);
  EXPECT_EQ(warnings(),
            "Warning:  Infinity lower bound ignored.\nWarning:  -Infinity upper bound ignored.\n");
  NetworkArrays expected = ring_;
  expected.lower = {-1e20, 0, 0, 2, 0};
  expected.upper = {3, 1e20, 0, 1, 6};
  EXPECT_EQ(text(), describe(expected));
}

TEST_F(NetworkObject, NamesAreFoundChangedAndRemoved) {
  int index = -1;
  EXPECT_EQ(TVKNETgetnodeindex(env_, net_, "mid", &index), 0);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(TVKNETgetarcindex(env_, net_, "ab", &index), 0);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(TVKNETgetarcindex(env_, net_, "mid", &index), 1210);
  EXPECT_EQ(TVKNETdelarcs(env_, net_, 0, 0), 0);
  EXPECT_EQ(TVKNETgetarcindex(env_, net_, "ab", &index), 0);
  EXPECT_EQ(index, 2);
  ASSERT_EQ(TVKNETdelnames(env_, net_), 0);
  char store[64];
  char* name[3];
  int surplus = 0;
  EXPECT_EQ(TVKNETgetnodename(env_, net_, name, store, 64, &surplus, 0, 2), 1219);
  const int node = 1;
  char fresh[] = "n1";
  char* names[] = {fresh};
  ASSERT_EQ(TVKNETchgnodename(env_, net_, 1, &node, names), 0);
  EXPECT_EQ(support::read_back(env_, net_).node_names, (std::vector<std::string>{"n1", "n1", "n3"}));
  ASSERT_EQ(TVKNETchgprobname(env_, net_, "triangle"), 0);
  EXPECT_EQ(TVKNETgetprobname(env_, net_, store, 64, &surplus), 0);
  EXPECT_STREQ(store, "triangle");
  EXPECT_EQ(surplus, 64 - 9);
}

TEST_F(NetworkObject, BecomesALinearModel) {
  int status = 0;
  ProbHandle lp = TVKcreateprob(env_, &status, "old");
  ASSERT_EQ(TVKnewcols(env_, lp, 1, nullptr, nullptr, nullptr, "B", nullptr), 0);
  const int negative = -1;
  ASSERT_EQ(TVKNETchgobjsen(env_, net_, negative), 0);
  ASSERT_EQ(TVKcopynettolp(env_, lp, net_), 0);
  EXPECT_EQ(TVKgetprobtype(env_, lp), TVK_PROBTYPE_LP);
  EXPECT_EQ(support::describe(env_, lp),
            "max 0\n"
            "ab - 1 [0,3] n1:1 mid:-1\n"
            "bc - 2 [0,inf] mid:1 n3:-1\n"
            "ca - -3 [-inf,5] n3:1 n1:-1\n"
            "ab - 4 [2,1] n1:1 mid:-1\n"
            "loop - 5 [0,6]\n"
            "n1 E 4\nmid E 0\nn3 E -4\n");
  char store[16];
  int surplus = 0;
  EXPECT_EQ(TVKgetprobname(env_, lp, store, 16, &surplus), 0);
  EXPECT_STREQ(store, "ring");
  const std::string before = support::describe(env_, lp);
  EXPECT_EQ(TVKcopynettolp(env_, lp, reinterpret_cast<NetProbHandle>(lp)), 1009);
  EXPECT_EQ(support::describe(env_, lp), before);
  ASSERT_EQ(TVKNETdelnames(env_, net_), 0);
  ASSERT_EQ(TVKcopynettolp(env_, lp, net_), 0);
  EXPECT_EQ(TVKgetrowindex(env_, lp, "n1", &surplus), 1210);
  NetworkArrays empty;
  ASSERT_EQ(support::copy(env_, net_, empty), 0);
  ASSERT_EQ(TVKcopynettolp(env_, lp, net_), 0);
  EXPECT_EQ(support::describe(env_, lp), "min 0\n");
}

}  // namespace
