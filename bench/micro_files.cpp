/* Speed of model files as an application meets it: TVKwriteprob and TVKreadcopyprob of the largest PDS model
 * through files in the temporary folder (TMPDIR; best in memory). Bytes a second of processor time; `first`
 * is the first pass alone, in MB/s, on memory that the process has not touched before. The model lies in
 * ../shared/models beside the sources; without it the run is skipped. */
#include <benchmark/benchmark.h>

#include <tovik.h>

#include <ctime>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

class Session {
 public:
  Session() : env_(TVKopenTOVIK(&code_)) {}
  ~Session() { TVKcloseTOVIK(&env_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /* Into a new problem, which takes the place of the one before. */
  bool read(const std::string& file) {
    TVKfreeprob(env_, &lp_);
    lp_ = TVKcreateprob(env_, &code_, "bench");
    return TVKreadcopyprob(env_, lp_, file.c_str(), nullptr) == 0;
  }
  bool write(const std::string& file) { return TVKwriteprob(env_, lp_, file.c_str(), nullptr) == 0; }

 private:
  int code_ = 0;
  EnvHandle env_;
  ProbHandle lp_ = nullptr;
};

/* Writes the model to a file of that kind, then times `pass`. */
template <class Pass>
void time_passes(benchmark::State& state, const std::string& extension, Pass pass) {
  Session session;
  const std::string file = fs::temp_directory_path() / ("tovik-bench-files" + extension);
  if (!session.read(TOVIK_SOURCE_DIR "/../shared/models/lp/pds/pds-100.mps.bz2") || !session.write(file))
    return state.SkipWithError("model missing");
  const auto bytes = static_cast<double>(fs::file_size(file));
  double first = 0;
  for (auto _ : state) {
    const std::clock_t before = std::clock();
    if (!pass(session, file)) state.SkipWithError("pass failed");
    if (first == 0) first = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  }
  fs::remove(file);
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
  state.counters["first"] = bytes / 1e6 / first;
}

const bool entered = [] {
  for (const char* extension : {".lp", ".mps", ".sav"}) {
    const std::string name = extension + 1;
    const auto enter = [](const std::string& title, auto run) {
      benchmark::RegisterBenchmark(title.c_str(), run)->Unit(benchmark::kMillisecond)->Iterations(5);
    };
    enter("read/" + name, [=](benchmark::State& state) {
      time_passes(state, extension, [](Session& s, const std::string& file) { return s.read(file); });
    });
    enter("write/" + name, [=](benchmark::State& state) {
      time_passes(state, extension, [](Session& s, const std::string& file) { return s.write(file); });
    });
  }
  return true;
}();

}  // namespace
