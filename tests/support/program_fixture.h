/* Runs the program `tovik` as its users do: exit status, standard output, standard error, files. */
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace support {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using Words = std::vector<std::string>;

inline std::string contents(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

struct Result {
  int exit = -1;
  std::string out, err;
  Json json() const { return Json::parse(out); }
  /* One object a line. */
  std::vector<Json> objects() const {
    std::vector<Json> all;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) all.push_back(Json::parse(line));
    return all;
  }
};

/* Runs the program in a folder of its own, which is also its TMPDIR. */
class Program : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(TOVIK_PROGRAM)) GTEST_SKIP() << "the program is not built";
    std::string name = (fs::temp_directory_path() / "tovik-test-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    fs::create_directory(folder_ / "tmp");
  }
  void TearDown() override {
    if (!folder_.empty()) fs::remove_all(folder_);
  }

  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return name;
  }

  /* `input` becomes standard input, read to its end. */
  Result run(const Words& words, const std::string& input = "") const {
    write("input", input);
    const pid_t child = start(words, open((folder_ / "input").c_str(), O_RDONLY | O_CLOEXEC));
    return finish(child);
  }

  /* Starts the program with `input` (closed here) as standard input. */
  pid_t start(const Words& words, int input) const {
    const pid_t child = fork();
    if (child == 0) {
      std::vector<char*> arguments = {const_cast<char*>(TOVIK_PROGRAM)};
      for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
      arguments.push_back(nullptr);
      const bool moved = chdir(folder_.c_str()) == 0;
      setenv("TMPDIR", (folder_ / "tmp").c_str(), 1);
      dup2(input, 0);
      dup2(open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
      dup2(open("err", O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
      if (!preload_.empty()) {
        setenv("LD_PRELOAD", preload_.c_str(), 1);
        setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
      }
      if (moved) execv(TOVIK_PROGRAM, arguments.data());
      _exit(127);
    }
    close(input);
    return child;
  }

  Result finish(pid_t child) const {
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contents(folder_ / "out"),
            contents(folder_ / "err")};
  }

  fs::path folder_;
  std::string preload_;      // a library loaded before ours
  std::string out_ = "out";  // where standard output goes
};

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace support
