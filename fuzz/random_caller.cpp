/* Random calls one after another: what they work on, what may be nested in them, and whether a failed one left its problem as
 * it was. Their arguments: random_arguments.cpp. */
#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "fuzz/random_calls.h"

namespace tovik::fuzz {

Caller* the_caller = nullptr;

namespace {

/* What may run long or leave no problem to compare, as its contract says. */
bool is_optimizer(const std::string& name) {
  static const char* const kNames[] = {"lpopt",  "mipopt", "populate", "primopt", "dualopt",     "siftopt",
                                       "baropt", "netopt", "presolve", "pivot",   "strongbranch"};
  return std::any_of(std::begin(kNames), std::end(kNames),
                     [&](const char* part) { return name.find(part) != std::string::npos; });
}

}  // namespace

Caller::Caller(std::uint64_t seed, std::string folder)
    : engine_(static_cast<std::mt19937::result_type>(seed)), folder_(std::move(folder)) {
  the_caller = this;
  file_ = std::fopen("/dev/null", "w");
  open_environment();
  open_environment();
  for (int number = 1001; number < 6000; ++number) {
    if (TVKgetparamtype(environments_[0], number, nullptr) == 0) parameters_.push_back(number);
  }
}

Caller::~Caller() {
  quiet_ = true;
  for (EnvHandle env : environments_) TVKcloseTOVIK(&env);
  std::fclose(file_);
}

void Caller::open_environment() {
  int status = 0;
  if (EnvHandle env = TVKopenTOVIK(&status); env != nullptr) environments_.push_back(env);
}

/* There is always something to work on, of a size that is soon solved. */
void Caller::refill() {
  quiet_ = true;
  flag_ = 0;
  const auto live = std::count_if(environments_.begin(), environments_.end(),
                                  [](EnvHandle env) { return TVKversion(env) != nullptr; });
  if (live < 2) open_environment();
  for (EnvHandle env : environments_) {
    if (TVKversion(env) == nullptr) continue;
    if (chance(30)) TVKsetdefaults(env);
  }
  for (const auto& [env, lp] : problems_) {
    ProbHandle large = lp;
    if (TVKgetnumcols(env, lp) > 40 || TVKgetnumrows(env, lp) > 40) TVKfreeprob(env, &large);
  }
  const auto gone = [](const auto& owned) { return TVKgetnumcols(owned.env, owned.handle) == 0; };
  if (problems_.size() > 8) std::erase_if(problems_, gone);
  if (environments_.size() > 4)
    std::erase_if(environments_, [this](EnvHandle env) { return TVKversion(env) == nullptr && chance(50); });
  for (EnvHandle env : environments_) {
    if (TVKversion(env) != nullptr && chance(40)) populate(env);
  }
  quiet_ = false;
}

/* Whatever the parameters have become: what runs without a limit may run for ever. */
void Caller::limit_runs() {
  const bool quiet = std::exchange(quiet_, true);
  for (EnvHandle env : environments_) {
    TVKsetintparam(env, TVK_PARAM_ITLIM, 2000);
    TVKsetintparam(env, TVK_PARAM_NODELIM, 200);
    TVKsetdblparam(env, TVK_PARAM_TILIM, 2);
  }
  quiet_ = quiet;
}

/* A sound problem with something of everything, solved or presolved or neither, and files of it. */
void Caller::populate(EnvHandle env) {
  constexpr int kRows = 5, kColumns = 6;
  int status = 0;
  ProbHandle lp = TVKcreateprob(env, &status, "sound");
  if (lp == nullptr) return;
  std::vector<double> cost, upper(kColumns, 9.0), rhs;
  std::vector<int> row, column;
  std::vector<double> value;
  for (int j = 0; j < kColumns; ++j) cost.push_back(below(9) - 2);
  for (int i = 0; i < kRows; ++i) rhs.push_back(10 + below(20));
  TVKnewcols(env, lp, kColumns, cost.data(), nullptr, upper.data(), nullptr, nullptr);
  TVKnewrows(env, lp, kRows, rhs.data(), chance(50) ? "LLGEL" : "LLLLL", nullptr, nullptr);
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < kColumns; ++j) {
      if (!chance(60)) continue;
      row.push_back(i), column.push_back(j), value.push_back(1 + below(4));
    }
  }
  if (row.size() > 2)
    TVKchgcoeflist(env, lp, static_cast<int>(row.size()), row.data(), column.data(), value.data());
  const int first = 0, second = 1;
  if (chance(70)) {
    const char *x1 = "x1", *c1 = "c1";
    TVKchgcolname(env, lp, 1, &first, const_cast<char**>(&x1));
    TVKchgrowname(env, lp, 1, &first, const_cast<char**>(&c1));
  }
  if (chance(40)) {
    const int members[] = {0, 1, 2};
    const double weights[] = {1, 2, 3};
    TVKcopyctype(env, lp, "CIBCIC");
    TVKaddsos(env, lp, 1, 3, "1", &first, members, weights, nullptr);
    TVKaddusercuts(env, lp, 1, 2, rhs.data(), "L", &first, members, weights, nullptr);
    TVKaddmipstarts(env, lp, 1, 3, &first, members, weights, nullptr, nullptr);
    TVKcopyorder(env, lp, 1, &second, &second, nullptr);
    TVKEaddindconstr(env, lp, 2, 0, 2, 4, 'L', members, weights, nullptr);
  } else if (chance(70)) {
    if (chance(60)) TVKlpopt(env, lp);
    if (chance(50)) TVKpresolve(env, lp, 0);
  }
  if (chance(10))
    TVKaddqconstr(env, lp, 1, 1, 3, 'L', &first, rhs.data(), &first, &second, rhs.data(), nullptr);
  for (const char* name : {"a.lp", "a.mps", "a.sav", "b.lp.gz"})
    TVKwriteprob(env, lp, (folder_ + '/' + name).c_str(), nullptr);
  TVKmbasewrite(env, lp, (folder_ + "/a.bas").c_str());
  TVKsolwrite(env, lp, (folder_ + "/a.sol").c_str());
  TVKwriterestart(env, lp, (folder_ + "/a.restart").c_str());
  TVKwritemipstarts(env, lp, (folder_ + "/a.mst").c_str(), 0, 0);
  made(env, lp);
  NetProbHandle net = TVKNETcreateprob(env, &status, "sound");
  const int tail[] = {0, 1, 0}, head[] = {1, 2, 2};
  const double supply[] = {2, 0, -2};
  TVKNETaddnodes(env, net, 3, supply, nullptr);
  TVKNETaddarcs(env, net, 3, tail, head, cost.data(), nullptr, nullptr, nullptr);
  made(env, net);
}

