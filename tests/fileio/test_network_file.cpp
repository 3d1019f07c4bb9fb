/* Network files: what is read, what is refused and how, what is written, and problems made of them. */
#include <cmath>

#include "support/network_data.h"
#include "support/network_fixture.h"

namespace {

using support::describe;
using support::NetworkArrays;

const std::string kSmall =
    "c a small one\n"
    "p min 3 3\n"
    "n 1 4\n"
    "n 3 -4\n"
    "a 1 2 0 3 1\n"
    "a 2 3 0 3 1\n"
    "a 1 3 0 -1 5\n";
const std::string kSmallText = "min\n- 4\n- 0\n- -4\n- 0 1 1 [0,3]\n- 1 2 1 [0,3]\n- 0 2 5 [0,inf]\n";

class NetworkFile : public support::WithNetwork {
 protected:
  int read_net(const std::string& name) { return TVKNETreadcopyprob(env_, net_, path(name).c_str()); }
  int read_net_text(const std::string& text) {
    put("net.net", text);
    return read_net("net.net");
  }
  int write_net(const std::string& name, const char* type = nullptr) {
    return TVKNETwriteprob(env_, net_, path(name).c_str(), type);
  }
  std::string text() { return describe(support::read_back(env_, net_)); }
  std::string name() {
    char store[512];
    int surplus = 0;
    EXPECT_EQ(TVKNETgetprobname(env_, net_, store, 512, &surplus), 0);
    return store;
  }
};

TEST_F(NetworkFile, ReadsTheFormatAndWhatIsSafeBeyondIt) {
  ASSERT_EQ(read_net_text(kSmall), 0) << errors();
  EXPECT_EQ(text(), kSmallText);
  EXPECT_EQ(name(), path("net.net"));

  ASSERT_EQ(read_net_text("\n  \t\r\nc\np\tmin  4 7 \r\n\na 1 2 -2.5 1e21 0.125\r\n"
                          "  a 2 2 -inf +INFINITY -1e-3  \na 1 2 -3 -1 +7\na 3 4 0 -1.0 1.5d2\n"
                          "c foreign @arc x\nc @node two\nc @unknown 3\n"
                          "a 4 1 -1e999 1e999 -0\na 4 1 inf -inf 1\na 1 1 .5 5. 1E2\n n 4 1e-320"),
            0)
      << errors();
  NetworkArrays expected;
  expected.supply = {0, 0, 0, 1e-320};
  expected.add_arc(0, 1, 0.125, -2.5, 1e20);
  expected.add_arc(1, 1, -1e-3, -1e20, 1e20);
  expected.add_arc(0, 1, 7, -3, -1);
  expected.add_arc(2, 3, 150, 0, -1);
  expected.add_arc(3, 0, 0, -1e20, 1e20);
  expected.add_arc(3, 0, 1, 1e20, -1e20);
  expected.add_arc(0, 0, 100, 0.5, 5);
  EXPECT_EQ(support::read_back(env_, net_), expected);
  ASSERT_EQ(read_net_text("p min 0 0"), 0);
  EXPECT_EQ(text(), "min\n");
}

TEST_F(NetworkFile, NotesBringNamesSenseAndTitle) {
  ASSERT_EQ(read_net_text("c @problem winter plan \nc @maximize\r\np min 3 3\nc @node 3 far away\nc @node 2\n"
                          "c @node 9 nobody\nc @arc first\nc @arc up\\\\\\nto\\q\na 1 2 0 1 -5\na 2 3 0 1 0\n"
                          "c @arc third\na 2 3 0 1 2.5\nc @arc nothing\n"),
            0)
      << errors();
  EXPECT_EQ(text(),
            "max\nn1 0\n 0\nfar away 0\nup\\\nto\\q 0 1 5 [0,1]\na2 1 2 0 [0,1]\nthird 1 2 -2.5 [0,1]\n");
  EXPECT_EQ(name(), "winter plan ");
  ASSERT_EQ(read_net_text("c @arc " + std::string(300, 'x') + "\n" + kSmall), 0);
  EXPECT_EQ(warnings(), "Line 1:  Name cut to 255 characters.\n");
  EXPECT_EQ(support::read_back(env_, net_).arc_names[0], std::string(255, 'x'));
}

TEST_F(NetworkFile, RefusesWhatDoesNotFit) {
  ASSERT_EQ(read_net_text(kSmall), 0);
  ASSERT_EQ(errors(), "");
  struct Case {
    std::string text;
    int code;
    const char* said;  // of the error line, or of the warning that goes with it
  };
  const std::string head = "p min 2 2\n", arc = "a 1 2 0 1 1\n";
  const Case cases[] = {
      {"", 1538, "Unexpected end of network file"},
      {"c only\n\n", 1538, ""},
      {head + arc, 1538, ""},
      {head + arc + "a 1 2 0", 1538, ""},
      {"p min 2", 1538, ""},
      {head + arc + arc + "n 1", 1538, ""},
      {arc + head, 1531, "Not a min-cost flow problem"},
      {"n 1 2\n" + head, 1531, ""},
      {head + head + arc + arc, 1531, ""},
      {"p max 2 2\n" + arc + arc, 1531, ""},
      {"p\n" + arc, 1531, ""},
      {"p minimum 2 1\n" + arc, 1531, ""},
      {head + "n 3 1\n" + arc + arc, 1530, "Line 2:  Node 3 is not one of 1 to 2."},
      {head + arc + "a 0 2 0 1 1\n", 1530, "Line 3:  Node 0 is not one of 1 to 2."},
      {head + arc + "a 99999999999999999999999999 2 0 1 1\n", 1530, "Line 3:  Node "},
      {head + "n 1 1\n" + arc + "n 1 1\n" + arc, 1530, "Line 4:  Node 1 comes twice."},
      {head + arc + arc + arc, 1530, "Line 4:  More arcs than the 2 of the problem line."},
      {"p min -2 2\n", 1530, "Line 1:  The problem line counts less than nothing."},
      {"p min 500000000 1\n" + arc, 1530, "far more nodes than the file speaks of"},
      {"p min 3000000000 1\n" + arc, 1012, ""},
      {"p min 2 2 2\n", 1537, "near line 1 "},
      {"p min 2 x\n", 1537, "near line 1 "},
      {head + "a 1 2 0 1\n" + arc, 1537, "near line 2 "},
      {head + arc + "a 1 2 0 1 1 1\n" + arc, 1537, "near line 3 "},
      {head + "a 1 2 0 1e 1\n", 1537, "near line 2 "},
      {head + "a 1 2 0 infinite 1\n", 1537, "near line 2 "},
      {head + "a 1 2 0 1 inf\n", 1537, "near line 2 "},
      {head + "a 1 2 0 1 1e999\n", 1537, "near line 2 "},
      {head + "a 1 2 nan 1 1\n", 1537, "near line 2 "},
      {head + "a 1.0 2 0 1 1\n", 1537, "near line 2 "},
      {head + "a 1 2 0 1 0x1\n", 1537, "near line 2 "},
      {head + "\n\nx 1 2\n", 1537, "near line 4 "},
      {head + "arc 1 2 0 1 1\n", 1537, "near line 2 "},
      {head + std::string("a 1 2\0 0 1 1\n", 13), 1537, "near line 2 "},
      {head + "n 1 " + std::string(2000000, ' ') + "5\n", 1537, "near line 2 "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 80));
    EXPECT_EQ(read_net_text(c.text), c.code);
    const std::string said = errors() + warnings();
    EXPECT_TRUE(said.starts_with("TOVIK Error  " + std::to_string(c.code))) << said;
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_EQ(text(), kSmallText);
    errors();  // the names that there are none of
  }
  EXPECT_EQ(TVKNETreadcopyprob(env_, net_, nullptr), 1004);
  EXPECT_EQ(TVKNETreadcopyprob(env_, net_, ""), 1421);
  EXPECT_EQ(read_net("missing"), 1423);
  EXPECT_NE(errors().find("missing.net"), std::string::npos);
  ASSERT_EQ(read_net_text("c " + std::string(3000000, 'x') + "\n" + kSmall), 0);
  EXPECT_EQ(text(), kSmallText);
}

