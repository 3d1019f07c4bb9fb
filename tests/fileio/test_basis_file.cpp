/* Basis, vector and priority-order files: their text, what each record does, what is refused, and that what
 * was written comes back. */
#include <algorithm>
#include <cmath>

#include "support/file_fixture.h"

namespace {

class BasisFile : public support::WithFiles {
 protected:
  void load(const std::string& lp_text = kModel) {
    ASSERT_EQ(read_text("model.lp", lp_text), 0) << errors();
    ASSERT_EQ(TVKchgprobname(env_, lp_, "p"), 0);
    warnings();
  }
  int read(const std::string& records) {
    put("a.bas", "NAME          p\n" + records + "ENDATA\n");
    return TVKreadcopybase(env_, lp_, path("a.bas").c_str());
  }
  /* The starting basis, columns and rows: "1022 11"; empty without one. */
  std::string basis() {
    std::vector<int> columns(static_cast<std::size_t>(TVKgetnumcols(env_, lp_))),
        rows(static_cast<std::size_t>(TVKgetnumrows(env_, lp_)));
    if (TVKgetbase(env_, lp_, columns.data(), rows.data()) != 0) {
      errors();
      return "";
    }
    std::string text;
    for (const int status : columns) text += std::to_string(status);
    text += ' ';
    for (const int status : rows) text += std::to_string(status);
    return text;
  }
  void set_basis(const std::vector<int>& columns, const std::vector<int>& rows) {
    ASSERT_EQ(TVKcopybase(env_, lp_, columns.data(), rows.data()), 0);
  }

  /* Columns x y z w f, rows a (L), b (G), c (ranged). */
  static inline const std::string kModel =
      "min x + y + z + w + f\nst\n a: x + y + z + w + f <= 4\n b: x - y >= -3\n c: -2 <= x + z <= 8\n"
      "bounds\n y <= 3\n z <= 5\n -inf <= w <= 2\n f free\nend\n";
};

TEST_F(BasisFile, Text) {
  load();
  set_basis({1, 2, 1, 2, 3}, {0, 0, 1});
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 0);
  EXPECT_EQ(results(), "Basis written to file '" + path("a.bas") + "'.\n");
  EXPECT_EQ(content("a.bas"),
            "NAME          p  Iterations 0  Rows 3  Cols 5\n XL x  a\n XU z  b\n UL y\n UL w\nENDATA\n");
  set_basis({0, 0, 0, 2, 3}, {1, 1, 1});
  ASSERT_EQ(TVKreadcopybase(env_, lp_, path("a").c_str()), 0) << errors();
  EXPECT_EQ(basis(), "12123 021");
  set_basis({0, 0, 1, 2, 3}, {1, 1, 2});
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("a.bas.bz2").c_str()), 0);
  ASSERT_EQ(TVKreadcopybase(env_, lp_, path("a.bas.bz2").c_str()), 0);
  EXPECT_EQ(basis(), "00123 112");
}

struct RecordCase {
  const char* records;
  int code;
  const char* text;  // the basis, or the error's text
};

