/* Model files as they are written: their text, their names, the choice of the format, and what stays of the
 * old file when something goes wrong. */
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <thread>

#include "support/file_fixture.h"

namespace {

namespace fs = std::filesystem;

class Write : public support::WithFiles {
 protected:
  int write(const std::string& name, const char* type = nullptr) {
    return TVKwriteprob(env_, lp_, path(name).c_str(), type);
  }
  void load(const std::string& lp_text) {
    ASSERT_EQ(read_text("input.lp", lp_text), 0) << errors();
    warnings();
    ASSERT_EQ(TVKchgprobname(env_, lp_, "p"), 0);
  }
  std::string text_of(const std::string& name) {
    EXPECT_EQ(write(name), 0) << errors();
    return content(name);
  }
  std::size_t files_in_folder() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }
};

const std::string kModel =
    "Maximize\n cost: 3 x - y + 2.5\nSubject To\n a: x + y - 0.1 z <= 4\n b: -2 <= x - z <= 8\n c: z = 1e30\n"
    "Bounds\n x <= 10\n -inf <= y <= -1\n w Free\n 2 <= s <= 9\n n <= 5\n 1 <= k <= 1\n"
    "Binaries\n d\nGenerals\n k n\nSemi-Continuous\n s n\nEnd\n";
const std::string kColumns = "Minimize\n obj: w + s + n + k + d\n";  // brings the columns that kModel lacks

TEST_F(Write, LpText) {
  load(kColumns + kModel.substr(kModel.find("Subject")));
  EXPECT_EQ(text_of("out.lp"),
            "\\Problem name: p\n\nMinimize\n obj: w + s + n + k + d\nSubject To\n"
            " a: x + y - 0.1 z <= 4\n b: x - z - Rgb  = -2\n c: z  = 1e+30\n"
            "Bounds\n w Free\n 2 <= s <= 9\n 0 <= n <= 5\n k = 1\n 0 <= x <= 10\n -inf <= y <= -1\n"
            " 0 <= Rgb <= 10\nBinaries\n d\nGenerals\n n k\nSemi-Continuous\n s n\nEnd\n");
  EXPECT_EQ(warnings(), "");

  load("max\n cost: 3 x - y + 2.5\nbounds\n y <= 4\nend\n");
  EXPECT_EQ(text_of("out.lp"),
            "\\Problem name: p\n\nMaximize\n cost: 3 x - y + 2.5\nBounds\n 0 <= y <= 4\nEnd\n");
}

TEST_F(Write, MpsText) {
  load(kColumns + kModel.substr(kModel.find("Subject")));
  EXPECT_EQ(text_of("out.mps"),
            "NAME          p\nROWS\n N  obj\n L  a\n G  b\n E  c\nCOLUMNS\n"
            "    w  obj             1\n    s  obj             1\n"
            "    MARK0000  'MARKER'                 'INTORG'\n"
            "    n  obj             1\n    k  obj             1\n    d  obj             1\n"
            "    MARK0001  'MARKER'                 'INTEND'\n"
            "    x  a             1\n    x  b             1\n    y  a             1\n"
            "    z  a          -0.1\n    z  b            -1\n    z  c             1\n"
            "RHS\n    rhs  a             4\n    rhs  b            -2\n    rhs  c         1e+30\n"
            "RANGES\n    rng  b            10\n"
            "BOUNDS\n FR bnd  w\n LO bnd  s             2\n SC bnd  s             9\n"
            " LO bnd  n             0\n SC bnd  n             5\n FX bnd  k             1\n BV bnd  d\n"
            " UP bnd  x            10\n MI bnd  y\n UP bnd  y            -1\nENDATA\n");
  EXPECT_EQ(warnings(), "");

  load("max\n cost: 0.1 x + 0.30000000000000004 y + 2.5\nend\n");
  EXPECT_EQ(text_of("out.mps"),
            "NAME          p\nOBJSENSE\n    MAX\nROWS\n N  cost\nCOLUMNS\n    x  cost           0.1\n"
            "    y  cost      0.30000000000000004\n    OBJCONST  cost           2.5\n"
            "BOUNDS\n FX bnd  OBJCONST             1\nENDATA\n");
  EXPECT_EQ(warnings(), "Warning:  Constant of the objective written as column 'OBJCONST' fixed at 1.\n");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MPSLONGNUM, 0), 0);
  EXPECT_NE(text_of("out.mps").find("    y  cost           0.3\n"), std::string::npos);
  ASSERT_EQ(read_file("out.mps"), 0);
  EXPECT_EQ(model(), "max 2.5\nx - 0.1 [0,inf]\ny - 0.3 [0,inf]\n");
}

