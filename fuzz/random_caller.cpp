/* Where the arguments of random calls come from. */
#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>
#include <utility>

#include "fuzz/random_calls.h"

namespace tovik::fuzz {

Caller* the_caller = nullptr;

namespace {

extern "C" int random_lp_callback(ConstEnvHandle, void*, int, void*) {
  return the_caller->nested() == 1;
}
extern "C" void random_profile_callback(ConstEnvHandle, int, void*) {
  the_caller->nested();
}
extern "C" void random_message(void*, const char*) {
  the_caller->nested();
}

/* What may run long or leave no problem to compare, as its contract says. */
bool is_optimizer(const std::string& name) {
  static const char* const kNames[] = {"lpopt",    "primopt", "dualopt",     "siftopt",
                                       "presolve", "pivot",   "strongbranch"};
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

bool Caller::step() {
  if (++calls_ % 64 == 0) refill();
  const auto& all = random_calls();
  const RandomCall& call = all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
  const std::vector<void*> outer = std::exchange(arrays_, {});
  const auto lp = lp_;
  const auto net = net_;
  EnvHandle const env = env_;
  lp_ = {}, net_ = {}, env_ = nullptr;
  changes_ = false;
  trace_.push_back(std::string(static_cast<std::size_t>(2 * depth_), ' ') + call.name);
  if (trace_.size() > 60) trace_.erase(trace_.begin());
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

std::string Caller::trace() const {
  std::string text;
  for (const std::string& line : trace_) text += line + '\n';
  return text;
}

/* ---- handles ---- */

template <class Handle>
Handle Caller::senseless() {
  const auto some = [this](auto pointer) { return reinterpret_cast<std::uintptr_t>(pointer); };
  std::uintptr_t value = 0;
  switch (below(6)) {
    case 0:
      break;
    case 1:
      value = some(&flag_);
      break;
    case 2:
      value = some(environments_[0]);
      break;
    case 3:
      value = problems_.empty() ? 8 : some(problems_.front().handle);
      break;
    case 4:
      value = channels_.empty() ? 1 : some(channels_.front());
      break;
    default:
      value = some(environments_[0]) ^ (std::uintptr_t{1} << below(64));
  }
  return reinterpret_cast<Handle>(value);
}

EnvHandle Caller::environment() {
  if (chance(2)) return env_ = senseless<EnvHandle>();
  env_ = environments_[engine_() % environments_.size()];
  for (int k = 0; k < 8 && TVKversion(env_) == nullptr && chance(90); ++k)
    env_ = environments_[engine_() % environments_.size()];
  return env_;
}

EnvHandle Caller::closed_environment() {
  const EnvHandle env = environment();
  return chance(85) ? nullptr : env;
}

/* One of the environment that the call works in, most times. */
ProbHandle Caller::problem() {
  lp_ = {env_, senseless<ProbHandle>()};
  if (chance(2)) return lp_.handle;
  const bool quiet = std::exchange(quiet_, true);
  std::vector<Owned<ProbHandle>> own;
  for (const auto& lp : problems_) {
    if (TVKgetprobtype(env_, lp.handle) >= 0 || chance(2)) own.push_back(lp);
  }
  quiet_ = quiet;
  if (own.empty()) return lp_.handle;
  lp_ = own[engine_() % own.size()];
  return lp_.handle;
}

ProbHandle Caller::changing_problem() {
  changes_ = true;
  return problem();
}

ProbHandle Caller::freed_problem() {
  return problems_.size() < 4 && chance(80) ? nullptr : problem();
}

NetProbHandle Caller::network() {
  net_ = {env_, senseless<NetProbHandle>()};
  if (chance(3)) return net_.handle;
  const bool quiet = std::exchange(quiet_, true);
  for (int k = 0; k < 8 && !networks_.empty(); ++k) {
    net_ = networks_[engine_() % networks_.size()];
    if (TVKNETgetobjsen(env_, net_.handle) != 0) break;
  }
  quiet_ = quiet;
  return net_.handle;
}

ChannelHandle Caller::channel() {
  if (chance(3)) return senseless<ChannelHandle>();
  ChannelHandle standard[4] = {};
  if (chance(50) && TVKgetchannels(env_, standard, standard + 1, standard + 2, standard + 3) == 0)
    return standard[below(4)];
  return channels_.empty() ? nullptr : channels_[engine_() % channels_.size()];
}

void Caller::made(ConstEnvHandle env, ProbHandle lp) {
  if (lp == nullptr) return;
  if (problems_.size() < 12) {
    problems_.push_back({env, lp});
    return;
  }
  const auto at = engine_() % problems_.size();
  quiet_ = true;
  TVKfreeprob(problems_[at].env, &problems_[at].handle);
  quiet_ = false;
  problems_[at] = {env, lp};
}

void Caller::made(ConstEnvHandle env, NetProbHandle net) {
  if (net == nullptr) return;
  if (networks_.size() < 6) {
    networks_.push_back({env, net});
  } else {
    networks_[engine_() % networks_.size()] = {env, net};
  }
}

void Caller::borrowed(ConstEnvHandle env, const ConstProbHandle* lp) {
  if (code_ == 0 && lp != nullptr && *lp != nullptr && problems_.size() > 3)
    problems_[engine_() % problems_.size()] = {env, const_cast<ProbHandle>(*lp)};
}

/* ---- numbers and texts ---- */

int Caller::extreme() {
  static constexpr int kValues[] = {-1, INT_MIN, INT_MAX, 2100000001, -2, 2100000000 + 7, INT_MIN + 1};
  return kValues[below(7)];
}

int Caller::integer(const std::string& name, int items) {
  if (name.find("space") != std::string::npos)  // room that is promised must be there
    return chance(4) ? std::min(extreme(), -1) : below(40);
  if (chance(4)) return extreme();
  const auto is = [&](const char* other) { return name == other; };
  if (is("number")) {
    int type = 0;
    const int wanted = 1 + below(3);
    int number = parameters_[engine_() % parameters_.size()];
    for (int k = 0; k < 20 && TVKgetparamtype(env_, number, &type) == 0 && type != wanted; ++k)
      number = parameters_[engine_() % parameters_.size()];
    return number;
  }
  if (is("key")) return "crbsiulqmx"[below(10)];
  if (is("sense") || is("ctype")) return "LGERCBIN"[below(8)];
  if (is("objsense")) return below(2) * 2 - 1;
  if (is("method")) return below(8);
  if (is("type")) return below(14);
  if (is("errcode") || is("statind")) return 1000 + below(900);
  if (is("what")) return below(70);
  if (is("i") || is("j") || is("ij") || is("which") || is("position") || is("indvar"))
    return below(items + 2) - 1;
  if (is("itlim")) return below(50);
  return below(5);
}

int Caller::begin_of(int items) {
  return chance(4) ? extreme() : below(items);
}

int Caller::end_of(int items) {
  return chance(4) ? extreme() : chance(70) ? items - 1 : below(items + 1) - 1;
}

double Caller::real() {
  static constexpr double kInf = std::numeric_limits<double>::infinity();
  static constexpr double kValues[] = {0,     -0.0,   1e20, -1e20, 1e30,  1e-300,
                                       1e300, -1e300, kInf, -kInf, 1e-11, 1e17};
  if (chance(2)) return std::numeric_limits<double>::quiet_NaN();
  return chance(8) ? kValues[below(12)] : below(21) - 10;
}

char* Caller::zero_terminated(const std::string& text) {
  char* const copy = array<char>(text.size() + 1);
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

const char* Caller::text(const std::string& name) {
  if (chance(4)) return nullptr;
  const auto pick = [this](std::initializer_list<const char*> texts) {
    return std::string(texts.begin()[below(static_cast<int>(texts.size()))]);
  };
  if (name == "format") return zero_terminated(pick({"%d %g %s\n", "text\n", "%5d", ""}));
  if (name == "filename") {
    if (chance(5)) return zero_terminated(pick({"", "/", "/dev/null", "/nowhere/file.lp"}));
    const std::string base = pick({"a", "b", "c"});
    return zero_terminated(folder_ + '/' + base +
                           pick({".lp", ".mps", ".sav", ".net", ".bas", ".vec", ".sol", ".mst", ".ord",
                                 ".prm", ".lp.gz", ".mps.bz2", ".sol.gz", "", ".restart"}));
  }
  if (name == "filetype")
    return zero_terminated(pick({"LP", "MPS", "SAV", "NET", "RLP", "REW", "lpx", "", "MIN"}));
  if (name == "pattern") return zero_terminated(pick({"*", "x*", "?1", "", "**?*", "[a"}));
  if (chance(3)) return zero_terminated(std::string(300, 'n'));
  return zero_terminated(
      pick({"x1", "c1", "x2", "", "a b", "TVK_PARAM_ITLIM", "s1", "\xc3\xa9", "\n", "%s%d", "e9"}));
}

const char* Caller::letters(const std::string& name, std::size_t count) {
  if (chance(4)) return nullptr;
  const std::string good = name == "ctype"     ? "CBISN"
                           : name == "lu"      ? "LUB"
                           : name == "sostype" ? "12"
                                               : "LGER";
  char* const letters = array<char>(count);
  for (std::size_t k = 0; k < count; ++k)
    letters[k] = chance(3) ? static_cast<char>(below(256))
                           : good[static_cast<std::size_t>(below(static_cast<int>(good.size())))];
  return letters;
}

const int* Caller::ints(const std::string& name, std::size_t count, int bound) {
  if (chance(4)) return nullptr;
  int* const values = array<int>(count);
  const bool begins = name.size() >= 3 && name.ends_with("beg"), counts = name.ends_with("cnt");
  const bool status = name == "cstat" || name == "rstat";
  int at = 0;
  for (std::size_t k = 0; k < count; ++k) {
    values[k] = begins                ? at
                : counts              ? below(3)
                : status              ? below(4)
                : name == "direction" ? below(3) - 1
                                      : below(bound);
    if (name == "head" && chance(50)) values[k] = -1 - below(rows());
    if (begins)
      at += name == "matbeg" || name == "qmatbeg" ? 2 + below(2) : below(bound + 1 - std::min(at, bound));
    if (chance(1)) values[k] = extreme();
    if (chance(1)) values[k] = bound;
  }
  return values;
}

double* Caller::changing_reals(std::size_t count) {
  if (chance(4)) return nullptr;
  double* const values = array<double>(count);
  for (std::size_t k = 0; k < count; ++k) values[k] = real();
  return values;
}

int* Caller::marks(std::size_t count) {
  if (chance(4)) return nullptr;
  int* const values = array<int>(count);
  for (std::size_t k = 0; k < count; ++k) values[k] = chance(80) ? below(2) : extreme();
  return values;
}

char** Caller::names(std::size_t count) {
  if (chance(30)) return nullptr;
  char** const names = array<char*>(count);
  for (std::size_t k = 0; k < count; ++k) names[k] = const_cast<char*>(text("name"));
  return names;
}

volatile int* Caller::terminate_flag() {
  if (chance(50)) return nullptr;
  flag_ = chance(10);
  return &flag_;
}

Caller::LpFunction Caller::lp_function() {
  return chance(40) ? nullptr : random_lp_callback;
}
Caller::ProfileFunction Caller::profile_function() {
  return chance(40) ? nullptr : random_profile_callback;
}
Caller::MessageFunction Caller::message_function() {
  return chance(4) ? nullptr : random_message;
}

/* ---- sizes ---- */

std::size_t Caller::counted_end(const int* begin, const int* count, int vectors) const {
  const std::size_t n = size(vectors);
  if (n == 0 || begin == nullptr || count == nullptr || begin[n - 1] < 0 || count[n - 1] < 0) return 0;
  const std::int64_t end = std::int64_t{begin[n - 1]} + count[n - 1];
  return end < 100000 ? static_cast<std::size_t>(end) : 0;
}

int Caller::count_of(int (*count)(ConstEnvHandle, ConstProbHandle)) {
  const bool quiet = std::exchange(quiet_, true);
  const int number = lp_.handle != nullptr ? count(env_, lp_.handle) : 0;
  quiet_ = quiet;
  return number;
}

int Caller::columns() {
  return count_of(TVKgetnumcols);
}
int Caller::rows() {
  return count_of(TVKgetnumrows);
}
int Caller::sets() {
  return count_of(TVKgetnumsos);
}
int Caller::indicators() {
  return count_of(TVKEgetnumindconstrs);
}
int Caller::user_cuts() {
  return count_of(TVKgetnumusercuts);
}
int Caller::lazy_constraints() {
  return count_of(TVKgetnumlazyconstraints);
}
int Caller::starts() {
  return count_of(TVKgetnummipstarts);
}
int Caller::quadratic_rows() {
  return count_of(TVKgetnumqconstrs);
}

int Caller::reduced_columns() {
  return count_of([](ConstEnvHandle env, ConstProbHandle lp) {
    ConstProbHandle reduced = nullptr;
    return TVKgetredlp(env, lp, &reduced) == 0 && reduced != nullptr ? TVKgetnumcols(env, reduced) : 0;
  });
}
int Caller::reduced_rows() {
  return count_of([](ConstEnvHandle env, ConstProbHandle lp) {
    ConstProbHandle reduced = nullptr;
    return TVKgetredlp(env, lp, &reduced) == 0 && reduced != nullptr ? TVKgetnumrows(env, reduced) : 0;
  });
}

int Caller::nodes() {
  const bool quiet = std::exchange(quiet_, true);
  const int number = net_.handle != nullptr ? TVKNETgetnumnodes(env_, net_.handle) : 0;
  quiet_ = quiet;
  return number;
}
int Caller::arcs() {
  const bool quiet = std::exchange(quiet_, true);
  const int number = net_.handle != nullptr ? TVKNETgetnumarcs(env_, net_.handle) : 0;
  quiet_ = quiet;
  return number;
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
