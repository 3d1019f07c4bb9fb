/* Every routine of networks fails cleanly wherever memory runs out: the code is 1001 and everything is as
 * before; the same call then succeeds. */
#include <functional>
#include <numeric>

#include "support/failing_memory.h"
#include "support/file_fixture.h"
#include "support/network_data.h"

namespace {

class NetworkOutOfMemory : public support::WithFiles {
 protected:
  using Call = std::function<int(NetProbHandle)>;

  NetProbHandle build(bool named, bool with_lists) {
    int status = 0;
    NetProbHandle net = TVKNETcreateprob(env_, &status, "a name too long to be kept without an allocation");
    support::NetworkArrays data;
    data.supply.assign(12, 1.5);
    for (int a = 0; a < 40; ++a) data.add_arc(a % 12, a * 7 % 12, a, 0, 9);
    if (named) {
      for (int i = 0; i < 12; ++i) data.node_names.push_back("node_" + std::to_string(i));
      for (int a = 0; a < 40; ++a) data.arc_names.push_back("arc_" + std::to_string(a));
    }
    EXPECT_EQ(support::copy(env_, net, data), 0);
    int surplus = 0, index = 0;
    if (with_lists) {
      EXPECT_EQ(TVKNETgetnodearcs(env_, net, nullptr, nullptr, nullptr, 0, &surplus, 0, 0), 1207);
      EXPECT_EQ(TVKNETgetarcindex(env_, net, "arc_3", &index), named ? 0 : 1210);
    }
    return net;
  }
  std::string text_of(ConstNetProbHandle net) {
    char title[256];
    int surplus = 0;
    EXPECT_EQ(TVKNETgetprobname(env_, net, title, 256, &surplus), 0);
    const std::string text = title + describe(support::read_back(env_, net)) + lists_of(net);
    return text + (TVKgetnumcols(env_, lp_) > 0 ? support::describe(env_, lp_) : "");
  }
  std::string lists_of(ConstNetProbHandle net) {
    std::vector<int> arcs(200), begin(50);
    int count = 0, surplus = 0;
    EXPECT_EQ(TVKNETgetnodearcs(env_, net, &count, begin.data(), arcs.data(), 200, &surplus, 0,
                                TVKNETgetnumnodes(env_, net) - 1),
              0);
    std::string text;
    for (int k = 0; k < count; ++k) text += std::to_string(arcs[static_cast<std::size_t>(k)]) + ' ';
    return text;
  }
  void empty_problem() {
    EXPECT_EQ(TVKfreeprob(env_, &lp_), 0);
    int status = 0;
    lp_ = TVKcreateprob(env_, &status, "lp");
  }

  /* Lets the first, second, ... allocation of `call` fail until it succeeds. */
  void fail_everywhere(const char* what, bool named, const Call& call) {
    for (const bool with_lists : {false, true}) {
      SCOPED_TRACE(std::string(what) + (named ? " named" : "") + (with_lists ? " with lists" : ""));
      empty_problem();
      NetProbHandle done = build(named, with_lists);
      const std::string before = text_of(done);
      ASSERT_EQ(call(done), 0) << errors();
      const std::string after = text_of(done);
      EXPECT_NE(before, after);
      int failures = 0;
      for (long k = 0;; ++k) {
        empty_problem();
        NetProbHandle net = build(named, with_lists);
        support::allocations_until_failure = k;
        const int code = call(net);
        const bool reached = support::allocations_until_failure < 0;
        support::allocations_until_failure = -1;
        if (code != 0) {
          ++failures;
          ASSERT_EQ(code, 1001) << "allocation " << k;
          ASSERT_EQ(text_of(net), before) << "allocation " << k;
          ASSERT_EQ(call(net), 0) << "allocation " << k;
        }
        ASSERT_EQ(text_of(net), after) << "allocation " << k;
        ASSERT_EQ(TVKNETfreeprob(env_, &net), 0);
        if (!reached) break;
      }
      EXPECT_GT(failures, 0);
      ASSERT_EQ(TVKNETfreeprob(env_, &done), 0);
    }
  }
};

TEST_F(NetworkOutOfMemory, LeavesEverythingAsItWas) {
  const std::vector<int> tail(30, 1), head(30, 2);
  const std::vector<double> values(30, 0.5);
  std::vector<std::string> texts;
  for (int k = 0; k < 30; ++k) texts.push_back("a new name of some length " + std::to_string(k));
  support::NamePointers names(texts);
  std::vector<int> marks(12, 0);
  std::vector<int> arcs(30);
  std::iota(arcs.begin(), arcs.end(), 10);
  NetProbHandle source = build(true, false);
  const double supply = 7;
  const int node = 0;
  ASSERT_EQ(TVKNETchgsupply(env_, source, 1, &node, &supply), 0);
  const std::string file = path("source.net");
  ASSERT_EQ(TVKNETwriteprob(env_, source, file.c_str(), nullptr), 0);
  fail_everywhere("linear problem", true, [&](NetProbHandle net) { return TVKcopynettolp(env_, lp_, net); });
  for (const bool named : {false, true}) {
    fail_everywhere("add nodes", named, [&](NetProbHandle net) {
      return TVKNETaddnodes(env_, net, 30, values.data(), names.get());
    });
    fail_everywhere("add arcs", named, [&](NetProbHandle net) {
      return TVKNETaddarcs(env_, net, 30, tail.data(), head.data(), values.data(), nullptr, nullptr,
                           names.get());
    });
    fail_everywhere("copy", named, [&](NetProbHandle net) {
      return TVKNETcopynet(env_, net, -1, 3, values.data(), names.get(), 30, tail.data(), head.data(),
                           values.data(), nullptr, nullptr, names.get());
    });
    fail_everywhere("delete nodes", named,
                    [&](NetProbHandle net) { return TVKNETdelnodes(env_, net, 2, 5); });
    fail_everywhere("delete arcs", named, [&](NetProbHandle net) { return TVKNETdelarcs(env_, net, 2, 5); });
    fail_everywhere("delete marked nodes", named, [&](NetProbHandle net) {
      marks.assign(12, 0);
      marks[3] = 1;
      return TVKNETdelsetnodes(env_, net, marks.data());
    });
    fail_everywhere("rename", named, [&](NetProbHandle net) {
      return TVKNETchgarcname(env_, net, 30, arcs.data(), names.get());
    });
    fail_everywhere("read", named,
                    [&](NetProbHandle net) { return TVKNETreadcopyprob(env_, net, file.c_str()); });
  }
}

}  // namespace
