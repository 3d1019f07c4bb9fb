#include "cli/solve/progress.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kFirst = 1.0, kLeastBetween = 2.0, kMostBetween = 60.0;  // seconds
constexpr double kNoValue = 1e75;                                         // values from here on are none
constexpr double kShareBetween = 0.1;                                     // of the time so far
constexpr double kMostBetweenNodes = 3.0;  // of a search, without a line of its log
constexpr int kInSimplex = 1, kInNetwork = 3, kInPrimalCrossover = 4, kInDualCrossover = 5, kInBarrier = 6,
              kInPresolve = 7;

/* One callback's answers. */
class Asked {
 public:
  Asked(ConstEnvHandle env, void* cbdata, int wherefrom)
      : env_(env), cbdata_(cbdata), wherefrom_(wherefrom) {}

  int count(int item) const {
    int value = 0;
    return TVKgetcallbackinfo(env_, cbdata_, wherefrom_, item, &value) == 0 ? value : 0;
  }
  /* Nothing where the method does not have the number. */
  std::optional<double> number(int item) const {
    double value = TVK_INFBOUND;
    if (TVKgetcallbackinfo(env_, cbdata_, wherefrom_, item, &value) != 0 || value >= TVK_INFBOUND) return {};
    return value;
  }

 private:
  ConstEnvHandle env_;
  void* cbdata_;
  int wherefrom_;
};

std::string infeasibilities(const Asked& asked) {
  std::string text;
  if (const auto primal = asked.number(TVK_CALLBACK_INFO_PRIMAL_INFEAS))
    text += format(", primal infeasibility %.3g", *primal);
  if (const auto dual = asked.number(TVK_CALLBACK_INFO_DUAL_INFEAS))
    text += format(", dual infeasibility %.3g", *dual);
  return text;
}

std::string simplex_text(const Asked& asked) {
  const int phase = asked.count(TVK_CALLBACK_INFO_PHASE);
  if (phase == 0) return "making sure of the answer";
  std::string text =
      format("%s phase %d, iteration %d", asked.count(TVK_CALLBACK_INFO_METHOD) == 2 ? "dual" : "primal",
             phase, asked.count(TVK_CALLBACK_INFO_ITERATIONS));
  if (const auto objective = asked.number(TVK_CALLBACK_INFO_OBJECTIVE))
    text += format(", objective %.9g", *objective);
  return text + infeasibilities(asked);
}

std::string network_text(const Asked& asked) {
  std::string text = format("network simplex phase %d, iteration %d", asked.count(TVK_CALLBACK_INFO_PHASE),
                            asked.count(TVK_CALLBACK_INFO_ITERATIONS));
  if (const auto objective = asked.number(TVK_CALLBACK_INFO_OBJECTIVE))
    text += format(", objective %.9g", *objective);
  return text;
}

std::string barrier_text(const Asked& asked) {
  std::string text = format("barrier, iteration %d", asked.count(TVK_CALLBACK_INFO_ITERATIONS));
  if (const auto objective = asked.number(TVK_CALLBACK_INFO_OBJECTIVE))
    text += format(", objective %.9g", *objective);
  if (const auto objective = asked.number(TVK_CALLBACK_INFO_DUAL_OBJECTIVE))
    text += format(", dual objective %.9g", *objective);
  return text + infeasibilities(asked);
}

std::string crossover_text(const Asked& asked, const char* kind) {
  return format("crossover, %s pushes left %d", kind, asked.count(TVK_CALLBACK_INFO_PUSHES_LEFT));
}

std::string presolve_text(const Asked& asked) {
  return "presolve, " + counted(asked.count(TVK_CALLBACK_INFO_ROWS_REMOVED), "row") + " and " +
         counted(asked.count(TVK_CALLBACK_INFO_COLUMNS_REMOVED), "column") + " removed";
}

std::string text_of(const Asked& asked, int wherefrom) {
  switch (wherefrom) {
    case kInSimplex:
      return simplex_text(asked);
    case kInNetwork:
      return network_text(asked);
    case kInPrimalCrossover:
      return crossover_text(asked, "primal");
    case kInDualCrossover:
      return crossover_text(asked, "dual");
    case kInBarrier:
      return barrier_text(asked);
    case kInPresolve:
      return presolve_text(asked);
    default:
      return "";
  }
}

std::string search_text(const Asked& asked) {
  const int nodes = asked.count(TVK_CALLBACK_INFO_NODE_COUNT);
  std::string text = nodes == 0 ? "root node" : counted(nodes, "node");
  if (nodes > 0) text += format(", %d left", asked.count(TVK_CALLBACK_INFO_NODES_LEFT));
  text += format(", iteration %d", asked.count(TVK_CALLBACK_INFO_MIP_ITERATIONS));
  const auto known = [&](const char* name, int item) {
    const auto value = asked.number(item);
    if (value && std::fabs(*value) < kNoValue) text += format(", %s %.9g", name, *value);
  };
  known("bound", TVK_CALLBACK_INFO_BEST_BOUND);
  known("incumbent", TVK_CALLBACK_INFO_BEST_INTEGER);
  return text;
}

}  // namespace

ProgressLines::ProgressLines(const Environment& environment, Console& console)
    : environment_(environment), console_(console), next_(kFirst) {
  environment.check(TVKsetlpcallbackfunc(environment.handle(), on_call, this));
  environment.check(TVKsetmipcallbackfunc(environment.handle(), on_search, this));
  environment.check(TVKsetnetcallbackfunc(environment.handle(), on_call, this));
}

ProgressLines::~ProgressLines() {
  TVKsetlpcallbackfunc(environment_.handle(), nullptr, nullptr);
  TVKsetmipcallbackfunc(environment_.handle(), nullptr, nullptr);
  TVKsetnetcallbackfunc(environment_.handle(), nullptr, nullptr);
}

/* The node log tells how a search stands; lines of ours stand where it has nothing to say. */
int ProgressLines::on_search(ConstEnvHandle env, void* cbdata, int wherefrom, void* self) {
  auto& lines = *static_cast<ProgressLines*>(self);
  lines.console_.catch_up();
  if (lines.console_.seconds_without_line() < kMostBetweenNodes) return 0;
  lines.console_.progress(format("%8.1f s  ", lines.seconds()) + search_text({env, cbdata, wherefrom}) +
                          "\n");
  return 0;
}

double ProgressLines::seconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

int ProgressLines::on_call(ConstEnvHandle env, void* cbdata, int wherefrom, void* self) {
  auto& lines = *static_cast<ProgressLines*>(self);
  const double seconds = lines.seconds();
  if (seconds >= lines.next_) lines.tell(env, cbdata, wherefrom, seconds);
  return 0;
}

void ProgressLines::tell(ConstEnvHandle env, void* cbdata, int wherefrom, double seconds) {
  next_ = seconds + std::clamp(kShareBetween * seconds, kLeastBetween, kMostBetween);
  const std::string text = text_of({env, cbdata, wherefrom}, wherefrom);
  if (!text.empty()) console_.progress(format("%8.1f s  ", seconds) + text + "\n");
}

}  // namespace tovik::cli