/* A mixed-integer search in which all may take part that can. */
void Caller::search_with_callbacks() {
  EnvHandle const env = environment();
  ProbHandle lp = changing_problem();
  quiet_ = true;
  for (int k = 0; k < 8 && TVKgetprobtype(env, lp) != TVK_PROBTYPE_MILP; ++k) lp = changing_problem();
  TVKsetintparam(env, TVK_PARAM_MIPCBREDLP, below(2));
  TVKsetintparam(env, TVK_PARAM_HEURFREQ, below(2) - 1);
  TVKsetintparam(env, TVK_PARAM_CUTPASS, below(2) - 1);
  quiet_ = false;
  trace_.push_back("a search with callbacks");
  TVKsetmipcallbackfunc(env, function(60), this);
  TVKsetinfocallbackfunc(env, function(60), this);
  TVKsetcutcallbackfunc(env, function(40), this);
  TVKsetbranchcallbackfunc(env, function(40), this);
  TVKsetbranchnosolncallbackfunc(env, function(40), this);
  TVKsetnodecallbackfunc(env, function(60), this);
  TVKsetheuristiccallbackfunc(env, function(60), this);
  TVKsetincumbentcallbackfunc(env, function(60), this);
  TVKsetsolvecallbackfunc(env, function(70), this);
  TVKsetdeletenodecallbackfunc(env, function(60), this);
  for (int k = below(2); k >= 0; --k) {
    limit_runs();  // anew: a callback may have changed the parameters
    TVKmipopt(env, lp);
  }
}

