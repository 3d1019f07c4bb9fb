/* SAV and restart files through the public routines: what comes back, how such files are recognized, what a
 * damaged one does, and that an optimization goes on where it was. */
#include <cmath>

#include "support/describe_families.h"
#include "support/file_fixture.h"
#include "support/random_lp.h"

namespace {

namespace fs = std::filesystem;

/* A problem with a bit of everything. */
const char* const kEverything =
    "\\Problem name: all\nMaximize\n cost: 3 x - y + 2.5 + [ x ^2 - 3 x * y ] / 2\nSubject To\n"
    " a: x + y - 0.1 z <= 4\n b: -2 <= x - z <= 8\n q: x + [ x ^2 + y ^2 ] <= 9\n"
    " i: k = 1 -> x + z >= 1\nLazy Constraints\n l: x + y <= 40\nUser Cuts\n u: x + y <= 50\n"
    "Bounds\n x <= 10\n -inf <= y <= -1\n 2 <= s <= 9\nBinaries\n k\nGenerals\n z\nSemi-Continuous\n s\n"
    "SOS\n s1: S1:: x : 1 y : 2\nEnd\n";

class SavFile : public support::WithFiles {
 protected:
  int write(const std::string& name, const char* type = nullptr) {
    return TVKwriteprob(env_, lp_, path(name).c_str(), type);
  }
  std::string whole() { return model() + support::describe_families(env_, lp_); }
  void load_everything() {
    ASSERT_EQ(read_text("all.lp", kEverything), 0) << errors();
    const int columns[] = {2, 0}, priorities[] = {5, 7}, directions[] = {1, -1}, begin = 0, effort = 2;
    const double values[] = {1, 0.1};
    const char* const name = "mine";
    ASSERT_EQ(TVKcopyorder(env_, lp_, 2, columns, priorities, directions), 0);
    ASSERT_EQ(TVKaddmipstarts(env_, lp_, 1, 2, &begin, columns, values, &effort, const_cast<char**>(&name)),
              0);
    warnings();
  }
  void load_small() {
    ASSERT_EQ(
        read_text("small.lp", "min x + 2 y\nst\n r: x + y >= 3\n t: x - y <= 1\nbounds\n x <= 2\nend\n"), 0);
    warnings();
  }
  void renew() {
    TVKfreeprob(env_, &lp_);
    lp_ = TVKcreateprob(env_, nullptr, "fresh");
  }
  std::string problem_name() {
    char text[512];
    int surplus = 0;
    EXPECT_EQ(TVKgetprobname(env_, lp_, text, sizeof text, &surplus), 0);
    return text;
  }
  /* The problem must refuse the bytes with one of the codes for such files and stay as it is. */
  void expect_refused(const std::string& bytes, const std::string& before) {
    const int code = read_text("spoilt.sav", bytes);
    ASSERT_TRUE(code == 1560 || code == 1561 || code == 1563) << code;
    ASSERT_NE(errors(), "");
    ASSERT_EQ(model(), before);
  }
};

TEST_F(SavFile, EverythingComesBack) {
  load_everything();
  const std::string before = whole();
  for (const char* name : {"a.sav", "b.SAV.gz", "c.sav.bz2", "d.savour"}) {
    const bool by_type = std::string(name) == "d.savour";
    ASSERT_EQ(write(name, by_type ? "SaV" : nullptr), 0) << errors();
    renew();
    ASSERT_EQ(read_file(name, by_type ? "save" : nullptr), 0) << errors();
    EXPECT_EQ(whole(), before) << name;
    EXPECT_EQ(problem_name(), path(name));
    EXPECT_EQ(warnings(), "");
  }
}

/* Types that the data alone would not make. */
TEST_F(SavFile, ProblemTypesComeBack) {
  load_small();
  for (const int type : {TVK_PROBTYPE_LP, TVK_PROBTYPE_MILP, TVK_PROBTYPE_QP, TVK_PROBTYPE_MIQP,
                         TVK_PROBTYPE_QCP, TVK_PROBTYPE_MIQCP}) {
    ASSERT_EQ(TVKchgprobtype(env_, lp_, type), 0);
    const std::string before = whole();
    ASSERT_EQ(write("a.sav"), 0);
    renew();
    ASSERT_EQ(read_file("a.sav"), 0);
    EXPECT_EQ(TVKgetprobtype(env_, lp_), type);
    EXPECT_EQ(whole(), before);
  }
  renew();
  const std::string before = whole();
  ASSERT_EQ(write("empty.sav"), 0);
  load_small();
  ASSERT_EQ(read_file("empty.sav"), 0);
  EXPECT_EQ(whole(), before);
}

TEST_F(SavFile, Recognized) {
  load_small();
  ASSERT_EQ(write("a.sav"), 0);
  const std::string bytes = content("a.sav"), before = model();
  struct Case {
    const char* file;
    const char* type;
    std::string bytes;
    int code;
    const char* error;
  };
  const Case cases[] = {
      {"data", nullptr, bytes, 0, ""},
      {"data.bin", nullptr, bytes, 0, ""},
      {"data", "Sav", bytes, 0, ""},
      {"data.lp", "SAVED", bytes, 0, ""},
      {"data", nullptr, bytes.substr(0, 11), 1561, "Not enough data in SAV file"},
      {"data", nullptr, bytes.substr(0, 10), 1436, ""},  // too short for the signature: an LP file
      {"data", nullptr, "\n" + std::string("min x\nend\n"), 0, nullptr},
      {"data", nullptr, "\t" + bytes, 1560, "is not a SAV file"},
      {"data", nullptr, "\r" + bytes, 1560, "is not a SAV file"},
      {"data", "SAV", "min x\nend\n", 1560, "is not a SAV file"},
      {"a.sav", nullptr, "", 1560, "is not a SAV file"},
      {"a.sav", "LP", bytes, 1434, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + ' ' + (c.type != nullptr ? c.type : "-") + ' ' +
                 std::to_string(c.bytes.size()));
    put(c.file, c.bytes);
    renew();
    const int code = read_file(c.file, c.type);
    if (c.error == nullptr) {  // what the LP reader says of it is its own business
      EXPECT_EQ(code == 0, c.code == 0);
      errors();
    } else if (c.code != 1436) {
      EXPECT_EQ(code, c.code);
      EXPECT_NE(errors().find(c.error), std::string::npos);
      if (code == 0) {
        EXPECT_EQ(model(), before);
      }
    } else {
      EXPECT_TRUE(code != 0 && code != 1560 && code != 1561) << code;
      errors();
    }
  }
  EXPECT_EQ(read_file("missing", "SAV"), 1423);
  EXPECT_EQ(errors(), "TOVIK Error  1423: Could not open file '" + path("missing") + "' for reading.\n" +
                          "TOVIK Error  1423: Could not open file '" + path("missing") +
                          ".sav' for reading.\n");
  put("byname.sav", bytes);
  EXPECT_EQ(read_file("byname", "SAV"), 0);
}

TEST_F(SavFile, BasisIsLoadedWithAWarning) {
  load_small();
  ASSERT_EQ(TVKprimopt(env_, lp_), 0);
  int columns[2] = {}, rows[2] = {};
  ASSERT_EQ(TVKgetbase(env_, lp_, columns, rows), 0);
  ASSERT_EQ(write("a.sav"), 0);
  for (const int advanced : {1, 0}) {
    renew();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, advanced), 0);
    ASSERT_EQ(read_file("a.sav"), 0);
    EXPECT_EQ(warnings(), std::string("Warning:  File contains basis.  Basis is loaded.\n") +
                              (advanced == 0 ? "Warning:  Advanced indicator is not set.\n" : ""));
    int read_columns[2] = {}, read_rows[2] = {};
    ASSERT_EQ(TVKgetbase(env_, lp_, read_columns, read_rows), 0);
    EXPECT_TRUE(std::equal(columns, columns + 2, read_columns) && std::equal(rows, rows + 2, read_rows));
    EXPECT_EQ(TVKgetstat(env_, lp_), 0);
  }
}

