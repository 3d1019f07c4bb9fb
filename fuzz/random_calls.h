/* Random calls of everything that the library exports: valid, half-valid and senseless arguments, arrays of exactly the
 * size that the contract asks for, stale and foreign handles, and calls from inside message functions and callbacks.
 * Meant for the address and undefined-behaviour sanitizers, which judge; what is checked here besides is that a routine
 * that fails leaves the problem as it was, told by restart files before and after.
 *
 *   random_calls [--seconds S] [--seed N] [--calls N]
 *
 * A seed gives the same calls again. The last calls are printed when the process dies, or hangs in one. */
#pragma once

#include <tovik.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace tovik::fuzz {

class Caller;
struct RandomCall {
  const char* name;
  void (*call)(Caller&);
};
const std::vector<RandomCall>& random_calls();

class Caller {
 public:
  /* Becomes a function of the type that a routine asks for, or none; or the place where one is to be put. */
  template <class R, class... A>
  using FunctionPointer = R (*)(A...);
  struct Function {
    bool is_none;
    template <class R, class... A>
    operator FunctionPointer<R, A...>() const {
      return is_none ? nullptr : random_function<R, A...>;
    }
  };
  struct PlaceOfFunction {
    Caller& caller;
    template <class R, class... A>
    operator FunctionPointer<R, A...>*() const {
      return caller.out<FunctionPointer<R, A...>>(1);
    }
  };
  static constexpr std::size_t kText = TVK_STR_PARAM_MAX;

  Caller(std::uint64_t seed, std::string folder);
  ~Caller();
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  /* One call; false when it broke a promise. */
  bool step();
  /* From inside a callback: now and then some calls more. */
  int nested();
  /* The same from a callback with a context, which the calls then use. */
  int nested(ConstEnvHandle env, void* cbdata, int wherefrom);
  int answer() { return below(5) - 1; }
  std::string trace() const;
  std::uint64_t succeeded() const { return succeeded_; }

  /* ---- arguments ---- */
  EnvHandle environment();
  EnvHandle closed_environment();  // null most times
  ProbHandle problem();
  ProbHandle changing_problem();  // remembered: the one that the call may change
  ProbHandle freed_problem();
  NetProbHandle network();
  ChannelHandle channel();
  template <class T>
  T* or_null(T* pointer) {
    return chance(4) ? nullptr : pointer;
  }
  int integer(const std::string& name, int items);
  int begin_of(int items);
  int end_of(int items);
  double real();
  const char* text(const std::string& name);
  char* plain_text() { return zero_terminated("text"); }
  const char* letters(const std::string& name, std::size_t count);
  const int* ints(const std::string& name, std::size_t count, int bound);
  const int* ints(const std::string& name, std::size_t count, std::size_t bound) {
    return ints(name, count, static_cast<int>(bound));
  }
  const double* reals(std::size_t count) { return changing_reals(count); }
  double* changing_reals(std::size_t count);
  int* marks(std::size_t count);
  char** names(std::size_t count);
  template <class T>
  T* out(std::size_t count) {
    return chance(4) ? nullptr : array<T>(count);
  }
  template <class T>
  T* out(int count) {
    return out<T>(static_cast<std::size_t>(count));
  }
  FILE* file() { return chance(20) ? nullptr : file_; }
  void* anything() { return chance(50) ? nullptr : this; }
  volatile int* terminate_flag();
  void* callback_data() { return chance(80) ? callback_.cbdata : anything(); }
  Function function(int percent_none) { return {chance(percent_none)}; }
  PlaceOfFunction place_of_function() { return {*this}; }

  /* ---- sizes ---- */
  std::size_t size(int count) const {
    return count > 0 && count < 1000000 ? static_cast<std::size_t>(count) : 0;
  }
  std::size_t extent(int begin, int end) const {
    return begin >= 0 && begin <= end && end < 100000 ? static_cast<std::size_t>(end - begin + 1) : 0;
  }
  /* Where a matrix with beginnings and counts ends: behind its last vector. */
  std::size_t counted_end(const int* begin, const int* count, int vectors) const;
  int small(const char*) { return below(3); }
  int columns(), rows(), nodes(), arcs(), sets(), indicators(), user_cuts(), lazy_constraints(), starts(),
      quadratic_rows(), pool_members(), filters();
  int reduced_columns(), reduced_rows();

