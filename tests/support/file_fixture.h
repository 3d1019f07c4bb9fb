/* An open environment, an empty problem and a folder of its own for files that a test writes and reads. */
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "support/describe_problem.h"
#include "support/environment_fixture.h"

namespace support {

class WithFiles : public WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &results_text_, keep_text), 0);
    const std::string pattern = std::filesystem::temp_directory_path() / "tovik-test-XXXXXX";
    std::string name = pattern;
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    int status = -1;
    lp_ = TVKcreateprob(env_, &status, "start");
    ASSERT_EQ(status, 0);
  }
  void TearDown() override {
    TVKfreeprob(env_, &lp_);
    std::filesystem::remove_all(folder_);
    WithEnvironment::TearDown();
  }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void put(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }
  std::string content(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(path(name), std::ios::binary).rdbuf();
    return text.str();
  }
  int read_file(const std::string& name, const char* type = nullptr) {
    return TVKreadcopyprob(env_, lp_, path(name).c_str(), type);
  }
  /* Reads the text as a file of that name. */
  int read_text(const std::string& name, const std::string& text) {
    put(name, text);
    return read_file(name);
  }
  std::string model() { return describe(env_, lp_); }
  /* Reads the broken files of a corpus: each gives the code that its name begins with and one line that says so,
   * and leaves the problem as it is. Returns how many there are. */
  int check_broken_files(const std::string& corpus, const char* type) {
    const std::string before = model();
    int files = 0;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(corpus)) {
      const std::string name = entry.path().filename();
      SCOPED_TRACE(name);
      const int code = std::atoi(name.c_str());
      if (code == 0) continue;  // a sound file: a seed for fuzzing
      ++files;
      EXPECT_EQ(TVKreadcopyprob(env_, lp_, entry.path().c_str(), type), code);
      const std::string line = errors();
      EXPECT_NE(line.find("TOVIK Error  " + std::to_string(code) + ": "), std::string::npos) << line;
      EXPECT_EQ(line.find('%'), std::string::npos) << line;
      EXPECT_EQ(model(), before);
      warnings();
    }
    return files;
  }
  /* What was written to the results channel since the last call. */
  std::string results() { return std::exchange(results_text_, {}); }

  std::filesystem::path folder_;
  ProbHandle lp_ = nullptr;

 private:
  std::string results_text_;
};

}  // namespace support