TEST_F(BasisFile, Records) {
  const RecordCase cases[] = {
      {"", 0, "00023 111"},
      {" XU y  b\n", 0, "01023 121"},
      {"* comment\n\n\txl\ty\ta\r\n ul z\n", 0, "01223 011"},
      {" UL y\n LL y\n UL x\n UL f\n", 0, "00023 111"},
      {" LL a\n BS x\n", 0, "10023 011"},
      {" UL c\n BS f 1.5\n", 0, "00021 112"},
      {" BR a  4\n SC f  2.5\n", 0, "00023 111"},
      {" XU y  b  1e0\n", 0, "01023 121"},
      {" XU y\n", 1553, "Line 2: Wrong number of entries"},
      {" XU y  b  1  2\n", 1553, "Line 2: Wrong number of entries"},
      {" UL y  1\n", 1553, "Line 2: Wrong number of entries"},
      {" ZZ y\n", 1551, "Line 2: Unrecognized basis indicator 'ZZ'"},
      {" UL y\n XYZ y\n", 1551, "Line 3: Unrecognized basis indicator 'XYZ'"},
      {"COLUMNS\n", 1551, "Line 2: Unrecognized basis indicator 'COLUMNS'"},
      {" XU y  b  1x\n", 1434, "Line 2: Couldn't convert '1x' to a number"},
      {" BR a\n", 1550, "Basis missing some basic values"},
      {" SC x  2\n", 0, "30023 111"},
      {" XL y  b  1\n SR b  2\n", 0, "01023 131"},
      {" SC x\n", 1550, "Basis missing some basic values"},
      {" SR a\n", 1550, "Basis missing some basic values"},
      {" BS x\n BS y\n", 1555, "2 extra basic variable(s)"},
      {" LL a\n", 1555, "1 too few basic variable(s)"},
  };
  for (const RecordCase& c : cases) {
    SCOPED_TRACE(c.records);
    load();
    set_basis({0, 0, 1, 2, 3}, {1, 1, 2});
    EXPECT_EQ(read(c.records), c.code);
    EXPECT_EQ(basis(), c.code == 0 ? c.text : "00123 112");
    if (c.code != 0) {
      EXPECT_EQ(errors(), "TOVIK Error  " + std::to_string(c.code) + ": " + c.text + ".\n");
    }
  }
  EXPECT_EQ(warnings(), "");
}

/* Values make a superbasis: what lies between its bounds comes back with its value. */
TEST_F(BasisFile, Superbasis) {
  load();
  const int columns[] = {3, 1, 1, 2, 3}, rows[] = {1, 0, 3};
  const double x[] = {0.5, 3.5, 2, 2, -7.5};
  ASSERT_EQ(TVKcopystart(env_, lp_, columns, rows, x, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 0);
  EXPECT_EQ(results(), "Superbasis written to file '" + path("a.bas") + "'.\n");
  const std::string text =
      "NAME          p  Iterations 0  Rows 3  Cols 5\n XU y  b    3.500000000000000e+00\n"
      " XL z  c    2.000000000000000e+00\n UL w\n BR a    3.500000000000000e+00\n"
      " SR c   -4.500000000000000e+00\n SC x    5.000000000000000e-01\n SC f   "
      "-7.500000000000000e+00\nENDATA\n";
  EXPECT_EQ(content("a.bas"), text);
  set_basis({0, 0, 0, 2, 3}, {1, 1, 1});
  ASSERT_EQ(TVKreadcopybase(env_, lp_, path("a.bas").c_str()), 0) << errors();
  EXPECT_EQ(basis(), "31123 123");
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("b.bas").c_str()), 0);
  EXPECT_EQ(content("b.bas"), text);
  ASSERT_EQ(TVKchgobjsen(env_, lp_, TVK_MAX), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  double value = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &value), 0);
  EXPECT_DOUBLE_EQ(value, 4);
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("b.bas").c_str()), 0);
  EXPECT_TRUE(results().ends_with("\nBasis written to file '" + path("b.bas") + "'.\n"));

  const char integer = 'I';
  const int first = 0;
  ASSERT_EQ(TVKchgctype(env_, lp_, 1, &first, &integer), 0);
  for (const char* records : {" SC x  2\n", " XL y  b  1\n SR b  2\n"}) {
    EXPECT_EQ(read(records), 1554);
    EXPECT_EQ(errors(), "TOVIK Error  1554: Superbases are not allowed.\n");
  }
  EXPECT_EQ(read(" SC f  2.5\n"), 0) << errors();
}

TEST_F(BasisFile, Warnings) {
  load();
  std::string records = " XU nobody  b\n XU x  nothing\n";
  for (int k = 0; k < 23; ++k) records += " UL n" + std::to_string(k) + "\n";
  ASSERT_EQ(read(records), 0);
  const std::string said = warnings();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 21);
  EXPECT_TRUE(
      said.starts_with("Warning, line 2: 'nobody' is not a variable.\n"
                       "Warning, line 3: 'nothing' is not a row.\n"));
  EXPECT_TRUE(said.ends_with("\n5 warnings not printed.\n"));
  put("b.bas", " UL y");
  EXPECT_EQ(TVKreadcopybase(env_, lp_, path("b.bas").c_str()), 0);
  EXPECT_EQ(warnings(), "Warning: 'ENDATA' missing.\n");
  EXPECT_EQ(read(" BR a\n"), 1550);
  EXPECT_EQ(warnings(), "Line 2: Missing basic value.\n");
}

