/* Choice of a model file's format, compressed files, and files that are not there or not whole. */
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/file_fixture.h"

namespace {

namespace fs = std::filesystem;

const std::string kLp = "min x\nst\n r: x >= 1\nend\n";
const std::string kMps =
    "NAME          P\nROWS\n N  obj\n G  r\nCOLUMNS\n    x  obj  1  r  1\nRHS\n    rhs  r  1\nENDATA\n";
const std::string kNet = "p min 1 1\na 1 1 0 1 1\n";
const std::string kModel = "min 0\nx - 1 [0,inf] r:1\nr G 1\n";

class Dispatch : public support::WithFiles {
 protected:
  void write(const std::string& name, const std::string& text) { put(name, text); }
  int read(const std::string& name, const char* type = nullptr) { return read_file(name, type); }
  /* Writes the text through a compressor into `name`. */
  void compress(const std::string& program, const std::string& name, const std::string& text) {
    write("plain", text);
    ASSERT_EQ(std::system((program + " -c < " + path("plain") + " > '" + path(name) + "'").c_str()), 0);
  }
  std::string missing(const std::string& name) {
    return "TOVIK Error  1423: Could not open file '" + path(name) + "' for reading.\n";
  }
};

TEST_F(Dispatch, TypeNameAndFirstByteChooseTheFormat) {
  struct Case {
    const char* file;
    const char* type;
    std::string text;
    int code;
  };
  const Case cases[] = {
      {"a.lp", nullptr, kLp, 0},
      {"a.LP", nullptr, kLp, 0},
      {"a.mps", nullptr, kMps, 0},
      {"a.Qps", nullptr, kMps, 0},
      {"a.mps.z", nullptr, kMps, 0},
      {"lp.mps", "LP", kLp, 0},
      {"a.lp", "mps", kMps, 0},
      {"a", "lpx", kLp, 0},
      {"a", "Mps2", kMps, 0},
      {"a", "MP", kMps, 1424},
      {"a.lp", "", kLp, 1424},
      {"a.net", nullptr, kNet, 0},
      {"a.MIN", nullptr, kNet, 0},
      {"a.lp", "NET", kNet, 0},
      {"a", "min", kNet, 0},
      {"lp", nullptr, kLp, 0},
      {"data", nullptr, "\n" + kLp, 0},
      {"data", nullptr, " " + kLp, 0},
      {"data", nullptr, "\\c\n" + kLp, 0},
      {"data", nullptr, kMps, 0},
      {"data", nullptr, "* c\n" + kMps, 0},
      {"data", nullptr, "x" + kLp, 1424},
      {"data", nullptr, "", 1424},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + (c.type != nullptr ? c.type : "-") + " " + c.text.substr(0, 4));
    write(c.file, c.text);
    TVKfreeprob(env_, &lp_);
    int status = 0;
    lp_ = TVKcreateprob(env_, &status, "start");
    EXPECT_EQ(read(c.file, c.type), c.code);
    EXPECT_EQ(TVKgetnumcols(env_, lp_), c.code == 0 ? 1 : 0);
    EXPECT_EQ(errors(), c.code == 0 ? "" : "TOVIK Error  1424: Invalid filetype.\n");
  }
}

TEST_F(Dispatch, ReadsCompressedFilesWhateverTheirNames) {
  compress("gzip", "a.lp.gz", kLp);
  compress("gzip", "a.mps.Z", kMps);
  compress("bzip2", "a.LP.BZ2", kLp);
  compress("bzip2", "data.bz2", kMps);
  for (const char* name : {"a.lp.gz", "a.mps.Z", "a.LP.BZ2", "data.bz2"}) {
    SCOPED_TRACE(name);
    ASSERT_EQ(read(name), 0) << errors();
    EXPECT_EQ(model(), kModel);
  }
  fs::rename(path("a.lp.gz"), path("-n.lp.gz"));
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  EXPECT_EQ(TVKreadcopyprob(env_, lp_, "-n.lp.gz", nullptr), 0) << errors();
  write("c'; touch harm; '.lp.gz", content("-n.lp.gz"));
  EXPECT_EQ(TVKreadcopyprob(env_, lp_, "c'; touch harm; '.lp.gz", nullptr), 0) << errors();
  EXPECT_FALSE(fs::exists("harm"));
  fs::current_path(before);
}