TEST_F(Write, LpLinesHaveAtMost96Characters) {
  std::string objective = "min\n";
  for (int j = 0; j < 60; ++j) objective += " + 12345.678" + std::to_string(j) + " x" + std::to_string(j);
  load(objective + " + " + std::string(255, 'y') + "\nbinaries\n x1 x2\nend\n");
  const std::string before = model(), text = text_of("out.lp");
  std::istringstream lines(text);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("yyy") == std::string::npos) longest = std::max(longest, line.size());
  }
  EXPECT_LE(longest, 96u);
  EXPECT_GT(longest, 96u - 18);
  ASSERT_EQ(read_file("out.lp"), 0);
  EXPECT_EQ(model(), before);
}

struct NameCase {
  const char *first, *second;        // column names
  const char *lp_first, *lp_second;  // in an LP file; null: as they are
  const char *mps_first, *mps_second;
};

TEST_F(Write, NamesThatCannotStandInAFile) {
  const NameCase cases[] = {
      {"x+y", "b", "xpy#0", "b#1", nullptr, nullptr},
      {"a", "e5", "a#0", "_e5#1", nullptr, nullptr},
      {"Energy", "b", "_Energy#0", "b#1", nullptr, nullptr},
      {"3x", "[a]|b*c/d^e", "_3x#0", "_(a)bbacddce#1", nullptr, nullptr},
      {"a<b", "a>b=c-d:e", "alb#0", "agbecmd.e#1", nullptr, nullptr},
      {"a b", "a\tb", "a_b#0", "a_b#1", "a_b#0", "a_b#1"},
      {"same", "same", "same#0", "same#1", "same#0", "same#1"},
      {"bin", "inf", "bin#0", "inf#1", nullptr, nullptr},
      {"good", "also(good)", nullptr, nullptr, nullptr, nullptr},
  };
  for (const NameCase& c : cases) {
    SCOPED_TRACE(c.first);
    load("min a + b\nst\n r: a + b >= 1\nend\n");
    const int indices[] = {0, 1};
    const char* given[] = {c.first, c.second};
    ASSERT_EQ(TVKchgcolname(env_, lp_, 2, indices, const_cast<char**>(given)), 0);
    for (const bool mps : {false, true}) {
      const char* first = mps ? c.mps_first : c.lp_first;
      const char* second = mps ? c.mps_second : c.lp_second;
      const char* file = mps ? "out.mps" : "out.lp";
      ASSERT_EQ(write(file), 0);
      EXPECT_EQ(warnings(), first == nullptr ? ""
                                             : std::string("Warning:  Output names have been modified to "
                                                           "conform to ") +
                                                   (mps ? "MPS" : "LP") + " format.\n");
      ProbHandle copy = TVKcreateprob(env_, nullptr, "copy");
      ASSERT_EQ(TVKreadcopyprob(env_, copy, path(file).c_str(), nullptr), 0) << errors() << content(file);
      EXPECT_EQ(support::names(env_, copy, TVKgetcolname, 2),
                (std::vector<std::string>{first != nullptr ? first : c.first,
                                          second != nullptr ? second : c.second}));
      EXPECT_EQ(support::names(env_, lp_, TVKgetcolname, 2), (std::vector<std::string>{c.first, c.second}));
      TVKfreeprob(env_, &copy);
      warnings();
    }
  }
}

TEST_F(Write, MissingAndGenericNames) {
  load("max 2 x + 3 y\nst\n r: x + y <= 1\nend\n");
  EXPECT_EQ(write("out.lp", "RLP"), 0);
  EXPECT_EQ(warnings(), "");
  EXPECT_NE(content("out.lp").find(" obj: 2 x1 + 3 x2\nSubject To\n c1: x1 + x2 <= 1\n"), std::string::npos);
  EXPECT_EQ(write("out.mps", "rew"), 0);
  EXPECT_NE(content("out.mps").find("    x2  c1             1\n"), std::string::npos);
  ASSERT_EQ(TVKdelnames(env_, lp_), 0);
  EXPECT_EQ(write("out.lp"), 0);
  EXPECT_EQ(
      warnings(),
      "Default variable names x1, x2 ... being created.\nDefault row names c1, c2 ... being created.\n");
  EXPECT_EQ(write("out.mps"), 0);
  EXPECT_EQ(
      warnings(),
      "Default column names x1, x2 ... being created.\nDefault row    names c1, c2 ... being created.\n");
}

