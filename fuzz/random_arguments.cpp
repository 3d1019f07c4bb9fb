/* Where the arguments of random calls come from: handles, numbers, texts, arrays of exact size. */
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "fuzz/random_calls.h"

namespace tovik::fuzz {

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
  if (callback_.env != nullptr && chance(60)) return env_ = const_cast<EnvHandle>(callback_.env);
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
  if (name == "wherefrom" && callback_.cbdata != nullptr) return callback_.wherefrom;
  if (name == "wherefrom") return chance(50) ? 1 + below(8) : 101 + below(14);
  if (name == "whichinfo") return chance(30) ? below(20) : chance(40) ? 101 + below(34) : 201 + below(36);
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
  if (is("soln")) return below(pool_members() + 2) - 1;
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
                                 ".flt", ".prm", ".lp.gz", ".mps.bz2", ".sol.gz", "", ".restart"}));
  }
  if (name == "filetype")
    return zero_terminated(pick({"LP", "MPS", "SAV", "NET", "RLP", "REW", "lpx", "", "MIN"}));
  if (name == "pattern") return zero_terminated(pick({"*", "x*", "?1", "", "**?*", "[a"}));
  if (chance(3)) return zero_terminated(std::string(300, 'n'));
  return zero_terminated(
      pick({"x1", "c1", "x2", "", "a b", "TVK_PARAM_ITLIM", "s1", "p1", "\xc3\xa9", "\n", "%s%d", "e9"}));
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
  if (lp_.handle == nullptr && callback_.cbdata != nullptr) return 6;  // of most problems
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
int Caller::pool_members() {
  return count_of(TVKgetsolnpoolnumsolns);
}
int Caller::filters() {
  return count_of(TVKgetsolnpoolnumfilters);
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

}  // namespace tovik::fuzz
