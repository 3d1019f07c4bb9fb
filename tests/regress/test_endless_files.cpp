/* Files that look right and never end: a reader keeps no more than the problem can hold, and stops when it is told to. And
 * pipes, which give their bytes once. */
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

#include "support/counted_memory.h"
#include "support/file_fixture.h"

namespace {

using namespace std::string_literals;

constexpr char kModel[] = "minimize\n x + 3 y\nsubject to\n c: x + 2 y >= 1\nbounds\n x <= 4\n y <= 4\n";
const std::string kXml = "<?xml version = \"1.0\" standalone=\"yes\"?>\n";
const std::string kValue = " <variable name=\"x\" index=\"0\" value=\"1\"/>\n";
const std::string kSolution = "<TOVIKSolution><variables>\n" + kValue + "</variables></TOVIKSolution>\n";
const std::string kParameters = "TOVIK Parameter File Version 12.2.0.0\n";

/* Text that goes on and on, '#' in it being the number of the repetition. */
struct Endless {
  std::string start, body;
  std::string piece(std::size_t size, long& k) const {
    std::string text;
    while (text.size() < size) {
      for (const char c : body) {
        if (c == '#') {
          text += std::to_string(k);
        } else {
          text += c;
        }
      }
      ++k;
    }
    return text;
  }
};

class EndlessFiles : public support::WithFiles {
 protected:
  void SetUp() override {
    WithFiles::SetUp();
    int status = -1;
    mip_ = TVKcreateprob(env_, &status, "mip");
    net_ = TVKNETcreateprob(env_, &status, "net");
    put("mip.lp", kModel + "general\n x y\nend\n"s);
    ASSERT_EQ(TVKreadcopyprob(env_, mip_, path("mip.lp").c_str(), nullptr), 0);
    ASSERT_EQ(read_text("a.lp", kModel + "end\n"s), 0);
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(symlink(path("fifo").c_str(), path("link").c_str()), 0);
  }
  void TearDown() override {
    TVKfreeprob(env_, &mip_);
    TVKNETfreeprob(env_, &net_);
    WithFiles::TearDown();
  }

  struct Case {
    const char* name;
    std::function<int(const char*)> read;
    Endless file;
    int code;  // when the file ends behind many pieces
  };
  std::vector<Case> cases() const;

  /* Writes into the pipe, as often as somebody reads it, until it is told that nobody comes any more. */
  class Feeder {
   public:
    Feeder(std::string pipe, Endless file)
        : pipe_(std::move(pipe)), file_(std::move(file)), thread_([this] { run(); }) {}
    ~Feeder() {
      done_ = true;
      while (!ended_) {
        close(open(pipe_.c_str(), O_RDONLY | O_NONBLOCK));  // lets an open for writing end, and a write
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      thread_.join();
    }
    Feeder(const Feeder&) = delete;
    Feeder& operator=(const Feeder&) = delete;

   private:
    void run() {
      sigset_t signals;
      sigemptyset(&signals);
      sigaddset(&signals, SIGPIPE);
      pthread_sigmask(SIG_BLOCK, &signals, nullptr);
      while (!done_) {
        const int to = open(pipe_.c_str(), O_WRONLY);
        long k = 0;
        for (std::string text = file_.start; !done_; text = file_.piece(4096, k)) {
          if (write(to, text.data(), text.size()) < 0) break;
        }
        close(to);
      }
      ended_ = true;
    }
    const std::string pipe_;
    const Endless file_;
    std::atomic<bool> done_{false}, ended_{false};
    std::thread thread_;
  };