TEST_F(Write, TypeAndNameChooseTheFormat) {
  struct Case {
    const char* file;
    const char* type;
    int code;
    const char* begins;
  };
  const Case cases[] = {
      {"a.lp", nullptr, 0, "\\"},
      {"a.LP", nullptr, 0, "\\"},
      {"a.lpx", nullptr, 0, "\\"},
      {"a.lpxy", nullptr, 1424, ""},
      {"a.mps", nullptr, 0, "NAME"},
      {"a.rlp", nullptr, 0, "\\"},
      {"a.rmp", nullptr, 0, "NAME"},
      {"a.rew", nullptr, 0, "NAME"},
      {"a.Sav", nullptr, 0, "\nTOVIK"},
      {"a.lp", "sav", 0, "\nTOVIK"},
      {"a.qps", nullptr, 1424, ""},
      {"a.net", nullptr, 1424, ""},
      {"a", nullptr, 1424, ""},
      {"a.", nullptr, 1424, ""},
      {"a", "lpt", 0, "\\"},
      {"a.lp", "mps", 0, "NAME"},
      {"a.lp", "lpxx", 1424, ""},
      {"a.lp", "", 1424, ""},
      {"a.lp.z", nullptr, 1424, ""},
      {"agz.gz", nullptr, 1424, ""},
      {"a.lp.gz", nullptr, 0, "\x1f\x8b"},
      {"a.mps.BZ2", nullptr, 0, "BZh"},
      {"a.lp.Z", nullptr, 0, "\x1f\x8b"},
      {"-n $(x) 'q'.lp.gz", nullptr, 0, "\x1f\x8b"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " as " + (c.type == nullptr ? "null" : c.type));
    load("min x\nst\n r: x >= 1\nend\n");
    const std::string before = model();
    fs::remove(path(c.file));
    EXPECT_EQ(write(c.file, c.type), c.code);
    EXPECT_EQ(errors(), c.code == 0 ? "" : "TOVIK Error  1424: Invalid filetype.\n");
    EXPECT_EQ(fs::exists(path(c.file)), c.code == 0);
    if (c.code != 0) continue;
    const std::string begins = c.begins;
    EXPECT_TRUE(content(c.file).starts_with(begins));
    const std::string as = begins == "NAME" || begins == "BZh" ? "mps" : begins[0] == '\n' ? "sav" : "lp";
    EXPECT_EQ(read_file(c.file, as.c_str()), 0);
    if (std::string(c.file).find(".r") == std::string::npos) {
      EXPECT_EQ(model(), before);
    }
  }
}

TEST_F(Write, FilesThatCannotBeWritten) {
  load("min x\nst\n r: x >= 1\nend\n");
  EXPECT_EQ(TVKwriteprob(env_, lp_, nullptr, nullptr), 1421);
  EXPECT_EQ(TVKlpwrite(env_, lp_, ""), 1421);
  errors();
  fs::create_directory(path("folder.lp"));
  for (const char* name : {"folder.lp", "missing/a.lp"}) {
    EXPECT_EQ(write(name), 1422);
    EXPECT_EQ(errors(), "TOVIK Error  1422: Could not open file '" + path(name) + "' for writing.\n");
  }
  EXPECT_EQ(TVKlpwrite(env_, lp_, "/dev/full"), 1803);
  EXPECT_EQ(TVKwriteprob(env_, lp_, "/dev/full", "SAV"), 1562);
  EXPECT_EQ(write(std::string(300, 'n') + ".lp"), 1422);
  fs::create_symlink("circle.lp", path("circle.lp"));
  EXPECT_EQ(write("circle.lp"), 1422);
  EXPECT_TRUE(fs::remove(path("circle.lp")));
  EXPECT_EQ(TVKwriteprob(env_, lp_, "/dev/fd/9999", "LP"), 1422);
  const int zero = 0;
  const double not_a_number = std::nan(""), two = 2;
  const std::function<int(const double*)> changes[] = {
      [&](const double* value) { return TVKchgrhs(env_, lp_, 1, &zero, value); },
      [&](const double* value) { return TVKchgbds(env_, lp_, 1, &zero, "U", value); },
      [&](const double* value) {
        return TVKchgsense(env_, lp_, 1, &zero, "R") + TVKchgrngval(env_, lp_, 1, &zero, value);
      }};
  for (const auto& change : changes) {
    ASSERT_EQ(change(&not_a_number), 0);
    EXPECT_EQ(write("a.lp"), 1650);
    EXPECT_EQ(write("a.mps"), 1650);
    ASSERT_EQ(change(&two), 0);
  }
  EXPECT_EQ(files_in_folder(), 2u);  // the input and the folder
}