  /* ---- results ---- */
  void returned(int code) { code_ = code; }
  void made(EnvHandle env) { remember(environments_, env, 6); }
  void made(ConstEnvHandle, EnvHandle child) { remember(environments_, child, 6); }
  void made(ConstEnvHandle env, ProbHandle lp);
  void made(ConstEnvHandle env, NetProbHandle net);
  void made(ConstEnvHandle, ChannelHandle channel) { remember(channels_, channel, 8); }
  void borrowed(ConstEnvHandle env, const ConstProbHandle* lp);

 private:
  struct Callback {
    ConstEnvHandle env = nullptr;
    void* cbdata = nullptr;
    int wherefrom = 0;
  };
  template <class R, class... A>
  static R random_function(A... arguments);
  const RandomCall& any_call();

  template <class Handle>
  struct Owned {
    ConstEnvHandle env;
    Handle handle;
  };
  int below(int n) { return n <= 1 ? 0 : static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  template <class T>
  T* array(std::size_t count) {
    void* const memory = std::malloc(count * sizeof(T));
    arrays_.push_back(memory);
    return static_cast<T*>(memory);
  }
  char* zero_terminated(const std::string& text);
  template <class Handle>
  void remember(std::vector<Handle>& pool, Handle handle, std::size_t most) {
    if (handle == Handle{}) return;
    if (pool.size() < most) {
      pool.push_back(handle);
    } else {
      pool[engine_() % pool.size()] = handle;
    }
  }
  /* A handle of the pool, alive or not, or a senseless one. */
  template <class Handle>
  Handle senseless();
  int extreme();
  int count_of(int (*count)(ConstEnvHandle, ConstProbHandle));
  void open_environment();
  void refill();
  void limit_runs();
  void populate(EnvHandle env);
  void search_with_callbacks();
  std::string snapshot();
  bool leaves_problem(const std::string& before);

  std::mt19937 engine_;
  std::string folder_;
  FILE* file_ = nullptr;
  std::vector<void*> arrays_;
  std::vector<EnvHandle> environments_;
  std::vector<Owned<ProbHandle>> problems_;
  std::vector<Owned<NetProbHandle>> networks_;
  std::vector<ChannelHandle> channels_;
  std::vector<int> parameters_;
  std::vector<std::string> trace_;
  Owned<ProbHandle> lp_{};  // of the call that is being drawn
  Owned<NetProbHandle> net_{};
  EnvHandle env_ = nullptr;
  volatile int flag_ = 0;
  Callback callback_;  // that is running
  int code_ = 0, depth_ = 0, deliveries_ = 0;
  std::uint64_t calls_ = 0, nested_calls_ = 0, succeeded_ = 0;
  std::uint64_t next_refill_ = 1;  // in calls
  bool changes_ = false, quiet_ = false;
};

extern Caller* the_caller;

/* Calls what may be called from a callback, and writes something into each int that it may answer with. */
template <class R, class... A>
R Caller::random_function(A... arguments) {
  int code = 0;
  if constexpr (sizeof...(A) > 3) {
    const auto all = std::make_tuple(arguments...);
    if constexpr (std::is_same_v<std::decay_t<decltype(std::get<1>(all))>, void*>) {
      code = the_caller->nested(std::get<0>(all), std::get<1>(all), std::get<2>(all));
    } else {
      code = the_caller->nested();
    }
    const auto answer = [](auto argument) {
      if constexpr (std::is_same_v<decltype(argument), int*>) {
        if (const int value = the_caller->answer(); value >= 0) *argument = value;
      }
    };
    (answer(arguments), ...);
  } else {
    code = the_caller->nested();
  }
  if constexpr (!std::is_void_v<R>) return code == 1;
}

}  // namespace tovik::fuzz