/* Puts the right CRC-32C at the end of a changed file. */
void seal(std::string& bytes) {
  std::uint32_t crc = ~std::uint32_t{0};
  for (std::size_t k = 0; k + 8 < bytes.size(); ++k) {
    crc ^= static_cast<unsigned char>(bytes[k]);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0x82F63B78u : 0u);
  }
  for (std::size_t k = 0; k < 4; ++k) bytes[bytes.size() - 8 + k] = static_cast<char>(~crc >> 8 * k & 255);
}

TEST_F(SavFile, BasisWithAnUnknownStatus) {
  load_small();
  const std::string before = model();
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  ASSERT_EQ(write("a.sav"), 0);
  std::string bytes = content("a.sav");
  const std::size_t section = bytes.find("BCOLc");
  ASSERT_NE(section, std::string::npos);
  bytes[section + 16] = 4;
  seal(bytes);
  renew();
  ASSERT_EQ(read_text("b.sav", bytes), 0) << errors();
  EXPECT_EQ(warnings(), "Warning:  File contains basis.  Basis not loaded.\n");
  EXPECT_EQ(model(), before);
  EXPECT_EQ(TVKgetbase(env_, lp_, nullptr, nullptr), 1262);
  errors();
  EXPECT_EQ(TVKreadcopyrestart(env_, lp_, path("b.sav").c_str()), 1563);
}