  ProbHandle mip_ = nullptr;
  NetProbHandle net_ = nullptr;
};

std::vector<EndlessFiles::Case> EndlessFiles::cases() const {
  const auto of = [this](int (*routine)(ConstEnvHandle, ProbHandle, const char*), ProbHandle lp) {
    return [env = env_, routine, lp](const char* name) { return routine(env, lp, name); };
  };
  const auto solution = of(TVKreadcopysol, lp_), starts = of(TVKreadcopymipstarts, mip_);
  const auto basis = of(TVKreadcopybase, lp_), values = of(TVKreadcopyvec, lp_);
  const auto order = of(TVKreadcopyorder, mip_);
  const auto parameters = [this](const char* name) { return TVKreadcopyparam(env_, name); };
  const auto network = [this](const char* name) { return TVKNETreadcopyprob(env_, net_, name); };
  const std::string solutions = kXml + "<TOVIKSolutions>", variables = kXml + "<TOVIKSolution><variables>";
  return {
      {"values", solution, {variables, kValue}, 1425},
      {"unknown values", solution, {variables, " <variable name=\"z#\" value=\"1\"/>\n"}, 1425},
      {"solutions", solution, {solutions, kSolution}, 1425},
      {"empty starts", starts, {solutions, "<TOVIKSolution/>\n"}, 1425},
      {"names of elements", solution, {variables, "<a#/>\n"}, 1425},
      {"names of attributes", solution, {variables, "<a b#=\"1\"/>\n"}, 1425},
      {"an attribute", solution, {variables + "<a b=\"", "x # "}, 1425},
      {"a comment", solution, {variables + "<!--", "x # "}, 1425},
      {"declarations", solution, {"<!DOCTYPE a [\n", "<!ENTITY a# \"b\">\n"}, 1425},
      {"text", solution, {variables, "x # "}, 1425},
      {"a start as text", starts, {"NAME a\n", " x #\n"}, 0},
      {"a long word", starts, {"NAME", "x#"}, 1465},
      {"a basis", basis, {"NAME a\n", " LL x\n"}, 0},
      {"an unknown basis", basis, {"NAME a\n", " LL z#\n"}, 0},
      {"a vector", values, {"NAME a\n", " X x #\n"}, 0},
      {"an order", order, {"NAME a\n", " UP z# 1\n"}, 0},
      {"settings", parameters, {kParameters, "TVK_PARAM_ITLIM #\n"}, 0},
      {"settings of text", parameters, {kParameters, "TVK_PARAM_WORKDIR \"#\"\n"}, 0},
      {"one node", network, {"p min 9000000 1\n", "n 1 0\n"}, 1530},
      {"names of one node", network, {"", "c @node 7 name#\n"}, 1538},
      {"names of two nodes", network, {"", "c @node 7 name#\nc @node 6 name#\n"}, 1538},
      {"names of no arc", network, {"p min 2 1\n", "c @arc name#\n"}, 1538},
  };
}

TEST_F(EndlessFiles, MemoryIsBoundedByTheProblem) {
  constexpr std::size_t kMost = 11000000;  // the parser of XML has 8 MiB
  for (const Case& c : cases()) {
    long k = 0;
    put("long", c.file.start + c.file.piece(9000000, k));
    int code = -1;
    EXPECT_LT(support::most_memory_of([&] { code = c.read(path("long").c_str()); }), kMost) << c.name;
    EXPECT_EQ(code, c.code) << c.name << ": " << errors();
    errors();
    warnings();
  }
  int limit = 0;
  ASSERT_EQ(TVKsetdefaults(env_), 0);
  put("last.prm", kParameters + "TVK_PARAM_ITLIM 7\nTVK_PARAM_SIMDISPLAY 2\nTVK_PARAM_ITLIM 5\n");
  ASSERT_EQ(TVKreadcopyparam(env_, path("last.prm").c_str()), 0);
  ASSERT_EQ(TVKgetintparam(env_, TVK_PARAM_ITLIM, &limit), 0);
  EXPECT_EQ(limit, 5) << "of several settings the last one counts";
}

/* Each start took memory for all columns, whatever it said. */
TEST_F(EndlessFiles, StartsTakeWhatTheySay) {
  constexpr int kColumns = 200000, kStarts = 2000;
  ProbHandle wide = nullptr;
  int status = -1;
  wide = TVKcreateprob(env_, &status, "wide");
  const std::string types(kColumns, 'B');
  ASSERT_EQ(TVKnewcols(env_, wide, kColumns, nullptr, nullptr, nullptr, types.c_str(), nullptr), 0);
  std::string text = kXml + "<TOVIKSolutions>\n";
  for (int k = 0; k < kStarts; ++k) {
    text += "<TOVIKSolution><header solutionName=\"s" + std::to_string(k) +
            "\"/><variables><variable index=\"" + std::to_string(kColumns - 1 - k) +
            "\" value=\"1\"/><variable index=\"3\" value=\"" + std::to_string(k % 2) +
            "\"/></variables></TOVIKSolution>\n<TOVIKSolution/>\n";
  }
  put("many.mst", text + "</TOVIKSolutions>\n");
  EXPECT_LT(support::most_memory_of([&] {
              EXPECT_EQ(TVKreadcopymipstarts(env_, wide, path("many.mst").c_str()), 0) << errors();
            }),
            std::size_t{20000000});
  ASSERT_EQ(TVKgetnummipstarts(env_, wide), kStarts);
  for (const int k : {0, 7, kStarts - 1}) {
    int begin = -1, count = 0, surplus = 0, columns[2] = {-1, -1};
    double values[2] = {-1, -1};
    ASSERT_EQ(TVKgetmipstarts(env_, wide, &count, &begin, columns, values, nullptr, 2, &surplus, k, k), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(columns[0], 3);
    EXPECT_EQ(values[0], k % 2);
    EXPECT_EQ(columns[1], kColumns - 1 - k);
    EXPECT_EQ(values[1], 1);
  }
  EXPECT_EQ(TVKfreeprob(env_, &wide), 0);
}

TEST_F(EndlessFiles, ReadingFromAPipeEndsWhenTheFlagIsSet) {
  volatile int stop = 0;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  bool link = false;
  for (const Case& c : cases()) {
    stop = 0;
    const Feeder feeder(path("fifo"), c.file);
    std::thread clock([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(40));
      stop = 1;
    });
    const int code = c.read(path((link = !link) ? "link" : "fifo").c_str());
    clock.join();
    EXPECT_TRUE(code == 1423 || code == c.code) << c.name << ' ' << code;
    EXPECT_NE(code, 0) << c.name;
    warnings();
  }
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
}

/* The first look at a file whose name tells nothing, and at every solution file, took the first bytes of a pipe away. */
TEST_F(EndlessFiles, APipeIsReadLikeAFile) {
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  ASSERT_EQ(TVKsolwrite(env_, lp_, path("a.sol").c_str()), 0);
  const auto through_pipe = [&](const std::string& name, auto&& read) {
    std::thread writer([&] { std::ofstream(path("fifo"), std::ios::binary) << content(name); });
    const int code = read(path("fifo").c_str());
    writer.join();
    return code;
  };
  double x[2] = {-1, -1};
  EXPECT_EQ(through_pipe("a.sol",
                         [&](const char* pipe) {
                           return TVKreadsolution(env_, lp_, pipe, 0, nullptr, nullptr, nullptr, nullptr, x,
                                                  nullptr, nullptr, nullptr, nullptr, nullptr);
                         }),
            0)
      << errors();
  EXPECT_EQ(x[0], 1);
  EXPECT_EQ(x[1], 0);
  for (const char* name : {"b.lp", "b.mps", "b.sav", "b.lp.gz", "b.sav.bz2"}) {
    ASSERT_EQ(TVKwriteprob(env_, lp_, path(name).c_str(), nullptr), 0);
    ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    const auto read = [&](const char* pipe) { return TVKreadcopyprob(env_, lp_, pipe, nullptr); };
    EXPECT_EQ(through_pipe(name, read), 0) << name << errors();
    EXPECT_EQ(TVKgetnumcols(env_, lp_), 2) << name;
  }
}

}  // namespace