/* In a callback with a context the routines that want one come more often. */
const RandomCall& Caller::any_call() {
  const auto& all = random_calls();
  const auto draw = [&]() -> const RandomCall& {
    return all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
  };
  const RandomCall* call = &draw();
  for (int k = 0; k < 12 && callback_.cbdata != nullptr; ++k) {
    const std::string name = call->name;
    if (name.find("callback") != std::string::npos && name.find("func") == std::string::npos) break;
    call = &draw();
  }
  return *call;
}

bool Caller::step() {
  ++calls_;
  if (depth_ == 0 && calls_ >= next_refill_) {
    refill();
    next_refill_ = calls_ + 64;
  }
  if (depth_ == 0 && calls_ % 50 == 7) search_with_callbacks();
  const RandomCall& call = any_call();
  const std::vector<void*> outer = std::exchange(arrays_, {});
  const auto lp = lp_;
  const auto net = net_;
  EnvHandle const env = env_;
  lp_ = {}, net_ = {}, env_ = nullptr;
  changes_ = false;
  trace_.push_back(std::string(static_cast<std::size_t>(2 * depth_), ' ') + call.name);
  while (trace_.size() > 60) trace_.erase(trace_.begin());
  /* The problem is drawn by the call itself: a copy of the generator draws it first, to look at it before. */
  bool holds = true;
  std::string before;
  const bool compares = depth_ == 0 && chance(40);
  if (compares) {
    const std::mt19937 here = engine_;
    environment();
    changing_problem();
    before = snapshot();
    engine_ = here;
    lp_ = {};
    changes_ = false;
  }
  const std::uint64_t nested_before = nested_calls_;
  code_ = 0;
  if (is_optimizer(call.name)) limit_runs();
  call.call(*this);
  succeeded_ += code_ == 0;
  if (compares && changes_ && code_ > 0 && nested_calls_ == nested_before && !is_optimizer(call.name))
    holds = leaves_problem(before);
  for (void* memory : arrays_) std::free(memory);
  arrays_ = outer;
  lp_ = lp;
  net_ = net;
  env_ = env;
  return holds;
}

int Caller::nested() {
  if (quiet_ || depth_ >= 2 || ++deliveries_ % 4 != 0) return 0;
  ++depth_;
  const int code = code_;
  const bool changes = changes_;
  for (int k = below(3); k >= 0; --k) {
    ++nested_calls_;
    step();
  }
  code_ = code;
  changes_ = changes;
  --depth_;
  return below(200);
}

int Caller::nested(ConstEnvHandle env, void* cbdata, int wherefrom) {
  const Callback outer = std::exchange(callback_, {env, cbdata, wherefrom});
  const int code = nested();
  callback_ = outer;
  return code;
}

std::string Caller::trace() const {
  std::string text;
  for (const std::string& line : trace_) text += line + '\n';
  return text;
}

/* ---- what a failed call leaves ---- */

std::string Caller::snapshot() {
  if (lp_.handle == nullptr) return {};
  const bool quiet = std::exchange(quiet_, true);
  const std::string name = folder_ + "/snapshot";
  std::string bytes;
  if (TVKwriterestart(env_, lp_.handle, name.c_str()) == 0) {
    std::ostringstream text;
    text << std::ifstream(name, std::ios::binary).rdbuf();
    bytes = text.str();
  }
  quiet_ = quiet;
  return bytes;
}

bool Caller::leaves_problem(const std::string& before) {
  if (before.empty()) return true;
  const std::string after = snapshot();
  return after.empty() || after == before;
}

}  // namespace tovik::fuzz