TEST_F(BasisFile, WhatCannotBeDone) {
  load();
  EXPECT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 1262);
  set_basis({0, 0, 0, 0, 0}, {1, 1, 0});
  EXPECT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 1555);
  const int columns[] = {3, 0, 0, 0, 0}, rows[] = {1, 1, 1};
  for (const double value : {std::nan(""), HUGE_VAL, 1e308}) {  // the last one makes an infinite slack
    const double x[] = {value, -value, value, value, -value};
    ASSERT_EQ(TVKcopystart(env_, lp_, columns, rows, x, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 1650) << value;
  }
  set_basis({0, 0, 0, 0, 0}, {1, 1, 0});
  EXPECT_FALSE(std::filesystem::exists(path("a.bas")));
  EXPECT_EQ(TVKmbasewrite(env_, lp_, ""), 1421);
  EXPECT_EQ(TVKreadcopybase(env_, lp_, nullptr), 1421);
  EXPECT_EQ(TVKreadcopybase(env_, lp_, path("a.bas").c_str()), 1423);
  EXPECT_EQ(read(" UL " + std::string(70000, 'x') + "\n"), 1465);
  ASSERT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(read(""), 1219);
  EXPECT_EQ(basis(), "00000 110");
  ProbHandle empty = TVKcreateprob(env_, nullptr, "empty");
  EXPECT_EQ(TVKreadcopybase(env_, empty, path("a.bas").c_str()), 0);
  TVKfreeprob(env_, &empty);
}

/* An optimal basis makes the next solve end at once, whatever the names. */
TEST_F(BasisFile, HostileNamesComeBack) {
  load("max 3 x + 2 y + z\nst\n a: x + y + z <= 4\n b: x + 3 y >= 1\n c: x - z <= 2\nbounds\n z <= 1\nend\n");
  const char* columns[] = {"a b", "a b#0", "same"};
  const char* rows[] = {"same", "same", "r#0"};
  const int indices[] = {0, 1, 2};
  ASSERT_EQ(TVKchgcolname(env_, lp_, 3, indices, const_cast<char**>(columns)), 0);
  ASSERT_EQ(TVKchgrowname(env_, lp_, 3, indices, const_cast<char**>(rows)), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  ASSERT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
  const std::string optimal = basis();
  ASSERT_EQ(TVKmbasewrite(env_, lp_, path("a.bas").c_str()), 0);
  ASSERT_EQ(TVKwriteprob(env_, lp_, path("a.mps").c_str(), nullptr), 0);
  warnings();
  ProbHandle original = lp_;
  set_basis({0, 0, 0}, {1, 1, 1});
  ASSERT_EQ(TVKreadcopybase(env_, lp_, path("a.bas").c_str()), 0) << errors();
  EXPECT_EQ(warnings(), "");
  std::string back = basis();
  std::replace(back.begin() + 4, back.end(), '2', '0');  // rows that are not ranged have one end
  EXPECT_EQ(back, optimal);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);

  lp_ = TVKcreateprob(env_, nullptr, "copy");
  ASSERT_EQ(read_file("a.mps"), 0);
  ASSERT_EQ(TVKreadcopybase(env_, lp_, path("a.bas").c_str()), 0) << errors();
  EXPECT_EQ(warnings(), "");
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);
  TVKfreeprob(env_, &original);
}