TEST_F(NetworkFile, WritesWhatReadsBackTheSame) {
  NetworkArrays odd;
  odd.sense = -1;
  odd.supply = {0.1, -1e300, 5e-324, 0};
  odd.add_arc(0, 1, 1.0 / 3, 0, 1e20);
  odd.add_arc(1, 1, 0, -1e20, -1);
  odd.add_arc(2, 3, -1e22, 0, -1);
  odd.add_arc(2, 3, 4, -1, 1e20);
  odd.add_arc(3, 0, 123456789.123456789, 1e20, -1e20);
  odd.node_names = {"", " n 2 ", "c @node 1 x", "back\\slash\\n"};
  odd.arc_names = {"a\nb", "\r", "\xff\x01", "a 1 2", std::string(255, 'y')};
  ASSERT_EQ(support::copy(env_, net_, odd), 0);
  ASSERT_EQ(TVKNETchgprobname(env_, net_, "odd\n one"), 0);
  for (const char* file : {"odd.net", "odd.min.gz", "odd", "odd.NET.BZ2"}) {
    SCOPED_TRACE(file);
    ASSERT_EQ(write_net(file), 0) << errors();
    ASSERT_EQ(TVKNETcopynet(env_, net_, 1, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr),
              0);
    ASSERT_EQ(read_net(file), 0) << errors();
    EXPECT_EQ(support::read_back(env_, net_), odd);
    EXPECT_EQ(name(), "odd\n one");
  }
  EXPECT_TRUE(
      content("odd").starts_with("c @problem odd\\n one\nc @maximize\np min 4 5\nc @node 1 \nn 1 0.1\n"));
  EXPECT_NE(content("odd").find("a 1 2 0 -1 -0.3333333333333333\n"), std::string::npos);

  ASSERT_EQ(read_net_text(kSmall), 0);
  ASSERT_EQ(TVKNETchgprobname(env_, net_, ""), 0);
  ASSERT_EQ(write_net("plain.txt", "min"), 0);
  EXPECT_EQ("c a small one\n" + content("plain.txt"), kSmall);
  EXPECT_EQ(write_net("plain.txt", "NETx"), 1424);
  EXPECT_EQ(write_net("plain.txt", "LP"), 1424);
  EXPECT_EQ(TVKNETwriteprob(env_, net_, nullptr, nullptr), 1421);
  EXPECT_EQ(write_net("no/such/folder.net"), 1422);
  const int arc = 1;
  const double nan = std::nan("");
  ASSERT_EQ(TVKNETchgobj(env_, net_, 1, &arc, &nan), 0);
  EXPECT_EQ(write_net("plain.txt"), 1650);
  EXPECT_EQ("c a small one\n" + content("plain.txt"), kSmall);
}

