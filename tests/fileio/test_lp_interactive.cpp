/* LP models typed on standard input: prompts, errors and the model that comes of it, through the public
 * header. Standard input is a pipe that holds everything that will be typed. */
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "support/describe_problem.h"
#include "support/environment_fixture.h"

namespace {

constexpr const char* kEnter = "Enter new problem ['end' on a separate line terminates]:\n";
constexpr const char* kAgain = "Please reenter last line:\n";

class LpInteractive : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    for (ChannelHandle channel : {results_, warning_, error_}) {
      ASSERT_EQ(TVKaddfuncdest(env_, channel, &shown_, support::keep_text), 0);
    }
    saved_ = dup(STDIN_FILENO);
    int status = -1;
    lp_ = TVKcreateprob(env_, &status, "start");
    ASSERT_EQ(status, 0);
  }
  void TearDown() override {
    TVKfreeprob(env_, &lp_);
    std::clearerr(stdin);
    if (saved_ >= 0) {
      dup2(saved_, STDIN_FILENO);
      close(saved_);
    }
    WithEnvironment::TearDown();
  }
  /* The texts are shorter than a pipe's buffer. */
  static void supply(const std::string& typed) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    close(ends[1]);
    ASSERT_GE(dup2(ends[0], STDIN_FILENO), 0);
    close(ends[0]);
    std::clearerr(stdin);
  }
  int enter(const std::string& typed) {
    supply(typed);
    shown_.clear();
    return TVKreadcopystdin(env_, lp_);
  }
  std::string model() { return support::describe(env_, lp_); }

  std::string shown_;  // what stands on the terminal, in order
  ProbHandle lp_ = nullptr;

 private:
  int saved_ = -1;
};

struct Entry {
  const char* what;
  std::string typed, model;
  std::string shown;  // behind the first prompt; # stands for the prompt after an error
};

const Entry kEntries[] = {
    {"no error", "min 2 x\nst\nr: x + y >= 1\nend\n", "min 0\nx - 2 [0,inf] r:1\ny - 0 [0,inf] r:1\nr G 1\n",
     ""},
    {"what a wrong line had brought is gone: its columns, its row, its part of a row",
     "min x\nst\nr: x >= 1\ns: u + v <= 3 \\\nt: x +\nw + - y >= 2\ny >= 2\nEND\n",
     "min 0\nx - 1 [0,inf] r:1 t:1\nu - 0 [0,inf] s:1\nv - 0 [0,inf] s:1\ny - 0 [0,inf] t:1\n"
     "r G 1\ns L 3\nt G 2\n",
     "TOVIK Error  1602: Lines 6,6: Adjacent signs.\n#"},
    {"twice wrong, and a wrong bound",
     "max x\nst\nr: x + y <= = 4\nr: x <= y\nr: x + y <= 4\nbounds\nx 3\nx <= 3\nend\n",
     "max 0\nx - 1 [0,3] r:1\ny - 0 [0,inf] r:1\nr L 4\n",
     "TOVIK Error  1610: Line 3: Expected RHS coefficient.\n#"
     "TOVIK Error  1615: Line 3: Expected number, found 'y'.\n#"
     "TOVIK Error  1621: Line 5: No bound sense.\n#"},
    {"text before the objective", "x + y\nmin x + y\nend\n", "min 0\nx - 1 [0,inf]\ny - 1 [0,inf]\n",
     "TOVIK Error  1436: Max or Min missing.\n#"},
    {"a repeated name and a conflict of senses are told at once",
     "min x\nst\nr: x >= 1\nr: z >= 2\ns: 4 <= x >= 1\ns: 1 <= x <= 4\nend\n",
     "min 0\nx - 1 [0,inf] r:1 s:1\nr G 1\ns R 1 3\n",
     "TOVIK Error  1447: Line 4: Row 'r' repeats.\n#TOVIK Error  1622: Line 4: Invalid bound sense.\n#"},
    {"an error that shows later: the line that it names is replaced, the ones behind it stay",
     "min x\nst\nr: x >= 1\nr: x +\ny <= 9\ns: x +\nend\n",
     "min 0\nx - 1 [0,inf] r:1 s:1\ny - 0 [0,inf] s:1\nr G 1\ns L 9\n",
     "TOVIK Error  1447: Line 4: Row 'r' repeats.\n#"},
    {"warnings are given once", "min x\nbounds\nq <= 1\nx 3\nx <= 3\nend\n", "min 0\nx - 1 [0,3]\n",
     "Warning, line 3: Name 'q' does not exist.\nTOVIK Error  1621: Line 4: No bound sense.\n#"},
    {"the input ends instead of end", "min x\nst\nr: x >= 1", "min 0\nx - 1 [0,inf] r:1\nr G 1\n",
     "Warning: 'End' missing.\n"},
};

std::string with_prompts(std::string text) {
  for (std::size_t at = 0; (at = text.find('#', at)) != std::string::npos;) text.replace(at, 1, kAgain);
  return kEnter + text;
}

TEST_F(LpInteractive, Entries) {
  for (const Entry& entry : kEntries) {
    SCOPED_TRACE(entry.what);
    EXPECT_EQ(enter(entry.typed), 0);
    EXPECT_EQ(shown_, with_prompts(entry.shown));
    EXPECT_EQ(model(), entry.model);
  }
}

/* Without a model the problem stays. */
TEST_F(LpInteractive, NoModel) {
  ASSERT_EQ(enter("min x\nst\nr: x >= 1\nend\n"), 0);
  const std::string before = model();
  const struct {
    const char* typed;
    int code;
    bool asked_again;
  } cases[] = {
      {"", 1436, false},
      {"\n", 1436, false},
      {"end\n", 1436, false},
      {"min y\nst\nr: y + + z >= 1\n", 1602, true},
      {"min y\nst\nr: y + + z >= 1", 1602, true},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.typed);
    EXPECT_NE(enter(entry.typed), 0);
    EXPECT_EQ(TVKgetnumcols(env_, lp_), 1);
    EXPECT_EQ(model(), before);
    EXPECT_EQ(shown_.find(kAgain) != std::string::npos, entry.asked_again) << shown_;
    EXPECT_NE(shown_.find(std::to_string(entry.code)), std::string::npos) << shown_;
  }
  char name[32];
  int surplus = 0;
  ASSERT_EQ(TVKgetprobname(env_, lp_, name, sizeof name, &surplus), 0);
  EXPECT_STREQ(name, "<stdin>");
}

TEST_F(LpInteractive, LeavesWhatFollowsEnd) {
  supply("min x\nend\nmax y\nend\nrest");
  ASSERT_EQ(TVKreadcopystdin(env_, lp_), 0);
  EXPECT_EQ(model(), "min 0\nx - 1 [0,inf]\n");
  ASSERT_EQ(TVKreadcopystdin(env_, lp_), 0);
  EXPECT_EQ(model(), "max 0\ny - 1 [0,inf]\n");
  char rest[8] = {};
  EXPECT_EQ(std::fread(rest, 1, sizeof rest, stdin), 4u);
  EXPECT_STREQ(rest, "rest");
}

TEST_F(LpInteractive, Refused) {
  EXPECT_EQ(TVKreadcopystdin(nullptr, lp_), 1002);
  EXPECT_EQ(TVKreadcopystdin(env_, nullptr), 1009);
  const int folder = open("/", O_RDONLY);
  ASSERT_GE(dup2(folder, STDIN_FILENO), 0);
  close(folder);
  EXPECT_EQ(TVKreadcopystdin(env_, lp_), 1423);
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 0);
}

}  // namespace
