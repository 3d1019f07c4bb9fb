// What a mixed-integer search has counted, against the routines that tell the same, and against itself.
#include <cmath>
#include <sstream>
#include <string>

#include "support/environment_fixture.h"
#include "support/read_text.h"
#include "support/statistics.h"

namespace {

using Json = nlohmann::json;

class MipStatistics : public support::WithEnvironment {
 protected:
  Json of(ProbHandle lp) { return support::statistics(env_, lp); }
  /* Two knapsacks that share binaries: some nodes, some cuts, some incumbents. */
  static std::string knapsacks(const char* sense) {
    std::ostringstream out;
    unsigned seed = 4711;
    const auto next = [&](unsigned most) { return (seed = seed * 1103515245u + 12345u) / 65536u % most + 1; };
    const bool maximize = std::string(sense) == "max";
    out << sense << "\n obj: 100";
    for (int j = 0; j < 40; ++j) out << (maximize ? " + " : " - ") << 20 + next(40) << " x" << j;
    out << "\nst\n";
    for (int i = 0; i < 3; ++i) {
      out << " r" << i << ":";
      for (int j = 0; j < 40; ++j) out << " + " << 10 + next(50) << " x" << j;
      out << " <= 500\n";
    }
    out << "bin\n";
    for (int j = 0; j < 40; ++j) out << " x" << j;
    out << "\nend\n";
    return out.str();
  }
  void expect_agreement(ProbHandle lp, const Json& mip, double sign) {
    EXPECT_EQ(mip["nodes"], TVKgetnodecnt(env_, lp));
    EXPECT_EQ(mip["nodes_left"], TVKgetnodeleftcnt(env_, lp));
    EXPECT_EQ(mip["solutions"], TVKgetmipsolcnt(env_, lp));
    double bound = 0, ticks = 0, sum = 0, seconds = 0;
    ASSERT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
    EXPECT_NEAR(mip["best_bound"].get<double>(), bound, 1e-9 * std::fabs(bound));
    ASSERT_EQ(TVKgetticks(env_, lp, &ticks), 0);
    EXPECT_EQ(mip["phases"].size(), 6u);
    for (const auto& phase : mip["phases"]) {
      sum += phase["ticks"].get<double>();
      seconds += phase["seconds"].get<double>();
      EXPECT_GE(phase["seconds"].get<double>(), 0);
    }
    EXPECT_EQ(sum, ticks);
    EXPECT_NEAR(seconds, mip["seconds"].get<double>(), 1e-2 * seconds + 1e-6);
    EXPECT_EQ(mip["iterations"]["all"], TVKgetitcnt(env_, lp));

    const Json& root = mip["root"];
    const double before = sign * root["bound_before_cuts"].get<double>();
    const double after = sign * root["bound_after_cuts"].get<double>();
    EXPECT_LE(before, after + 1e-9 * std::fabs(before));
    EXPECT_LE(after, sign * bound + 1e-6 * std::fabs(after));
    double objective = 0;
    ASSERT_EQ(TVKgetobjval(env_, lp, &objective), 0);
    EXPECT_NEAR(root["gap_closed"].get<double>(), (after - before) / (sign * objective - before), 1e-3);
  }
  void expect_incumbents(ProbHandle lp, const Json& mip, double sign) {
    double objective = 0;
    ASSERT_EQ(TVKgetobjval(env_, lp, &objective), 0);
    const Json& found = mip["incumbents"];
    ASSERT_EQ(static_cast<int>(found.size()), TVKgetmipsolcnt(env_, lp));
    EXPECT_NEAR(found.back()["objective"].get<double>(), objective, 1e-9 * std::fabs(objective));
    for (std::size_t k = 0; k < found.size(); ++k) {
      const std::string by = found[k]["found_by"];
      EXPECT_TRUE(by == "relaxation" || by == "start" || mip["heuristics"].contains(by)) << by;
      EXPECT_LE(found[k]["nodes"].get<int>(), TVKgetnodecnt(env_, lp));
      if (k == 0) continue;
      EXPECT_LT(sign * found[k]["objective"].get<double>(), sign * found[k - 1]["objective"].get<double>());
      EXPECT_GE(found[k]["seconds"].get<double>(), found[k - 1]["seconds"].get<double>());
    }
    EXPECT_GE(mip["primal_integral"].get<double>(), 0.99 * found.front()["seconds"].get<double>());
    EXPECT_LE(mip["primal_integral"].get<double>(), 1.01 * mip["seconds"].get<double>());
  }
};

TEST_F(MipStatistics, AgreeWithTheQueriesAndWithThemselves) {
  for (const char* sense : {"max", "min"}) {
    SCOPED_TRACE(sense);
    ProbHandle lp = support::read_text(env_, knapsacks(sense));
    const double sign = std::string(sense) == "max" ? -1 : 1;
    ASSERT_EQ(TVKmipopt(env_, lp), 0);
    ASSERT_EQ(TVKgetstat(env_, lp), TVK_STATUS_MIP_OPTIMAL);
    const Json mip = of(lp)["mip"];
    expect_agreement(lp, mip, sign);
    expect_incumbents(lp, mip, sign);
    EXPECT_GT(mip["nodes"].get<int>(), 1);
    EXPECT_GT(mip["largest_depth"].get<int>(), 0);
    EXPECT_GT(mip["nodes_per_second"].get<double>(), 0);
    std::int64_t handed_out = 0, rows = 0;
    for (const auto& separator : mip["separators"]) {
      EXPECT_LE(separator["calls"].get<int>(),
                mip["root"]["cut_rounds"].get<int>() + mip["tree_cut_rounds"].get<int>());
      EXPECT_LE(separator["successes"].get<int>(), separator["calls"].get<int>());
      handed_out += separator["cuts"].get<std::int64_t>();
    }
    for (const auto& count : mip["cuts"]) rows += count.get<std::int64_t>();
    EXPECT_GT(rows, 0);
    EXPECT_LE(rows, handed_out);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipStatistics, OfASearchThatGoesOnAreThoseOfAllRuns) {
  ProbHandle lp = support::read_text(env_, knapsacks("max"));
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 3), 0);
  ASSERT_EQ(TVKmipopt(env_, lp), 0);
  ASSERT_EQ(TVKgetnodecnt(env_, lp), 3);
  const Json first = of(lp)["mip"];
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 8), 0);
  ASSERT_EQ(TVKmipopt(env_, lp), 0);
  ASSERT_EQ(TVKgetnodecnt(env_, lp), 8);
  const Json second = of(lp)["mip"];
  EXPECT_EQ(first["root"], second["root"]);
  for (const auto& [name, phase] : first["phases"].items())
    EXPECT_GE(second["phases"][name]["ticks"].get<double>(), phase["ticks"].get<double>()) << name;
  EXPECT_GE(second["seconds"].get<double>(), first["seconds"].get<double>());
}

TEST_F(MipStatistics, AreGoneAfterAnotherOptimization) {
  ProbHandle lp = support::read_text(env_, knapsacks("max"));
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1), 0);
  ASSERT_EQ(TVKmipopt(env_, lp), 0);
  EXPECT_TRUE(of(lp).contains("mip"));
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_LP), 0);
  for (const int presolve : {1, 0}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
    ASSERT_EQ(TVKlpopt(env_, lp), 0);
    EXPECT_FALSE(of(lp).contains("mip"));
  }
}

}  // namespace