TEST_F(NetworkFile, IsReadAsALinearProblem) {
  const std::string expected =
      "min 0\na1 - 1 [0,3] n1:1 n2:-1\na2 - 1 [0,3] n2:1 n3:-1\na3 - 5 [0,inf] n1:1 n3:-1\n"
      "n1 E 4\nn2 E 0\nn3 E -4\n";
  for (const char* file : {"small.net", "small.MIN"}) {
    ASSERT_EQ(read_text(file, kSmall), 0) << errors();
    EXPECT_EQ(model(), expected);
    char store[512];
    int surplus = 0;
    EXPECT_EQ(TVKgetprobname(env_, lp_, store, 512, &surplus), 0);
    EXPECT_EQ(store, path(file));
  }
  put("small", kSmall);
  ASSERT_EQ(read_file("small", "network"), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  double value = 0;
  ASSERT_EQ(TVKgetobjval(env_, lp_, &value), 0);
  EXPECT_DOUBLE_EQ(value, 11);
  EXPECT_EQ(read_text("bad.net", kSmall + "a 1 2 0 1 1\n"), 1530);
  EXPECT_EQ(model(), expected);
  EXPECT_EQ(TVKgetobjval(env_, lp_, &value), 0);
  ASSERT_EQ(read_text("named.net", "c @maximize\np min 1 1\nc @node 1 here\nc @arc loop\na 1 1 0 2 3\n"), 0);
  EXPECT_EQ(model(), "max 0\nloop - -3 [0,2]\nhere E 0\n");
}

}  // namespace