TEST_F(SavFile, DamagedFilesAreRefused) {
  load_everything();
  ASSERT_EQ(write("a.sav"), 0);
  load_small();
  const std::string bytes = content("a.sav"), before = model();
  for (std::size_t k = 0; k < bytes.size() && !HasFatalFailure(); k += 11) {
    SCOPED_TRACE(k);
    std::string spoilt = bytes;
    spoilt[k] = static_cast<char>(~spoilt[k]);
    expect_refused(spoilt, before);
    expect_refused(bytes.substr(0, k), before);
  }
}

TEST_F(SavFile, LaterVersionsAndTextTransfers) {
  load_small();
  ASSERT_EQ(write("a.sav"), 0);
  const std::string bytes = content("a.sav"), before = model();
  std::string later = bytes;
  later[12] = 2;
  expect_refused(later, before);
  EXPECT_EQ(read_file("spoilt.sav"), 1563);
  EXPECT_EQ(errors(), "TOVIK Error  1563: File '" + path("spoilt.sav") + "' has an incompatible format.\n");
  std::string with_returns, without_returns;
  for (const char c : bytes) {
    if (c == '\n') with_returns += '\r';
    with_returns += c;
    if (c != '\r') without_returns += c;
  }
  for (const std::string& text : {with_returns, without_returns}) {
    put("text.sav", text);
    EXPECT_EQ(read_file("text.sav"), 1560);
  }
}

/* Contents that only unchecked data can have come back too, unless the check is on. */
TEST_F(SavFile, NumbersThatAreNone) {
  load_small();
  const int zero = 0;
  const double none = std::nan("");
  ASSERT_EQ(TVKchgrhs(env_, lp_, 1, &zero, &none), 0);
  ASSERT_EQ(write("a.sav"), 0);
  ASSERT_EQ(read_file("a.sav"), 0);
  double rhs = 0;
  ASSERT_EQ(TVKgetrhs(env_, lp_, &rhs, 0, 0), 0);
  EXPECT_TRUE(std::isnan(rhs));
  load_small();
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_DATACHECK, 1), 0);
  const std::string before = model();
  EXPECT_EQ(read_file("a.sav"), 1225);
  EXPECT_EQ(model(), before);
}

class Restart : public SavFile {
 protected:
  int write_restart(const std::string& name) { return TVKwriterestart(env_, lp_, path(name).c_str()); }
  int read_restart(const std::string& name) { return TVKreadcopyrestart(env_, lp_, path(name).c_str()); }
};

/* Values, duals and objective of the solution. */
std::vector<double> solution(ConstEnvHandle env, ConstProbHandle lp) {
  std::vector<double> x(static_cast<std::size_t>(TVKgetnumcols(env, lp)) + 1, 0.0),
      pi(static_cast<std::size_t>(TVKgetnumrows(env, lp)) + 1, 0.0);
  EXPECT_EQ(TVKsolution(env, lp, nullptr, &x.back(), x.data(), pi.data(), nullptr, nullptr), 0);
  x.insert(x.end(), pi.begin(), pi.end());
  return x;
}

TEST_F(Restart, GoesOnWithoutAnIteration) {
  struct Way {
    int (*optimize)(ConstEnvHandle, ProbHandle);
    const char* file;
  };
  const Way ways[] = {{TVKprimopt, "p.xxx"}, {TVKdualopt, "d.xxx.gz"}, {TVKlpopt, "l.bz2"}};
  int optimal = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    const Way& way = ways[seed % 3];
    renew();
    ASSERT_EQ(support::LpMaker(seed).draw(25).copy(env_, lp_), 0);
    ASSERT_EQ(TVKchgprobname(env_, lp_, "night"), 0);
    ASSERT_EQ(way.optimize(env_, lp_), 0);
    const support::Lp before = support::read_back(env_, lp_);
    const int status = TVKgetstat(env_, lp_), iterations = TVKgetitcnt(env_, lp_);
    const std::vector<double> values = solution(env_, lp_);
    ASSERT_EQ(write_restart(way.file), 0) << errors();
    renew();
    results();
    ASSERT_EQ(read_restart(way.file), 0) << errors();
    EXPECT_EQ(results(), "Load of restart from file succeeded.\n");
    EXPECT_EQ(problem_name(), "night");
    EXPECT_EQ(support::describe(support::read_back(env_, lp_)), support::describe(before));
    EXPECT_EQ(TVKgetstat(env_, lp_), status);
    EXPECT_EQ(TVKgetitcnt(env_, lp_), iterations);
    EXPECT_EQ(solution(env_, lp_), values);
    if (status != 1) continue;
    ++optimal;
    ASSERT_EQ(way.optimize(env_, lp_), 0);
    EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);
    const support::Outcome outcome = support::outcome_of(env_, lp_, before, 0);
    EXPECT_EQ(support::check_answer(env_, lp_, before, outcome), "");
  }
  EXPECT_GT(optimal, 20);
}

