/* Files made to hang the reader, to fill the memory, or to leave names that no file can hold. */
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <thread>

#include "support/file_fixture.h"

namespace {

using namespace std::string_literals;

class HostileFiles : public support::WithFiles {
 protected:
  void run(const std::string& command) const {
    ASSERT_EQ(std::system(("cd '" + folder_.string() + "' && " + command).c_str()), 0) << command;
  }
  static bool has(const char* program) {
    return std::system(("command -v "s + program + " > /dev/null").c_str()) == 0;
  }
};

constexpr char kModel[] = "minimize\n x + y\nsubject to\n c: x + 2 y >= 1\nend\n";

/* The rest of a compressed stream was decompressed to its end; here that end is missing, and nobody looks. */
TEST_F(HostileFiles, WhatIsBehindAnErrorIsNotDecompressed) {
  std::string noise;
  for (unsigned k = 0, x = 1; k < 400000; ++k)
    noise += static_cast<char>('a' + (x = x * 1103515245 + 12345) % 26);
  for (const char* program : {"gzip", "bzip2 -1"}) {
    put("whole.lp", "no problem at all\n" + noise);
    put("bad.net", "q\n" + noise);
    for (const char* name : {"whole.lp", "bad.net"}) {
      run(program + " -c "s + name + " > packed && head -c 100000 packed > short." + name);
    }
    EXPECT_EQ(read_file("short.whole.lp", "lp"), 1436) << program << errors();
    EXPECT_EQ(read_file("short.bad.net", "net"), 1537) << program << errors();
    put("good.lp", kModel + ("\\" + noise));
    run(program + " -c good.lp > packed && head -c 100000 packed > short.good.lp"s);
    EXPECT_EQ(read_file("short.good.lp", "lp"), 1423) << "what is behind a sound model must be whole";
  }
}

TEST_F(HostileFiles, CompressionIsToldByContentWithoutProgramsOrTheirVariables) {
  put("a.lp", kModel);
  run("gzip -c a.lp > g.lp && bzip2 -c a.lp > b.lp && cat g.lp g.lp > twice && cp b.lp wrong.lp.gz && cp "
      "a.lp plain.lp.gz");
  const std::string before = std::getenv("PATH");
  setenv("PATH", "/nowhere", 1);
  setenv("GZIP", "--stdout", 1);
  void (*const old)(int) = signal(SIGCHLD, SIG_IGN);
  for (const char* name : {"g.lp", "b.lp", "wrong.lp.gz"}) EXPECT_EQ(read_file(name), 0) << name << errors();
  EXPECT_EQ(read_file("plain.lp.gz"), 1423);
  EXPECT_NE(warnings().find("not compressed"), std::string::npos);
  EXPECT_EQ(TVKwriteprob(env_, lp_, path("out.lp.gz").c_str(), nullptr), 0) << errors();
  EXPECT_EQ(TVKwriteprob(env_, lp_, path("out.lp.bz2").c_str(), nullptr), 0) << errors();
  signal(SIGCHLD, old);
  setenv("PATH", before.c_str(), 1);
  unsetenv("GZIP");
  run("gzip -cd out.lp.gz > from_gzip && bzip2 -cd out.lp.bz2 > from_bzip2 && cmp from_gzip from_bzip2");
  for (const auto& [program, name] : {std::pair{"xz", "a.lp.xz"}, std::pair{"zstd", "a.lp.zst"}}) {
    if (!has(program)) continue;
    run(program + " -c a.lp > "s + name + " 2> /dev/null");
    EXPECT_EQ(read_file(name), 0) << name << errors();
    void (*const handler)(int) = signal(SIGCHLD, SIG_IGN);
    warnings();
    EXPECT_EQ(read_file(name), 1423) << name;
    EXPECT_NE(warnings().find("SIGCHLD"), std::string::npos) << "not damaged: nobody knows";
    signal(SIGCHLD, handler);
    errors();
    run("head -c 40 "s + name + " > short && mv short " + name);
    EXPECT_EQ(read_file(name, "lp"), 1423) << name;
    errors();
  }
}

TEST_F(HostileFiles, TheCauseIsToldBeforeTheError) {
  std::filesystem::create_directory(path("folder"));
  EXPECT_EQ(read_file("nothing.lp"), 1423);
  EXPECT_NE(warnings().find("no such file"), std::string::npos);
  EXPECT_EQ(read_file("folder", "lp"), 1423);
  EXPECT_NE(warnings().find("directory"), std::string::npos);
}

TEST_F(HostileFiles, DeeplyNestedElementsAreRefused) {
  ASSERT_EQ(read_text("a.lp", kModel), 0);
  std::string deep = "<?xml version=\"1.0\"?>\n";
  for (int k = 0; k < 100000; ++k) deep += "<a>";
  put("deep.sol", deep);
  errors();
  EXPECT_EQ(TVKreadcopysol(env_, lp_, path("deep.sol").c_str()), 1425);
  EXPECT_NE(errors().find("deep"), std::string::npos);
}

/* A name with a zero byte was cut by every text around it, and SAV files with it could not be read. */
TEST_F(HostileFiles, NamesWithZeroBytesAreRefused) {
  const std::string sound =
      "NAME          model\nROWS\n N  obj\n L  row 1\n"
      "COLUMNS\n    col 1     obj       1.0            row 1     1.0\nRHS\n    rhs       row 1     "
      "4.0\nENDATA\n";
  ASSERT_EQ(read_text("sound.mps", sound), 0) << errors();
  for (const char* word : {"row 1", "col 1", "model"}) {
    std::string text = sound;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
      text[at + 3] = '\0';
    EXPECT_NE(read_text("zero.mps", text), 0) << word;
  }
  ASSERT_EQ(read_file("sound.mps"), 0);
  ASSERT_EQ(TVKwriteprob(env_, lp_, path("again.sav").c_str(), nullptr), 0);
  EXPECT_EQ(read_file("again.sav"), 0) << errors();
}

/* Waiting for a writer that never comes, and reading what never ends. */
TEST_F(HostileFiles, ReadingEndsWhenTheFlagIsSet) {
  ASSERT_EQ(read_text("a.lp", kModel), 0);
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
  volatile int stop = 0;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  const std::function<int()> calls[] = {
      [&] { return read_file("fifo", "lp"); },
      [&] { return read_file("fifo"); },
      [&] { return TVKreadcopysol(env_, lp_, path("fifo").c_str()); },
      [&] { return TVKreadcopysol(env_, lp_, "/dev/zero"); },
      [&] { return TVKreadcopymipstarts(env_, lp_, "/dev/zero"); },
      [&] { return TVKreadcopyparam(env_, path("fifo").c_str()); },
      [&] { return TVKreadcopybase(env_, lp_, path("fifo").c_str()); },
  };
  for (const auto& call : calls) {
    stop = 0;
    std::thread clock([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      stop = 1;
    });
    const int code = call();
    clock.join();
    EXPECT_NE(code, 0) << &call - calls;
  }
  stop = 0;
  EXPECT_NE(read_file("/dev/zero", "net"), 0);
  EXPECT_NE(TVKreadcopyprob(env_, lp_, "/dev/zero", "net"), 0);
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
}

TEST_F(HostileFiles, AFifoWithAWriterIsRead) {
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
  std::thread writer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::ofstream to(path("fifo"));
    to << std::string(kModel, 10) << std::flush;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    to << (kModel + 10);
  });
  EXPECT_EQ(read_file("fifo", "lp"), 0) << errors();
  writer.join();
  EXPECT_EQ(TVKgetnumcols(env_, lp_), 2);
}

}  // namespace