TEST_F(Write, OldFileStaysWhenTheDiskIsFull) {
  load("min x\nst\n r: x >= 1\nend\n");
  for (const char* name : {"a.lp", "a.mps.gz", "a.sav", "a.sav.gz"}) {
    const int failure = std::string(name).find("sav") != std::string::npos ? 1562 : 1803;
    put(name, "old");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit small = before;
    small.rlim_cur = 16;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const int code = write(name);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(code, failure) << name;
    EXPECT_EQ(errors(), failure == 1803 ? "TOVIK Error  1803: Failure on temporary file write.\n"
                                        : "TOVIK Error  1562: Unable to write SAV file to disk.\n");
    EXPECT_EQ(content(name), "old");
  }
  EXPECT_EQ(files_in_folder(), 5u);
}

TEST_F(Write, LinksAndPermissionsStay) {
  load("min x\nst\n r: x >= 1\nend\n");
  put("real.lp", "old");
  fs::permissions(path("real.lp"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.lp", path("link.lp"));
  ASSERT_EQ(write("link.lp"), 0);
  EXPECT_TRUE(fs::is_symlink(path("link.lp")));
  EXPECT_TRUE(content("real.lp").starts_with("\\Problem"));
  EXPECT_EQ(fs::status(path("real.lp")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

/* A link may lead to a file that is still to be made, over another link. */
TEST_F(Write, LinksToNothingStay) {
  load("min x\nst\n r: x >= 1\nend\n");
  fs::create_directory(path("other"));
  fs::create_symlink("other/second.lp", path("first.lp"));
  fs::create_symlink("../new.lp", path("other/second.lp"));
  ASSERT_EQ(write("first.lp"), 0) << errors();
  EXPECT_TRUE(fs::is_symlink(path("first.lp")) && fs::is_symlink(path("other/second.lp")));
  EXPECT_TRUE(content("new.lp").starts_with("\\Problem"));
}

/* A user who may change a file, but neither add one to its folder nor take it away from there. */
TEST_F(Write, FilesThatCannotBeReplacedAreOverwritten) {
  load("min x\nst\n r: x >= 1\nend\n");
  const std::string whole = text_of("whole.lp");
  ASSERT_EQ(chmod(folder_.c_str(), 0755), 0);
  for (const mode_t mode : {0555, 01777}) {
    const std::string folder = mode == 0555 ? "closed" : "sticky", file = folder + "/a.lp";
    fs::create_directory(path(folder));
    put(file, std::string(500, 'o'));
    ASSERT_EQ(chmod(path(file).c_str(), 0666), 0);
    ASSERT_EQ(chmod(path(folder).c_str(), mode), 0);
    const uid_t user = geteuid();
    if (user == 0) {
      ASSERT_EQ(seteuid(65534), 0);
    }
    const int code = write(file);
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_EQ(code, 0) << errors() << folder;
    EXPECT_EQ(content(file), whole);
    ASSERT_EQ(chmod(path(folder).c_str(), 0755), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(path(folder)), fs::directory_iterator()), 1);
  }
}

/* What a program prints before and after stays where it is when its output goes to a file. */
TEST_F(Write, StandardOutputIsWrittenInPlace) {
  load("min x\nst\n r: x >= 1\nend\n");
  const std::string whole = text_of("whole.lp");
  testing::internal::CaptureStdout();
  std::printf("before\n");
  const int code = TVKwriteprob(env_, lp_, "/dev/stdout", "LP");
  std::printf("after\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\n" + whole + "after\n");
  EXPECT_EQ(code, 0);
}

/* A process that is killed while it replaces a file leaves the old one or the new one. */
TEST_F(Write, KilledWriterLeavesAWholeFile) {
  std::string objective = "min 1 x0";
  for (int j = 1; j < 3000; ++j) objective += "\n + " + std::to_string(j) + " x" + std::to_string(j);
  load(objective + "\nend\n");
  for (int round = 0; round < 45; ++round) {
    const std::string name = std::string("a.") + (round % 3 == 0 ? "lp" : round % 3 == 1 ? "mps" : "sav");
    const std::string whole[] = {(TVKchgobjsen(env_, lp_, TVK_MIN), text_of(name)),
                                 (TVKchgobjsen(env_, lp_, TVK_MAX), text_of(name))};
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int k = 0;; ++k) {
        TVKchgobjsen(env_, lp_, k % 2 == 0 ? TVK_MIN : TVK_MAX);
        if (write(name) != 0) _exit(1);
      }
    }
    std::this_thread::sleep_for(std::chrono::microseconds(2000 + 447 * round));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string text = content(name);
    ASSERT_TRUE(text == whole[0] || text == whole[1]) << text.size();
  }
}

}  // namespace