/* Interrupted, written, read: the second half of the run is as long as without the interruption. */
TEST_F(Restart, InterruptedRunKeepsItsNorms) {
  const fs::path model = fs::path(TOVIK_SOURCE_DIR) / "../shared/models/lp/netlib/25fv47.mps.bz2";
  if (!fs::exists(model)) GTEST_SKIP() << "the public models are not here";
  ASSERT_EQ(TVKreadcopyprob(env_, lp_, model.c_str(), nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 700), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  ASSERT_EQ(TVKgetstat(env_, lp_), 10);
  const std::size_t rows = static_cast<std::size_t>(TVKgetnumrows(env_, lp_));
  std::vector<double> norms(rows), read_norms(rows);
  std::vector<int> head(rows), read_head(rows);
  int length = 0;
  ASSERT_EQ(TVKgetdnorms(env_, lp_, norms.data(), head.data(), &length), 0);
  ASSERT_EQ(write_restart("a.xxx"), 0);
  renew();
  ASSERT_EQ(read_restart("a"), 0) << errors();
  EXPECT_EQ(TVKgetstat(env_, lp_), 10);
  ASSERT_EQ(TVKgetdnorms(env_, lp_, read_norms.data(), read_head.data(), &length), 0);
  EXPECT_EQ(read_norms, norms);
  EXPECT_EQ(read_head, head);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 1000000), 0);
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetstat(env_, lp_), 1);
  double objective = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &objective), 0);
  EXPECT_NEAR(objective, 5501.8458883, 1e-4);
  double lower[2][20], upper[2][20];
  ASSERT_EQ(TVKgetobjsens(env_, lp_, 0, 19, lower[0], upper[0]), 0);
  ASSERT_EQ(write_restart("b.xxx"), 0);
  renew();
  ASSERT_EQ(read_restart("b.xxx"), 0);
  ASSERT_EQ(TVKgetobjsens(env_, lp_, 0, 19, lower[1], upper[1]), 0) << "without an optimization";
  for (int j = 0; j < 20; ++j) {
    EXPECT_NEAR(lower[1][j], lower[0][j], 1e-7 * std::fabs(lower[0][j]));
    EXPECT_NEAR(upper[1][j], upper[0][j], 1e-7 * std::fabs(upper[0][j]));
  }
  ASSERT_EQ(TVKdualopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);
}

TEST_F(Restart, FailedLoadChangesNothing) {
  load_small();
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  ASSERT_EQ(write_restart("a.xxx"), 0);
  const std::string bytes = content("a.xxx"), before = model();
  const std::vector<double> values = solution(env_, lp_);
  for (std::size_t k = 0; k < bytes.size(); k += 3) {
    std::string spoilt = bytes;
    spoilt[k] = static_cast<char>(~spoilt[k]);
    put("b.xxx", spoilt);
    results();
    ASSERT_NE(read_restart("b.xxx"), 0) << k;
    ASSERT_TRUE(errors().ends_with("\nLoad of restart from file failed.\n"));
    ASSERT_EQ(results(), "");
    ASSERT_EQ(model(), before);
    ASSERT_EQ(solution(env_, lp_), values);
  }
  EXPECT_EQ(TVKreadcopyrestart(env_, lp_, nullptr), 1004);
  EXPECT_EQ(read_restart("missing"), 1423);
  EXPECT_EQ(TVKwriterestart(env_, lp_, ""), 1421);
  EXPECT_EQ(TVKwriterestart(env_, lp_, "/dev/full"), 1562);
  EXPECT_EQ(read_file("a.xxx"), 0) << "a restart file is a SAV file";
  EXPECT_EQ(model(), before);
  ASSERT_EQ(write("plain.sav"), 0);
  EXPECT_EQ(read_restart("plain.sav"), 0) << "and the other way round";
  EXPECT_EQ(model(), before);
}

}  // namespace