TEST_F(Dispatch, HalfAFileIsNeverLoaded) {
  write("a.lp", "max 2 y\nst\n s: y <= 3\nend\n");
  ASSERT_EQ(read("a.lp"), 0);
  const std::string before = model();
  std::string text = "min x\nst\n";
  for (int k = 0; k < 50000; ++k) text += " r" + std::to_string(k * 7919 % 50000) + ": x >= 1\n";
  text += "end\n";
  compress("gzip", "whole.lp.gz", text);
  compress("bzip2", "whole.lp.bz2", text);
  ASSERT_EQ(read("whole.lp.gz"), 0);
  EXPECT_EQ(TVKgetnumrows(env_, lp_), 50000);
  ASSERT_EQ(read("a.lp"), 0);
  const std::string gz = content("whole.lp.gz"), bz2 = content("whole.lp.bz2");
  write("cut.lp.gz", gz.substr(0, gz.size() / 2));
  write("tail.lp.gz", gz.substr(0, gz.size() - 3));  // all data, but not its check sum
  write("cut.lp.bz2", bz2.substr(0, bz2.size() / 2));
  write("plain.lp.gz", kLp);
  for (const char* name : {"cut.lp.gz", "tail.lp.gz", "cut.lp.bz2", "plain.lp.gz"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(read(name), 1423);
    EXPECT_TRUE(errors().ends_with(missing(name)));
    EXPECT_EQ(model(), before);
    warnings();
  }
}

TEST_F(Dispatch, SaysWhichFilesAreMissing) {
  EXPECT_EQ(read("a.lp"), 1423);
  EXPECT_EQ(errors(), missing("a.lp"));
  EXPECT_EQ(read("a"), 1423);
  EXPECT_EQ(errors(), missing("a"));
  EXPECT_EQ(read("a", "lp"), 1423);
  EXPECT_EQ(errors(), missing("a") + missing("a.lp"));
  EXPECT_EQ(read("a.qps"), 1423);
  EXPECT_EQ(errors(), missing("a.qps") + missing("a.qps.mps"));
  EXPECT_EQ(read("a.lp.gz"), 1423);
  EXPECT_EQ(errors(), missing("a.lp.gz"));
  fs::create_directory(path("folder"));
  EXPECT_EQ(read("folder", "lp"), 1423);
  errors();
  write("folder.lp", kLp);
  EXPECT_EQ(read("folder", "lp"), 0);
  EXPECT_EQ(TVKreadcopyprob(env_, lp_, "", nullptr), 1421);
  EXPECT_EQ(TVKreadcopyprob(env_, lp_, "", "lp"), 1421);
  EXPECT_EQ(TVKreadcopyprob(env_, lp_, nullptr, "lp"), 1004);
  EXPECT_EQ(TVKreadcopyprob(env_, nullptr, nullptr, "lp"), 1009);
  EXPECT_EQ(TVKreadcopyprob(nullptr, lp_, nullptr, "lp"), 1002);
}

TEST_F(Dispatch, ProgramsThatCannotRunAreReadErrors) {
  if (std::system("command -v xz > /dev/null") != 0) GTEST_SKIP() << "no xz";
  compress("xz", "a.lp.xz", kLp);
  const std::string search_path = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
  setenv("PATH", folder_.c_str(), 1);
  EXPECT_EQ(read("a.lp.xz"), 1423);
  EXPECT_EQ(errors(), missing("a.lp.xz"));
  setenv("PATH", search_path.c_str(), 1);
  EXPECT_EQ(read("a.lp.xz"), 0);
}

}  // namespace