TEST_F(BasisFile, Vectors) {
  load("max 3 x + 2 y\nst\n a: x + 4 y <= 4\nbounds\n x <= 2\nend\n");
  EXPECT_EQ(TVKvecwrite(env_, lp_, path("a.vec").c_str()), 1556);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  ASSERT_EQ(TVKvecwrite(env_, lp_, path("a.vec").c_str()), 0);
  EXPECT_EQ(content("a.vec"),
            "NAME          p\n X  x    2.000000000000000e+00\n X  y    5.000000000000000e-01\n"
            " S  a    0.000000000000000e+00\n P  a    5.000000000000000e-01\n"
            " D  x    2.500000000000000e+00\n D  y    0.000000000000000e+00\nENDATA\n");
  errors();
  ASSERT_EQ(TVKreadcopyvec(env_, lp_, path("a").c_str()), 0) << errors();
  EXPECT_EQ(warnings(), "");
  struct Case {
    const char* records;
    int code;
    const char* said;
  };
  const Case cases[] = {
      {" X  x  1\n", 0, "Warning: No dual values.\n"},
      {" Q  x  1\n D  y  -1.5\n", 0, "Warning, line 2: Unrecognized key 'Q'.\n"},
      {" X  q  1\n P  a  1\n", 0, "Warning, line 2: 'q' is not a variable.\n"},
      {" P  x  1\n", 1556, "Warning, line 2: 'x' is not a row.\nWarning: No dual values.\n"},
      {" X  x\n", 1553, ""},
      {" X  x  1  2\n", 1553, ""},
      {" X  x  one\n", 1434, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.records);
    put("b.vec", std::string("NAME\n") + c.records + "ENDATA\n");
    EXPECT_EQ(TVKreadcopyvec(env_, lp_, path("b.vec").c_str()), c.code);
    EXPECT_EQ(warnings(), c.said);
  }
}

TEST_F(BasisFile, Orders) {
  load("max x + y + z\nst\n r: x + y + z <= 9\ngenerals\n x y z\nend\n");
  const auto read_order = [this](const std::string& records) {
    put("a.ord", "NAME\n" + records + "ENDATA\n");
    return TVKreadcopyorder(env_, lp_, path("a.ord").c_str());
  };
  const auto order = [this] {
    int count = 0, surplus = 0, columns[3], priorities[3], directions[3];
    EXPECT_EQ(TVKgetorder(env_, lp_, &count, columns, priorities, directions, 3, &surplus), 0);
    std::string text;
    for (int k = 0; k < count; ++k) {
      text += std::to_string(columns[k]) + ':' + std::to_string(priorities[k]) + ':' +
              std::to_string(directions[k]) + ' ';
    }
    return text;
  };
  EXPECT_EQ(TVKordwrite(env_, lp_, path("a.ord").c_str()), 3016);
  ASSERT_EQ(read_order("* first\n UP z  10\n    y  3\n dn x  2100000000\n"), 0) << errors();
  EXPECT_EQ(order(), "0:2100000000:-1 1:3:0 2:10:1 ");
  ASSERT_EQ(TVKordwrite(env_, lp_, path("b.ord.gz").c_str()), 0);
  ASSERT_EQ(TVKordwrite(env_, lp_, path("b.ord").c_str()), 0);
  EXPECT_EQ(content("b.ord"), "NAME          p\n DN x  2100000000\n    y  3\n UP z  10\nENDATA\n");
  ASSERT_EQ(read_order("    x  1\n"), 0);
  errors();
  const RecordCase cases[] = {
      {" XX x  1\n", 3012, "Line 2: Unrecognized direction 'XX'"},
      {" U x  1\n", 3012, "Line 2: Unrecognized direction 'U '"},
      {" x\n", 1553, "Line 2: Wrong number of entries"},
      {" x  1.5\n", 1434, "Line 2: Couldn't convert '1.5' to a number"},
      {" x  2100000001\n", 1463, "Line 2: Magnitude exceeds integer limit 2100000000"},
      {" x  -1\n", 3006, "Negative priority entry -1"},
      {" x  1\n y 2\n UP x 2\n", 1447, nullptr},
  };
  for (const RecordCase& c : cases) {
    SCOPED_TRACE(c.records);
    EXPECT_EQ(read_order(c.records), c.code);
    const std::string said = errors();
    if (c.text != nullptr) {
      EXPECT_EQ(said, "TOVIK Error  " + std::to_string(c.code) + ": " + c.text + ".\n");
    }
    EXPECT_EQ(order(), "0:1:0 ");
  }
  ASSERT_EQ(TVKreadcopyorder(env_, lp_, path("b.ord.gz").c_str()), 0);
  EXPECT_EQ(order(), "0:2100000000:-1 1:3:0 2:10:1 ");
  load("min x\nend\n");
  EXPECT_EQ(read_order("    x  1\n"), 3003);
}

}  // namespace
